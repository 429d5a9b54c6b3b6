// The service manager of a server, as clients call it.
#ifndef VELMO_SERVER_SERVICES_SERVICE_MANAGER_SERVANT_H
#define VELMO_SERVER_SERVICES_SERVICE_MANAGER_SERVANT_H

#include <string>
#include <vector>

#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/services/calls.h"

namespace velmo::services {

class ServiceManagerServant : public virtual POA_Velmo::VelmoServiceManager,
                              public virtual orb::ServantBase {
public:
    // realms: the names that clients are shown.
    ServiceManagerServant(std::vector<std::string> realms, const Calls& calls);

    CORBA::Long get_releam_seq(Velmo::NAME_SEQ_out realms) override;

private:
    const Calls& call;
    const std::vector<std::string> names;
};

} // namespace velmo::services

#endif
