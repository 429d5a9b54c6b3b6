// The cached references to one server's services.
#ifndef VELMO_REGISTRY_VLSERVERREFERENCE_H
#define VELMO_REGISTRY_VLSERVERREFERENCE_H

#include <map>
#include <string>

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

    // From now on no server caches a reference any more: the process is ending.
    static void stop_caching();
    static bool caches();

    // References by realm, each map owning its references.
    template <class Interface>
    using Cache = std::map<std::string, typename Interface::_var_type>;

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
    typename Interface::_ptr_type get(Cache<Interface>& cache, const char* key,
                                      const char* releam);
    template <class Interface>
    void release(Cache<Interface>& cache, const char* releam);
    template <class Interface>
    typename Interface::_ptr_type look_up(const std::string& name) const;
    template <class Interface>
    typename Interface::_ptr_type keep(Cache<Interface>& cache, const std::string& realm,
                                       typename Interface::_ptr_type reference);
};

#endif
