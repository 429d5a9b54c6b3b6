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

} // namespace velmo::api

#endif
