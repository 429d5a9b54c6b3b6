#include "vlReferenceContainer.h"

#include <atomic>
#include <cstdlib>

#include "idl/nil_references.h"
#include "registry/exit_cleanup.h"
#include "registry/fair_lock.h"
#include "registry/host_name.h"
#include "registry/process_singleton.h"
#include "registry/registry_reader.h"
#include "registry/registry_use.h"
#include "util/fork.h"
#include "vlServerInfoXmlImpl.h"

namespace {

using Name = ACE_String_Base<char>;

struct ReadGuard : FairReadGuard<vlReferenceContainer> {
    explicit ReadGuard(ACE_RW_Mutex& its_lock)
        : FairReadGuard(its_lock, RegistryReader::turnstile)
    {
    }
};
struct WriteGuard : FairWriteGuard {
    explicit WriteGuard(ACE_RW_Mutex& its_lock)
        : FairWriteGuard(its_lock, RegistryReader::turnstile)
    {
    }
};

// The server that stands for this host when the settings name none.
constexpr const char* placeholder_server = "0000";

const char* const own = "own";
const char* const positions[] = {"parent", own,      "sibling", "child",
                                 "others", "master", "slave"};

Name name_of(const char* text)
{
    return Name(text ? text : "");
}

// For searching alone: the text is not copied, and must outlive the key.
Name key_of(const char* text)
{
    return Name(text ? text : "", nullptr, false);
}

void add_name(vlReferenceContainer& registry, const char* position, const char* name)
{
    const auto added =
        registry.positionMap.emplace(name_of(position), std::make_unique<Name>(name));
    if (position == own && !registry.firstOwn)
        registry.firstOwn = added->second.get();
}

// Registers the servers at a position; tells whether the settings listed any.
bool add_position(vlReferenceContainer& registry, vlServerInfoXmlImpl& reader,
                  const char* position)
{
    const std::vector<_ServerInfoData> records = reader.GetServerInfo(position);
    for (const _ServerInfoData& record : records) {
        if (record.name[0] != '\0')
            add_name(registry, position, record.name);
    }
    return !records.empty();
}

// A server's entry, null when nobody has asked for the server yet. The caller
// holds the registry's lock, and so keeps the entry in place.
vlServerReference* find(vlReferenceContainer& registry, const char* server)
{
    std::lock_guard<std::mutex> guard(registry.serverMapMutex);
    const auto found = registry.serverMap.find(key_of(server));
    return found == registry.serverMap.end() ? nullptr : found->second.get();
}

// A service's reference from a server's entry, which is made if need be. The lock
// is held until the reference is there, be it from the naming service.
template <class Get>
auto get_reference(vlReferenceContainer& registry, const char* server, Get get)
    -> decltype(get(std::declval<vlServerReference&>()))
{
    const RegistryReader reader(&registry);
    vlServerReference* const entry = reader.entry(server);
    return entry ? get(*entry) : nullptr;
}

// Lets go of references in a server's entry, if it has one.
template <class Guard, class Release>
void release_reference(vlReferenceContainer& registry, const char* server, Release release)
{
    Guard guard(registry.lock);
    if (!guard.locked())
        return;
    if (vlServerReference* entry = find(registry, server))
        release(*entry);
}

// What a child of fork() does not release; known to leak checkers by this.
std::atomic<decltype(vlReferenceContainer::serverMap)*> kept_references{nullptr};

void drop_references()
{
    if (velmo::util::Fork::is_cut_off())
        return;
    RegistryUse::end();
    vlServerReference::stop_caching();
    vlReferenceContainer* registry = ProcessSingleton<vlReferenceContainer>::existing();
    if (!registry)
        return;
    ReadGuard guard(registry->lock);
    std::lock_guard<std::mutex> map_guard(registry->serverMapMutex);
    for (auto& entry : registry->serverMap)
        entry.second->releaseAllReference();
}

} // namespace

vlServerReference* RegistryReader::find_or_create(vlReferenceContainer& registry,
                                                  const char* server)
{
    std::lock_guard<std::mutex> guard(registry.serverMapMutex);
    auto found = registry.serverMap.find(key_of(server));
    if (found == registry.serverMap.end())
        found = registry.serverMap
                    .emplace(name_of(server), std::make_unique<vlServerReference>(server))
                    .first;
    registry.lastFound.store(found->second.get(), std::memory_order_release);
    return found->second.get();
}

void release_references_at_exit()
{
    static const int registered = std::atexit(drop_references);
    static_cast<void>(registered);
}

vlReferenceContainer::vlReferenceContainer() : lock(USYNC_THREAD)
{
    velmo::idl::make_nil_references();
    BuildSettingData();
}

