// The cached references to one server's services.
#ifndef VELMO_REGISTRY_VLSERVERREFERENCE_H
#define VELMO_REGISTRY_VLSERVERREFERENCE_H

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include <ace/RW_Mutex.h>

#include "VelmoC.h"
#include "Velmo_serverC.h"
#include "registry/fair_lock.h"

// Each Get returns a duplicate for the caller to release, or null. What a naming
// client or narrowing raises passes through, with the lock released.
class vlServerReference {
public:
    explicit vlServerReference(const char* serverName); // NULL is like ""
    virtual ~vlServerReference() = default;

    Velmo::DT_POINT_SVC::DT_Point_Factory_ptr GetDptReference(const char* releam);
    Velmo::SYSTEM_SVC::DT_manager_ptr GetDtReference(const char* releam);
    Velmo::DT_PORT_SVC::Port_Factory_ptr GetPortReference(const char* releam);
    Velmo::HEART_BIT::contender_server_ptr GetContenderReference(const char* releam);
    Velmo::VelmoServiceManager_ptr GetServiceReference();

    void ReleaseDtpReference(const char* releam);
    void ReleaseDtReference(const char* releam);
    void ReleasePortReference(const char* releam);
    void ReleaseContenderReference(const char* releam);
    void releaseAllReference();

    // NULL is like "".
    bool is_of(const char* name) const
    {
        return std::strcmp(serverName.c_str(), name ? name : "") == 0;
    }

    // From now on no server caches a reference any more: the process is ending.
    static void stop_caching();

    // References by realm, each map owning its references.
    template <class Interface>
    using Cache = std::map<std::string, typename Interface::_var_type, std::less<>>;

    // Destroyed from the last to the first.
    Cache<Velmo::DT_POINT_SVC::DT_Point_Factory> dtpReferences;
    Cache<Velmo::SYSTEM_SVC::DT_manager> dtReferences;
    Cache<Velmo::DT_PORT_SVC::Port_Factory> portReferences;
    Cache<Velmo::HEART_BIT::contender_server> contenderReferences;
    ACE_RW_Mutex lock{USYNC_THREAD}; // guards the four maps
    std::string serverName;
    Turnstile turnstile; // of the lock

private:
    template <class Interface>
    [[gnu::always_inline]] typename Interface::_ptr_type
    get(Cache<Interface>& cache, const char* key, const char* releam);
    template <class Interface> // apart from what every call does
    [[gnu::noinline]] typename Interface::_ptr_type
    look_up_and_keep(Cache<Interface>& cache, const char* key, std::string_view realm);
    template <class Interface>
    void release(Cache<Interface>& cache, const char* releam);
    template <class Interface>
    typename Interface::_ptr_type look_up(const std::string& name) const;
    template <class Interface>
    typename Interface::_ptr_type keep(Cache<Interface>& cache, std::string_view realm,
                                       typename Interface::_ptr_type reference);
};

#endif
