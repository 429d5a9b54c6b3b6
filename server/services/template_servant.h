// The data-template service of one realm, as clients call it.
#ifndef VELMO_SERVER_SERVICES_TEMPLATE_SERVANT_H
#define VELMO_SERVER_SERVICES_TEMPLATE_SERVANT_H

#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/services/calls.h"
#include "server/model/template_catalogue.h"
#include "server/services/snapshots.h"

namespace velmo::services {

class TemplateServant : public virtual POA_Velmo::SYSTEM_SVC::DT_manager,
                        public virtual orb::ServantBase {
public:
    // The catalogue must outlive the servant.
    TemplateServant(const model::TemplateCatalogue& catalogue,
                    const Snapshots& realm_snapshots, const Calls& calls);

    CORBA::Long get_query_data_type(Velmo::NAME_SEQ_out type_names) override;
    CORBA::Long make_DT_snapshot() override;

private:
    const Calls& call;
    const model::TemplateCatalogue& templates;
    const Snapshots snapshots;
};

} // namespace velmo::services

#endif
