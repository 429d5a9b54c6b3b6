#include "registry/vlServerReference.h"

#include <atomic>

#include "idl/service_keys.h"
#include "registry/exit_cleanup.h"
#include "vlNaming_Client.h"

namespace {

using ReadGuard = FairReadGuard<vlServerReference>;
using WriteGuard = FairWriteGuard;

std::atomic<bool> caching_stopped{false};

std::string_view realm_of(const char* releam)
{
    return releam ? releam : "";
}

// The name of a service below the root of the server's naming.
std::string naming_name(std::string_view realm, const char* key)
{
    return realm.empty() ? key : "/" + std::string(realm) + "/" + key;
}

// A duplicate of a realm's reference, null when there is none.
template <class Interface>
typename Interface::_ptr_type cached(const vlServerReference::Cache<Interface>& cache,
                                     std::string_view realm)
{
    // The unnamed realm comes first, and is what most calls ask for.
    const auto found = realm.empty() ? cache.begin() : cache.find(realm);
    return found == cache.end() || found->first.size() != realm.size()
               ? nullptr
               : Interface::_duplicate(found->second.in());
}

} // namespace

vlServerReference::vlServerReference(const char* name) : serverName(name ? name : "") {}

void vlServerReference::stop_caching()
{
    caching_stopped = true;
}

// A new reference from the naming service, null when it has none of this type.
template <class Interface>
typename Interface::_ptr_type vlServerReference::look_up(const std::string& name) const
{
    CORBA::Object_var object = vlNaming_Client::GetInstance()->GetReferenceWithServerName(
        serverName.c_str(), name.c_str());
    release_references_at_exit();
    if (CORBA::is_nil(object.in()))
        return nullptr;
    typename Interface::_var_type narrowed = Interface::_narrow(object.in());
    return CORBA::is_nil(narrowed.in()) ? nullptr : narrowed._retn();
}

// Caches a duplicate of a reference, unless another thread was first, and hands
// the reference on. The caller holds the lock for writing.
template <class Interface>
typename Interface::_ptr_type
vlServerReference::keep(Cache<Interface>& cache, std::string_view realm,
                        typename Interface::_ptr_type reference)
{
    typename Interface::_var_type owned = reference;
    if (!caching_stopped)
        cache.emplace(realm, owned); // copying a holder duplicates
    return owned._retn();
}

// Without the lock: two threads may both ask, and the first one's answer stays.
template <class Interface>
typename Interface::_ptr_type vlServerReference::look_up_and_keep(Cache<Interface>& cache,
                                                                  const char* key,
                                                                  std::string_view realm)
{
    typename Interface::_var_type found = look_up<Interface>(naming_name(realm, key));
    if (CORBA::is_nil(found.in()))
        return nullptr;
    WriteGuard guard(lock, turnstile);
    return guard.locked() ? keep<Interface>(cache, realm, found._retn()) : nullptr;
}

template <class Interface>
inline typename Interface::_ptr_type
vlServerReference::get(Cache<Interface>& cache, const char* key, const char* releam)
{
    const std::string_view realm = realm_of(releam);
    {
        ReadGuard guard(lock, turnstile);
        if (!guard.locked())
            return nullptr;
        if (auto reference = cached<Interface>(cache, realm))
            return reference;
    }
    return look_up_and_keep<Interface>(cache, key, realm);
}

template <class Interface>
void vlServerReference::release(Cache<Interface>& cache, const char* releam)
{
    WriteGuard guard(lock, turnstile);
    if (!guard.locked())
        return;
    const auto found = cache.find(realm_of(releam));
    if (found != cache.end())
        cache.erase(found);
}

Velmo::DT_POINT_SVC::DT_Point_Factory_ptr
vlServerReference::GetDptReference(const char* releam)
{
    return get<Velmo::DT_POINT_SVC::DT_Point_Factory>(
        dtpReferences, velmo::keys::data_template_point_service, releam);
}

Velmo::SYSTEM_SVC::DT_manager_ptr vlServerReference::GetDtReference(const char* releam)
{
    return get<Velmo::SYSTEM_SVC::DT_manager>(dtReferences,
                                              velmo::keys::data_template_service, releam);
}

Velmo::DT_PORT_SVC::Port_Factory_ptr vlServerReference::GetPortReference(const char* releam)
{
    return get<Velmo::DT_PORT_SVC::Port_Factory>(portReferences, velmo::keys::port_service,
                                                 releam);
}

// Contenders look their service up one at a time: the lock is held throughout.
Velmo::HEART_BIT::contender_server_ptr
vlServerReference::GetContenderReference(const char* releam)
{
    using Interface = Velmo::HEART_BIT::contender_server;
    WriteGuard guard(lock, turnstile);
    if (!guard.locked())
        return nullptr;
    const std::string_view realm = realm_of(releam);
    if (auto reference = cached<Interface>(contenderReferences, realm))
        return reference;
    const std::string name = naming_name(realm, velmo::keys::contention_service);
    Interface::_var_type found = look_up<Interface>(name);
    return CORBA::is_nil(found.in())
               ? nullptr
               : keep<Interface>(contenderReferences, realm, found._retn());
}

Velmo::VelmoServiceManager_ptr vlServerReference::GetServiceReference()
{
    ReadGuard guard(lock, turnstile);
    return guard.locked()
               ? look_up<Velmo::VelmoServiceManager>(velmo::keys::service_manager)
               : nullptr;
}

void vlServerReference::ReleaseDtpReference(const char* releam)
{
    release<Velmo::DT_POINT_SVC::DT_Point_Factory>(dtpReferences, releam);
}

void vlServerReference::ReleaseDtReference(const char* releam)
{
    release<Velmo::SYSTEM_SVC::DT_manager>(dtReferences, releam);
}

void vlServerReference::ReleasePortReference(const char* releam)
{
    release<Velmo::DT_PORT_SVC::Port_Factory>(portReferences, releam);
}

void vlServerReference::ReleaseContenderReference(const char* releam)
{
    release<Velmo::HEART_BIT::contender_server>(contenderReferences, releam);
}

void vlServerReference::releaseAllReference()
{
    WriteGuard guard(lock, turnstile);
    if (!guard.locked())
        return;
    dtpReferences.clear();
    portReferences.clear();
    dtReferences.clear();
    contenderReferences.clear();
}
