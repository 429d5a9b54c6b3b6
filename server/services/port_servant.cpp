#include "server/services/port_servant.h"

#include "server/services/sequences.h"

namespace velmo::services {

PortServant::PortServant(model::PortService& model) : ports(model) {}

CORBA::Long PortServant::connect_port(const char* from_name, const char* to_name,
                                      CORBA::ULong mode, CORBA::ULong, const char*)
{
    return ports.connect_port(from_name, to_name, mode);
}

CORBA::Long PortServant::register_port_host(const char* from_name, const char* host_name)
{
    return ports.register_port_host(from_name, host_name);
}

CORBA::Long PortServant::disconnect_port(CORBA::ULong port_handle)
{
    return ports.disconnect_port(port_handle);
}

CORBA::Long PortServant::create_port(const char* port_name, CORBA::ULong port_handle,
                                     CORBA::ULong capacity)
{
    return ports.create_port(port_name, port_handle, capacity);
}

CORBA::Long PortServant::send_packet(CORBA::ULong port_handle,
                                     const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return ports.send_packet(port_handle, received(data), option);
}

CORBA::Long PortServant::send_packet_to_front(CORBA::ULong port_handle,
                                              const Velmo::DATA_BUFFER& data,
                                              CORBA::ULong option)
{
    return ports.send_packet_to_front(port_handle, received(data), option);
}

CORBA::Long PortServant::receive_packet(CORBA::ULong port_handle, CORBA::ULongLong from,
                                        Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    data = new Velmo::DATA_BUFFER;
    model::Data packet;
    const vl_result result = ports.receive_packet(port_handle, from, packet, option);
    if (result == VL_OK)
        fill(*data.ptr(), *packet);
    return result;
}

CORBA::Long
PortServant::get_connection_info(Velmo::DT_PORT_SVC::CONNECTION_SEQ_out connections)
{
    const std::vector<model::ConnectionNames> all = ports.connections();
    Velmo::DT_PORT_SVC::CONNECTION_SEQ_var sequence =
        new Velmo::DT_PORT_SVC::CONNECTION_SEQ;
    sequence->length(static_cast<CORBA::ULong>(all.size()));
    for (CORBA::ULong i = 0; i < sequence->length(); ++i) {
        sequence[i].from_name = CORBA::string_dup(all[i].from.c_str());
        sequence[i].to_name = CORBA::string_dup(all[i].to.c_str());
    }
    connections = sequence._retn();
    return VL_OK;
}

CORBA::Long PortServant::com_chennal_seq(Velmo::NAME_SEQ_out outgoing,
                                         Velmo::NAME_SEQ_out incoming)
{
    const model::ChannelNames channels = ports.channels();
    outgoing = name_sequence(channels.outgoing);
    incoming = name_sequence(channels.incoming);
    return VL_OK;
}

CORBA::Long PortServant::reply_packet(CORBA::ULong port_handle,
                                      const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return ports.reply_packet(port_handle, received(data), option);
}

CORBA::Long PortServant::receive_reply(CORBA::ULong port_handle,
                                       Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    data = new Velmo::DATA_BUFFER;
    model::Data reply;
    const vl_result result = ports.receive_reply(port_handle, reply, option);
    if (result == VL_OK)
        fill(*data.ptr(), *reply);
    return result;
}

CORBA::Long PortServant::enable_copy(const char* port_name, CORBA::ULong enable)
{
    return ports.enable_copy(port_name, enable);
}

// ---------------------------------------------------- events and snapshots

CORBA::Long PortServant::clear_event(const char*)
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::event_count(const char*, CORBA::Long_out)
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::add_event(const char*, CORBA::ULong)
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::send_event(const char*, const Velmo::DATA_BUFFER&)
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::declare_event(CORBA::ULong, const Velmo::DATA_BUFFER&, CORBA::Long)
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::make_port_snapshot()
{
    throw CORBA::NO_IMPLEMENT();
}

CORBA::Long PortServant::load_port_snapshot()
{
    throw CORBA::NO_IMPLEMENT();
}

} // namespace velmo::services
