// The registry: which servers there are, and references to their services.
//
// For C++ applications that call the remote interfaces themselves; the functions
// of vl_api.h use the same registry. Needs the headers of ACE and of the broker
// that the library was built with (velmo-cpp.pc names them).
#ifndef VELMO_VLREFERENCECONTAINER_H
#define VELMO_VLREFERENCECONTAINER_H

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include <ace/RW_Mutex.h>
#include <ace/SString.h>

#include "VelmoC.h"
#include "Velmo_serverC.h"
#include "vl_export.h"

class vlServerReference;

// Parameters: server is a server's name (NULL is like ""), releam a realm (NULL
// is like "", the unnamed one).
// References: each one returned is a duplicate that the caller releases
// (CORBA::release or a _var); test with CORBA::is_nil. Nil means that the
// settings do not list the server, that its naming service does not answer, or
// that it has no such service in this realm.
// Blocking: a reference that is not cached is asked of the naming service, for no
// longer than the naming time-out; the Release functions wait for such a look-up.
// Threads: everything may be called from any thread at any time, except that
// BuildSettingData() and destruction invalidate the name pointers handed out.
// Exceptions: what a naming client raises passes through; the one of this
// system raises nothing.
class VL_EXPORT vlReferenceContainer {
public:
    // Reads the settings.
    vlReferenceContainer();
    virtual ~vlReferenceContainer();

    vlReferenceContainer(const vlReferenceContainer&) = delete;
    vlReferenceContainer& operator=(const vlReferenceContainer&) = delete;

    // The process's registry, made at the first call. Null (errno ENOMEM) only
    // when there is no memory for it.
    static vlReferenceContainer* instance();

    // Reads the settings anew and forgets every reference and every server.
    void BuildSettingData();

    // The names of the servers at a position ("parent", "own", "sibling",
    // "child", "others", "master", "slave"), in the order of the settings. The
    // strings stay the registry's and live until BuildSettingData().
    std::vector<ACE_String_Base<char>*> InquireServerNameWithPosition(const char* position);

    Velmo::HEART_BIT::contender_server_ptr
    GetContenerReferenceWithServerName(const char* server, const char* releam);
    Velmo::DT_POINT_SVC::DT_Point_Factory_ptr
    GetDptReferenceWithServerName(const char* server, const char* releam);
    Velmo::SYSTEM_SVC::DT_manager_ptr GetDtRefrenceWithServerName(const char* server,
                                                                  const char* releam);
    Velmo::DT_PORT_SVC::Port_Factory_ptr GetPortReferenceWithServerName(const char* server,
                                                                        const char* releam);

    // Always null: servers publish no file service.
    Velmo::FileService::FileServiceInterface_ptr
    GetFileReferenceWithServerName(const char* server, const char* releam);

    // Asked of the naming service at every call, never cached.
    Velmo::VelmoServiceManager_ptr GetServiceRefrence(const char* server);

    // The realms whose port service is cached for a server, in byte order.
    std::vector<ACE_String_Base<char>> GetReleamList(const char* server);

    // Forget one reference, so that the next call looks it up afresh.
    void ReleaseContenterReference(const char* server, const char* releam);
    void ReleaseDtReference(const char* server, const char* releam);
    void ReleaseDtpReference(const char* server, const char* releam);
    void ReleasePortReference(const char* server, const char* releam);
    void ReleaseFileReference(const char* server, const char* releam); // does nothing

    // Forgets every reference to a server's services.
    void releaseAllReference(const char* server);

    // Guards the maps: held for reading over a whole look-up, the naming
    // service's answer included, and for writing over a rebuild.
    ACE_RW_Mutex lock;
    // Servers asked for so far. Entries go only in a rebuild.
    std::map<ACE_String_Base<char>, std::unique_ptr<vlServerReference>> serverMap;
    // Keeps serverMap sound where several holders of the read lock search it and
    // insert into it; held for no longer than that.
    std::mutex serverMapMutex;
    // The entry that was found last, where the next search begins. Null after a rebuild.
    std::atomic<vlServerReference*> lastFound{nullptr};
    // Position word to server names, in the order of the settings.
    std::multimap<ACE_String_Base<char>, std::unique_ptr<ACE_String_Base<char>>>
        positionMap;
    // The first of positionMap's names at "own", null when there is none.
    const ACE_String_Base<char>* firstOwn = nullptr;
};

#endif
