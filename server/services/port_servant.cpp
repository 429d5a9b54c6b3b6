#include "server/services/port_servant.h"

#include <algorithm>
#include <limits>

#include "server/services/remote_caller.h"
#include "server/services/sequences.h"

namespace velmo::services {

using metrics::Operation;

namespace {

void fill(Velmo::DT_PORT_SVC::CONNECTION_SEQ& sequence,
          const std::vector<model::ConnectionNames>& connections)
{
    sequence.length(static_cast<CORBA::ULong>(connections.size()));
    for (CORBA::ULong i = 0; i < sequence.length(); ++i) {
        sequence[i].from_name = CORBA::string_dup(connections[i].from.c_str());
        sequence[i].to_name = CORBA::string_dup(connections[i].to.c_str());
    }
}

} // namespace

PortServant::PortServant(model::PortService& port_model, model::EventService& event_model,
                         const Snapshots& realm_snapshots, const Calls& calls)
    : call(calls), ports(port_model), events(event_model), snapshots(realm_snapshots)
{
}

CORBA::Long PortServant::connect_port(const char* from_name, const char* to_name,
                                      CORBA::ULong mode, CORBA::ULong, const char*)
{
    return call(Operation::connect_port,
                [&] { return ports.connect_port(from_name, to_name, mode); });
}

CORBA::Long PortServant::register_port_host(const char* from_name, const char* host_name)
{
    return call(Operation::register_port_host,
                [&] { return ports.register_port_host(from_name, host_name); });
}

CORBA::Long PortServant::disconnect_port(CORBA::ULong port_handle)
{
    return call(Operation::disconnect_port,
                [&] { return ports.disconnect_port(port_handle); });
}

CORBA::Long PortServant::create_port(const char* port_name, CORBA::ULong port_handle,
                                     CORBA::ULong capacity)
{
    return call(Operation::create_port,
                [&] { return ports.create_port(port_name, port_handle, capacity); });
}

CORBA::Long PortServant::send_packet(CORBA::ULong port_handle,
                                     const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return call(Operation::send_packet, data, [&] {
        return ports.send_packet(port_handle, received(data), option, RemoteCaller());
    });
}

CORBA::Long PortServant::send_packet_to_front(CORBA::ULong port_handle,
                                              const Velmo::DATA_BUFFER& data,
                                              CORBA::ULong option)
{
    return call(Operation::send_packet_to_front, data, [&] {
        return ports.send_packet_to_front(port_handle, received(data), option,
                                          RemoteCaller());
    });
}

CORBA::Long PortServant::receive_packet(CORBA::ULong port_handle, CORBA::ULongLong from,
                                        Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    data = new Velmo::DATA_BUFFER;
    return call(Operation::receive_packet, [&] {
        model::Data packet;
        const vl_result result =
            ports.receive_packet(port_handle, from, packet, option, RemoteCaller());
        if (result == VL_OK)
            fill(*data.ptr(), packet);
        return result;
    });
}

CORBA::Long
PortServant::get_connection_info(Velmo::DT_PORT_SVC::CONNECTION_SEQ_out connections)
{
    connections = new Velmo::DT_PORT_SVC::CONNECTION_SEQ;
    return call(Operation::get_connection_info, [&] {
        fill(*connections.ptr(), ports.connections());
        return VL_OK;
    });
}

CORBA::Long PortServant::com_chennal_seq(Velmo::NAME_SEQ_out outgoing,
                                         Velmo::NAME_SEQ_out incoming)
{
    outgoing = new Velmo::NAME_SEQ;
    incoming = new Velmo::NAME_SEQ;
    return call(Operation::com_chennal_seq, [&] {
        const model::ChannelNames channels = ports.channels();
        fill(*outgoing.ptr(), channels.outgoing);
        fill(*incoming.ptr(), channels.incoming);
        return VL_OK;
    });
}

CORBA::Long PortServant::reply_packet(CORBA::ULong port_handle,
                                      const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return call(Operation::reply_packet, data, [&] {
        return ports.reply_packet(port_handle, received(data), option, RemoteCaller());
    });
}

CORBA::Long PortServant::receive_reply(CORBA::ULong port_handle,
                                       Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    data = new Velmo::DATA_BUFFER;
    return call(Operation::receive_reply, [&] {
        model::Data reply;
        const vl_result result =
            ports.receive_reply(port_handle, reply, option, RemoteCaller());
        if (result == VL_OK)
            fill(*data.ptr(), reply);
        return result;
    });
}

CORBA::Long PortServant::enable_copy(const char* port_name, CORBA::ULong enable)
{
    return call(Operation::enable_copy,
                [&] { return ports.enable_copy(port_name, enable); });
}

// ---------------------------------------------------- events and snapshots

CORBA::Long PortServant::clear_event(const char* event_name)
{
    return call(Operation::clear_event, [&] { return events.clear_event(event_name); });
}

CORBA::Long PortServant::event_count(const char* event_name, CORBA::Long_out count)
{
    return call(Operation::event_count, [&] {
        std::uint64_t counted = 0;
        const vl_result result = events.event_count(event_name, counted);
        constexpr std::uint64_t most = std::numeric_limits<CORBA::Long>::max();
        count = static_cast<CORBA::Long>(std::min(counted, most));
        return result;
    });
}

CORBA::Long PortServant::add_event(const char* event_name, CORBA::ULong event_id)
{
    return call(Operation::add_event,
                [&] { return events.add_event(event_name, event_id); });
}

CORBA::Long PortServant::send_event(const char* event_name, const Velmo::DATA_BUFFER& data)
{
    return call(Operation::send_event, data,
                [&] { return events.send_event(event_name, received(data)); });
}

CORBA::Long PortServant::declare_event(CORBA::ULong event_id,
                                       const Velmo::DATA_BUFFER& data, CORBA::Long kind)
{
    return call(Operation::declare_event, data,
                [&] { return events.declare_event(event_id, received(data), kind); });
}

CORBA::Long PortServant::make_port_snapshot()
{
    return call(Operation::make_port_snapshot, [&] { return snapshots.make_ports(); });
}

CORBA::Long PortServant::load_port_snapshot()
{
    return call(Operation::load_port_snapshot, [&] { return snapshots.load_ports(); });
}

} // namespace velmo::services
