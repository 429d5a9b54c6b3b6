// The services of a server, for the call frame: how the registry gives and drops
// the reference.
#ifndef VELMO_API_SERVICES_H
#define VELMO_API_SERVICES_H

#include "vlReferenceContainer.h"

namespace velmo::api {

struct PortService {
    using Interface = Velmo::DT_PORT_SVC::Port_Factory;

    static Interface::_ptr_type get(vlReferenceContainer& registry, const char* server,
                                    const char* releam)
    {
        return registry.GetPortReferenceWithServerName(server, releam);
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        registry.ReleasePortReference(server, releam);
    }
};

struct PointService {
    using Interface = Velmo::DT_POINT_SVC::DT_Point_Factory;

    static Interface::_ptr_type get(vlReferenceContainer& registry, const char* server,
                                    const char* releam)
    {
        return registry.GetDptReferenceWithServerName(server, releam);
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        registry.ReleaseDtpReference(server, releam);
    }
};

struct TemplateService {
    using Interface = Velmo::SYSTEM_SVC::DT_manager;

    static Interface::_ptr_type get(vlReferenceContainer& registry, const char* server,
                                    const char* releam)
    {
        return registry.GetDtRefrenceWithServerName(server, releam);
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        registry.ReleaseDtReference(server, releam);
    }
};

struct ContentionService {
    using Interface = Velmo::HEART_BIT::contender_server;

    static Interface::_ptr_type get(vlReferenceContainer& registry, const char* server,
                                    const char* releam)
    {
        return registry.GetContenerReferenceWithServerName(server, releam);
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        registry.ReleaseContenterReference(server, releam);
    }
};

} // namespace velmo::api

#endif
