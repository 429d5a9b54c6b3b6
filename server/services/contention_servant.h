// The contention service of one realm, as clients call it.
#ifndef VELMO_SERVER_SERVICES_CONTENTION_SERVANT_H
#define VELMO_SERVER_SERVICES_CONTENTION_SERVANT_H

#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/services/calls.h"
#include "server/model/contention_service.h"

namespace velmo::services {

// Hands every operation on to the model, which has their meaning and results.
class ContentionServant : public virtual POA_Velmo::HEART_BIT::contender_server,
                          public virtual orb::ServantBase {
public:
    // The model must outlive the servant.
    ContentionServant(model::ContentionService& model, const Calls& calls);

    CORBA::Long out_contend(const char* group, const char* contender) override;
    CORBA::Long regist_contender(const char* group, const char* contender,
                                 const Velmo::DATA_BUFFER& data, const char* role,
                                 CORBA::Long priority) override;
    CORBA::Long update_contender(const char* group, const char* contender) override;

private:
    const Calls& call;
    model::ContentionService& contention;
};

} // namespace velmo::services

#endif