vlReferenceContainer::~vlReferenceContainer()
{
    ProcessSingleton<vlReferenceContainer>::forget(this);
    if (velmo::util::Fork::is_cut_off())
        kept_references =
            std::make_unique<decltype(serverMap)>(std::move(serverMap)).release();
    positionMap.clear();
    serverMap.clear();
}

vlReferenceContainer* vlReferenceContainer::instance()
{
    return ProcessSingleton<vlReferenceContainer>::instance();
}

void vlReferenceContainer::BuildSettingData()
{
    WriteGuard guard(lock);
    if (!guard.locked())
        return;
    firstOwn = nullptr;
    lastFound.store(nullptr, std::memory_order_relaxed);
    positionMap.clear();
    serverMap.clear();

    vlServerInfoXmlImpl reader;
    for (const char* position : positions) {
        const bool listed = add_position(*this, reader, position);
        if (position == own && !listed) {
            // Only for its error number: a host without a name shows in errno.
            char host[host_name_size];
            local_host_name(host);
            add_name(*this, own, placeholder_server);
        }
    }
}

std::vector<ACE_String_Base<char>*>
vlReferenceContainer::InquireServerNameWithPosition(const char* position)
{
    std::vector<Name*> names;
    ReadGuard guard(lock);
    if (!guard.locked())
        return names;
    const auto range = positionMap.equal_range(key_of(position));
    for (auto entry = range.first; entry != range.second; ++entry)
        names.push_back(entry->second.get());
    return names;
}

Velmo::HEART_BIT::contender_server_ptr
vlReferenceContainer::GetContenerReferenceWithServerName(const char* server,
                                                         const char* releam)
{
    return get_reference(*this, server, [releam](vlServerReference& entry) {
        return entry.GetContenderReference(releam);
    });
}

Velmo::DT_POINT_SVC::DT_Point_Factory_ptr
vlReferenceContainer::GetDptReferenceWithServerName(const char* server, const char* releam)
{
    return get_reference(*this, server, [releam](vlServerReference& entry) {
        return entry.GetDptReference(releam);
    });
}

Velmo::SYSTEM_SVC::DT_manager_ptr
vlReferenceContainer::GetDtRefrenceWithServerName(const char* server, const char* releam)
{
    return get_reference(*this, server, [releam](vlServerReference& entry) {
        return entry.GetDtReference(releam);
    });
}

Velmo::DT_PORT_SVC::Port_Factory_ptr
vlReferenceContainer::GetPortReferenceWithServerName(const char* server, const char* releam)
{
    return get_reference(*this, server, [releam](vlServerReference& entry) {
        return entry.GetPortReference(releam);
    });
}

Velmo::FileService::FileServiceInterface_ptr
vlReferenceContainer::GetFileReferenceWithServerName(const char*, const char*)
{
    return nullptr;
}

Velmo::VelmoServiceManager_ptr vlReferenceContainer::GetServiceRefrence(const char* server)
{
    return get_reference(*this, server, [](vlServerReference& entry) {
        return entry.GetServiceReference();
    });
}

std::vector<ACE_String_Base<char>> vlReferenceContainer::GetReleamList(const char* server)
{
    std::vector<Name> realms;
    ReadGuard guard(lock);
    if (!guard.locked())
        return realms;
    vlServerReference* entry = find(*this, server);
    if (!entry)
        return realms;
    FairReadGuard<vlServerReference> entry_guard(entry->lock, entry->turnstile);
    if (!entry_guard.locked())
        return realms;
    for (const auto& reference : entry->portReferences)
        realms.push_back(name_of(reference.first.c_str()));
    return realms;
}

void vlReferenceContainer::ReleaseContenterReference(const char* server, const char* releam)
{
    release_reference<WriteGuard>(*this, server, [releam](vlServerReference& entry) {
        entry.ReleaseContenderReference(releam);
    });
}

// Alone among the single releases it shares the registry with look-ups under way.
void vlReferenceContainer::ReleaseDtReference(const char* server, const char* releam)
{
    release_reference<ReadGuard>(*this, server, [releam](vlServerReference& entry) {
        entry.ReleaseDtReference(releam);
    });
}

void vlReferenceContainer::ReleaseDtpReference(const char* server, const char* releam)
{
    release_reference<WriteGuard>(*this, server, [releam](vlServerReference& entry) {
        entry.ReleaseDtpReference(releam);
    });
}

void vlReferenceContainer::ReleasePortReference(const char* server, const char* releam)
{
    release_reference<WriteGuard>(*this, server, [releam](vlServerReference& entry) {
        entry.ReleasePortReference(releam);
    });
}

void vlReferenceContainer::ReleaseFileReference(const char*, const char*) {}

void vlReferenceContainer::releaseAllReference(const char* server)
{
    release_reference<ReadGuard>(
        *this, server, [](vlServerReference& entry) { entry.releaseAllReference(); });
}
