// The services of a server, for the call frame: how the registry gives and drops
// the reference.
#ifndef VELMO_API_SERVICES_H
#define VELMO_API_SERVICES_H

#include "registry/registry_reader.h"

namespace velmo::api {

template <class ServiceInterface,
          typename ServiceInterface::_ptr_type (vlServerReference::*get_reference)(
              const char* releam),
          void (vlReferenceContainer::*release_reference)(const char* server,
                                                          const char* releam)>
struct Service {
    using Interface = ServiceInterface;

    // Null where there is none.
    static typename Interface::_ptr_type get(const RegistryReader& registry,
                                             const char* server, const char* releam)
    {
        vlServerReference* const entry = registry.entry(server);
        return entry ? (entry->*get_reference)(releam) : nullptr;
    }
    static void release(vlReferenceContainer& registry, const char* server,
                        const char* releam)
    {
        (registry.*release_reference)(server, releam);
    }
};

using PortService =
    Service<Velmo::DT_PORT_SVC::Port_Factory, &vlServerReference::GetPortReference,
            &vlReferenceContainer::ReleasePortReference>;
using PointService =
    Service<Velmo::DT_POINT_SVC::DT_Point_Factory, &vlServerReference::GetDptReference,
            &vlReferenceContainer::ReleaseDtpReference>;
using TemplateService =
    Service<Velmo::SYSTEM_SVC::DT_manager, &vlServerReference::GetDtReference,
            &vlReferenceContainer::ReleaseDtReference>;
using ContentionService =
    Service<Velmo::HEART_BIT::contender_server, &vlServerReference::GetContenderReference,
            &vlReferenceContainer::ReleaseContenterReference>;

} // namespace velmo::api

#endif
