#include "tests/support/port_servant.h"

namespace velmo::tests {

CORBA::Long PortServant::connect_port(const char* from_name, const char* to_name,
                                      CORBA::ULong mode, CORBA::ULong flags,
                                      const char* remark)
{
    return asked->reply_to("connect_port", from_name, to_name, mode, flags, remark).result;
}

CORBA::Long PortServant::register_port_host(const char* from_name, const char* host_name)
{
    return asked->reply_to("register_port_host", from_name, host_name).result;
}

CORBA::Long PortServant::disconnect_port(CORBA::ULong port_handle)
{
    return asked->reply_to("disconnect_port", port_handle).result;
}

CORBA::Long PortServant::create_port(const char* port_name, CORBA::ULong port_handle,
                                     CORBA::ULong capacity)
{
    return asked->reply_to("create_port", port_name, port_handle, capacity).result;
}

CORBA::Long PortServant::send_packet(CORBA::ULong port_handle,
                                     const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return asked->reply_to("send_packet", port_handle, data, option).result;
}

CORBA::Long PortServant::send_packet_to_front(CORBA::ULong port_handle,
                                              const Velmo::DATA_BUFFER& data,
                                              CORBA::ULong option)
{
    return asked->reply_to("send_packet_to_front", port_handle, data, option).result;
}

CORBA::Long PortServant::receive_packet(CORBA::ULong port_handle, CORBA::ULongLong from,
                                        Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    const Script::Reply reply =
        asked->reply_to("receive_packet", port_handle, from, option);
    deliver(data, reply.data);
    return reply.result;
}

CORBA::Long
PortServant::get_connection_info(Velmo::DT_PORT_SVC::CONNECTION_SEQ_out connections)
{
    const Script::Reply reply = asked->reply_to("get_connection_info");
    deliver(connections, reply.connections);
    return reply.result;
}

CORBA::Long PortServant::com_chennal_seq(Velmo::NAME_SEQ_out outgoing,
                                         Velmo::NAME_SEQ_out incoming)
{
    const Script::Reply reply = asked->reply_to("com_chennal_seq");
    deliver(outgoing, reply.names);
    deliver(incoming, reply.more_names);
    return reply.result;
}

CORBA::Long PortServant::reply_packet(CORBA::ULong port_handle,
                                      const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return asked->reply_to("reply_packet", port_handle, data, option).result;
}

CORBA::Long PortServant::receive_reply(CORBA::ULong port_handle,
                                       Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    const Script::Reply reply = asked->reply_to("receive_reply", port_handle, option);
    deliver(data, reply.data);
    return reply.result;
}

CORBA::Long PortServant::clear_event(const char* event_name)
{
    return asked->reply_to("clear_event", event_name).result;
}

CORBA::Long PortServant::event_count(const char* event_name, CORBA::Long_out count)
{
    const Script::Reply reply = asked->reply_to("event_count", event_name);
    count = reply.count;
    return reply.result;
}

CORBA::Long PortServant::add_event(const char* event_name, CORBA::ULong event_id)
{
    return asked->reply_to("add_event", event_name, event_id).result;
}

CORBA::Long PortServant::send_event(const char* event_name, const Velmo::DATA_BUFFER& data)
{
    return asked->reply_to("send_event", event_name, data).result;
}

CORBA::Long PortServant::declare_event(CORBA::ULong event_id,
                                       const Velmo::DATA_BUFFER& data, CORBA::Long kind)
{
    return asked->reply_to("declare_event", event_id, data, kind).result;
}

CORBA::Long PortServant::make_port_snapshot()
{
    return asked->reply_to("make_port_snapshot").result;
}

CORBA::Long PortServant::load_port_snapshot()
{
    return asked->reply_to("load_port_snapshot").result;
}

CORBA::Long PortServant::enable_copy(const char* port_name, CORBA::ULong enable)
{
    return asked->reply_to("enable_copy", port_name, enable).result;
}

} // namespace velmo::tests
