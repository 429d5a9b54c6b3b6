// The port service of one realm, as clients call it.
#ifndef VELMO_SERVER_SERVICES_PORT_SERVANT_H
#define VELMO_SERVER_SERVICES_PORT_SERVANT_H

#include "orb/served_call.h"
#include "orb/server.h"
#include "orb/skeletons.h"
#include "server/services/calls.h"
#include "server/model/event_service.h"
#include "server/model/port_service.h"
#include "server/services/snapshots.h"

namespace velmo::services {

// Hands every operation on to the models, which have their meaning and results. A count
// of events beyond what travels is the highest that does. Out sequences are set before
// anything can fail: a broker may crash on one that is not.
class PortServant : public orb::Served<POA_Velmo::DT_PORT_SVC::Port_Factory>,
                    public virtual orb::ServantBase {
public:
    // The models must outlive the servant.
    PortServant(model::PortService& port_model, model::EventService& event_model,
                const Snapshots& realm_snapshots, const Calls& calls);

    CORBA::Long connect_port(const char* from_name, const char* to_name, CORBA::ULong mode,
                             CORBA::ULong flags, const char* remark) override;
    CORBA::Long register_port_host(const char* from_name, const char* host_name) override;
    CORBA::Long disconnect_port(CORBA::ULong port_handle) override;
    CORBA::Long create_port(const char* port_name, CORBA::ULong port_handle,
                            CORBA::ULong capacity) override;

    CORBA::Long send_packet(CORBA::ULong port_handle, const Velmo::DATA_BUFFER& data,
                            CORBA::ULong option) override;
    CORBA::Long send_packet_to_front(CORBA::ULong port_handle,
                                     const Velmo::DATA_BUFFER& data,
                                     CORBA::ULong option) override;
    CORBA::Long receive_packet(CORBA::ULong port_handle, CORBA::ULongLong from,
                               Velmo::DATA_BUFFER_out data, CORBA::ULong option) override;

    CORBA::Long
    get_connection_info(Velmo::DT_PORT_SVC::CONNECTION_SEQ_out connections) override;
    CORBA::Long com_chennal_seq(Velmo::NAME_SEQ_out outgoing,
                                Velmo::NAME_SEQ_out incoming) override;

    CORBA::Long reply_packet(CORBA::ULong port_handle, const Velmo::DATA_BUFFER& data,
                             CORBA::ULong option) override;
    CORBA::Long receive_reply(CORBA::ULong port_handle, Velmo::DATA_BUFFER_out data,
                              CORBA::ULong option) override;

    CORBA::Long clear_event(const char* event_name) override;
    CORBA::Long event_count(const char* event_name, CORBA::Long_out count) override;
    CORBA::Long add_event(const char* event_name, CORBA::ULong event_id) override;
    CORBA::Long send_event(const char* event_name, const Velmo::DATA_BUFFER& data) override;
    CORBA::Long declare_event(CORBA::ULong event_id, const Velmo::DATA_BUFFER& data,
                              CORBA::Long kind) override;

    CORBA::Long make_port_snapshot() override;
    CORBA::Long load_port_snapshot() override;

    CORBA::Long enable_copy(const char* port_name, CORBA::ULong enable) override;

private:
    const Calls& call;
    model::PortService& ports;
    model::EventService& events;
    const Snapshots snapshots;
};

} // namespace velmo::services

#endif
