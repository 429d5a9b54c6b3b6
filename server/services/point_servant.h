// The point service of one realm, as clients call it.
#ifndef VELMO_SERVER_SERVICES_POINT_SERVANT_H
#define VELMO_SERVER_SERVICES_POINT_SERVANT_H

#include "orb/served_call.h"
#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/services/calls.h"
#include "server/model/point_service.h"
#include "server/services/snapshots.h"

namespace velmo::services {

// Hands every operation on to the model, which has their meaning and results. An
// operation that fails gives empty names, texts and data. What goes out is set before
// anything can fail: a broker may crash on what is not.
class PointServant : public orb::Served<POA_Velmo::DT_POINT_SVC::DT_Point_Factory>,
                     public virtual orb::ServantBase {
public:
    // The model must outlive the servant.
    PointServant(model::PointService& model, const Snapshots& realm_snapshots,
                 const Calls& calls);

    CORBA::Long create_DTP(const char* point_name, const char* template_name) override;
    CORBA::Long create_set(const char* set_name, const char* template_name,
                           const Velmo::DATA_BUFFER& data) override;
    CORBA::Long get_DTP(const char* point_name, Velmo::DATA_BUFFER_out value) override;
    CORBA::Long set_DTP(const char* point_name, const Velmo::DATA_BUFFER& value) override;
    CORBA::Long remove_DTP(const char* point_name) override;

    CORBA::Long get_all_point_by_typename(Velmo::NAME_SEQ_out names,
                                          const char* type_name) override;
    CORBA::Long get_all_point_name(Velmo::NAME_SEQ_out names) override;
    CORBA::Long check_null_data(Velmo::NAME_SEQ_out names) override;

    // Empty for an unknown point; there is no room for a code.
    char* get_DTP_type(const char* point_name) override;
    char* get_DTP_description(const char* point_name) override;

    CORBA::Long get_dtp_info(const char* point_name, CORBA::String_out type_name,
                             CORBA::String_out description,
                             Velmo::DATA_BUFFER_out value) override;
    CORBA::Long set_DTP_description(const char* point_name,
                                    const char* description) override;

    CORBA::Long make_DTP_snapshot() override;
    CORBA::Long load_DTP_snapshot() override;

private:
    const Calls& call;
    model::PointInfo info(const char* point_name) const;

    model::PointService& points;
    const Snapshots snapshots;
};

} // namespace velmo::services

#endif
