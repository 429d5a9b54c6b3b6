// The services of a server, for the call frame: how the registry gives and drops
// the reference.
#ifndef VELMO_API_SERVICES_H
#define VELMO_API_SERVICES_H

#include "vlReferenceContainer.h"

namespace velmo::api {

template <class ServiceInterface,
          typename ServiceInterface::_ptr_type (vlReferenceContainer::*get_reference)(
              const char* server, const char* releam),
          void (vlReferenceContainer::*release_reference)(const char* server,
                                                          const char* releam)>
struct Service {
    using Interface = ServiceInterface;

    static typename Interface::_ptr_type get(vlReferenceContainer& registry,
                                             const char* server, const char* releam)
    {
        return (registry.*get_reference)(server, releam);
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        (registry.*release_reference)(server, releam);
    }
};

using PortService = Service<Velmo::DT_PORT_SVC::Port_Factory,
                            &vlReferenceContainer::GetPortReferenceWithServerName,
                            &vlReferenceContainer::ReleasePortReference>;
using PointService = Service<Velmo::DT_POINT_SVC::DT_Point_Factory,
                             &vlReferenceContainer::GetDptReferenceWithServerName,
                             &vlReferenceContainer::ReleaseDtpReference>;
using TemplateService = Service<Velmo::SYSTEM_SVC::DT_manager,
                                &vlReferenceContainer::GetDtRefrenceWithServerName,
                                &vlReferenceContainer::ReleaseDtReference>;
using ContentionService = Service<Velmo::HEART_BIT::contender_server,
                                  &vlReferenceContainer::GetContenerReferenceWithServerName,
                                  &vlReferenceContainer::ReleaseContenterReference>;

} // namespace velmo::api

#endif
