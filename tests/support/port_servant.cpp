#include "tests/support/port_servant.h"

#include <cstring>
#include <memory>

namespace velmo::tests {

namespace {

std::string shown(const char* text)
{
    return text ? '"' + std::string(text) + '"' : "null";
}

std::string shown(const Velmo::DATA_BUFFER& data)
{
    return '"' +
           std::string(reinterpret_cast<const char*>(data.get_buffer()), data.length()) +
           '"';
}

template <class Number>
std::string shown(Number number)
{
    return std::to_string(number);
}

template <class First, class... More>
std::string listed(const First& first, const More&... more)
{
    return (shown(first) + ... + (", " + shown(more)));
}

CORBA::Long deliver(const PortServant::Reply& reply, Velmo::DATA_BUFFER_out data)
{
    if (!reply.data)
        return reply.result;
    auto sequence = std::make_unique<Velmo::DATA_BUFFER>();
    sequence->length(static_cast<CORBA::ULong>(reply.data->size()));
    if (!reply.data->empty())
        std::memcpy(sequence->get_buffer(), reply.data->data(), reply.data->size());
    data = sequence.release();
    return reply.result;
}

} // namespace

void PortServant::answer(const std::string& operation, Answer answer)
{
    std::lock_guard<std::mutex> guard(mutex);
    answers[operation] = std::move(answer);
}

void PortServant::answer(const std::string& operation, CORBA::Long result)
{
    answer(operation, [result] { return Reply{result}; });
}

std::vector<std::string> PortServant::calls() const
{
    std::lock_guard<std::mutex> guard(mutex);
    return recorded;
}

PortServant::Reply PortServant::reply_to(const std::string& operation,
                                         const std::string& arguments)
{
    Answer found;
    {
        std::lock_guard<std::mutex> guard(mutex);
        recorded.push_back(operation + "(" + arguments + ")");
        const auto answer = answers.find(operation);
        if (answer != answers.end())
            found = answer->second;
    }
    if (!found)
        throw CORBA::NO_IMPLEMENT();
    return found();
}

CORBA::Long PortServant::connect_port(const char* from_name, const char* to_name,
                                      CORBA::ULong mode, CORBA::ULong flags,
                                      const char* remark)
{
    return reply_to("connect_port", listed(from_name, to_name, mode, flags, remark)).result;
}

CORBA::Long PortServant::register_port_host(const char* from_name, const char* host_name)
{
    return reply_to("register_port_host", listed(from_name, host_name)).result;
}

CORBA::Long PortServant::disconnect_port(CORBA::ULong port_handle)
{
    return reply_to("disconnect_port", listed(port_handle)).result;
}

CORBA::Long PortServant::create_port(const char* port_name, CORBA::ULong port_handle,
                                     CORBA::ULong capacity)
{
    return reply_to("create_port", listed(port_name, port_handle, capacity)).result;
}

CORBA::Long PortServant::send_packet(CORBA::ULong port_handle,
                                     const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return reply_to("send_packet", listed(port_handle, data, option)).result;
}

CORBA::Long PortServant::send_packet_to_front(CORBA::ULong port_handle,
                                              const Velmo::DATA_BUFFER& data,
                                              CORBA::ULong option)
{
    return reply_to("send_packet_to_front", listed(port_handle, data, option)).result;
}

CORBA::Long PortServant::receive_packet(CORBA::ULong port_handle, CORBA::ULongLong from,
                                        Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    return deliver(reply_to("receive_packet", listed(port_handle, from, option)), data);
}

CORBA::Long PortServant::get_connection_info(Velmo::DT_PORT_SVC::CONNECTION_SEQ_out)
{
    return reply_to("get_connection_info", "").result;
}

CORBA::Long PortServant::com_chennal_seq(Velmo::NAME_SEQ_out, Velmo::NAME_SEQ_out)
{
    return reply_to("com_chennal_seq", "").result;
}

CORBA::Long PortServant::reply_packet(CORBA::ULong port_handle,
                                      const Velmo::DATA_BUFFER& data, CORBA::ULong option)
{
    return reply_to("reply_packet", listed(port_handle, data, option)).result;
}

CORBA::Long PortServant::receive_reply(CORBA::ULong port_handle,
                                       Velmo::DATA_BUFFER_out data, CORBA::ULong option)
{
    return deliver(reply_to("receive_reply", listed(port_handle, option)), data);
}

CORBA::Long PortServant::clear_event(const char* event_name)
{
    return reply_to("clear_event", listed(event_name)).result;
}

CORBA::Long PortServant::event_count(const char* event_name, CORBA::Long_out)
{
    return reply_to("event_count", listed(event_name)).result;
}

CORBA::Long PortServant::add_event(const char* event_name, CORBA::ULong event_id)
{
    return reply_to("add_event", listed(event_name, event_id)).result;
}

CORBA::Long PortServant::send_event(const char* event_name, const Velmo::DATA_BUFFER& data)
{
    return reply_to("send_event", listed(event_name, data)).result;
}

CORBA::Long PortServant::declare_event(CORBA::ULong event_id,
                                       const Velmo::DATA_BUFFER& data, CORBA::Long kind)
{
    return reply_to("declare_event", listed(event_id, data, kind)).result;
}

CORBA::Long PortServant::make_port_snapshot()
{
    return reply_to("make_port_snapshot", "").result;
}

CORBA::Long PortServant::load_port_snapshot()
{
    return reply_to("load_port_snapshot", "").result;
}

CORBA::Long PortServant::enable_copy(const char* port_name, CORBA::ULong enable)
{
    return reply_to("enable_copy", listed(port_name, enable)).result;
}

} // namespace velmo::tests
