#include "tests/server/reference_ports.h"

#include <algorithm>

namespace velmo::tests {

ReferencePorts::Port* ReferencePorts::find(Handle handle)
{
    for (Port& port : ports)
        if (port.handle == handle)
            return &port;
    return nullptr;
}

ReferencePorts::Port* ReferencePorts::find(const std::string& name)
{
    for (Port& port : ports)
        if (port.name == name)
            return &port;
    return nullptr;
}

vl_result ReferencePorts::create_port(const std::string& name, Handle handle,
                                      std::uint32_t capacity)
{
    if (name.empty())
        return INVAILD_NULL_PARAMETER;
    if (handle == 0)
        return PARAMETER_ERROR;
    if (find(name) || find(handle))
        return OBJECT_ALREADY_EXSIT;
    ports.emplace_back();
    ports.back().name = name;
    ports.back().handle = handle;
    ports.back().capacity = capacity;
    return VL_OK;
}

vl_result ReferencePorts::connect_port(const std::string& from, const std::string& to,
                                       std::uint32_t mode)
{
    if (mode != 30001 && mode != 30002 && mode != 30004)
        return INVAILD_SINK_MODE;
    if (!find(from))
        return INVAILD_PORT_HANDLE;
    if (!find(to))
        return RECEIVER_IS_NOT_EXIST;
    const Handle sender = find(from)->handle;
    const Handle receiver = find(to)->handle;
    for (const Connection& other : all_connections) {
        const bool touches = other.from == sender || other.to == sender ||
                             other.from == receiver || other.to == receiver;
        if (touches && (mode == 30002 || other.mode == 30002))
            return ALREADY_CONNECTED;
        if (other.from == sender && other.to == receiver)
            return ALREADY_CONNECTED;
    }
    all_connections.push_back({sender, receiver, mode});
    return VL_OK;
}

vl_result ReferencePorts::register_port_host(const std::string& name,
                                             const std::string& host)
{
    Port* port = find(name);
    if (!port)
        return INVAILD_PORT_HANDLE;
    for (const Connection& connection : all_connections) {
        if (connection.from == port->handle && connection.mode == 30004) {
            port->host = host;
            return VL_OK;
        }
    }
    return NOT_CONNECTED;
}

vl_result ReferencePorts::disconnect_port(Handle handle)
{
    if (!find(handle))
        return INVAILD_PORT_HANDLE;
    const std::size_t before = all_connections.size();
    all_connections.remove_if([handle](const Connection& connection) {
        return connection.from == handle || connection.to == handle;
    });
    return all_connections.size() == before ? NOT_CONNECTED : VL_OK;
}

std::vector<ReferencePorts::Port*> ReferencePorts::receivers(const Port& sender)
{
    std::vector<Port*> all;
    for (const Connection& connection : all_connections)
        if (connection.from == sender.handle)
            all.push_back(find(connection.to));
    if (all.empty())
        all.push_back(find(sender.handle));
    return all;
}

bool ReferencePorts::has_room(const std::deque<Packet>& queue, const Port& port,
                              const std::string& text) const
{
    std::size_t bytes = text.size();
    for (const Packet& packet : queue)
        bytes += packet.text.size();
    return queue.size() < port.capacity && bytes <= queue_bytes;
}

vl_result ReferencePorts::send(Handle handle, const std::string& text, bool to_front)
{
    Port* sender = find(handle);
    if (!sender)
        return INVAILD_PORT_HANDLE;
    if (text.size() > queue_bytes)
        return SIZE_IS_NOT_MATCH;
    std::vector<Port*> chosen = receivers(*sender);
    const auto full = [&](Port* port) { return !has_room(port->packets, *port, text); };
    if (sender->copies) {
        if (std::any_of(chosen.begin(), chosen.end(), full))
            return WOULD_BLOCK;
    } else {
        const std::size_t count = chosen.size();
        std::size_t tried = 0;
        while (tried < count && full(chosen[(sender->turn + tried) % count]))
            ++tried;
        if (tried == count)
            return WOULD_BLOCK;
        const std::size_t next = (sender->turn + tried) % count;
        chosen = {chosen[next]};
        sender->turn = (next + 1) % count;
    }
    for (Port* port : chosen)
        port->packets.insert(to_front ? port->packets.begin() : port->packets.end(),
                             {text, handle});
    return VL_OK;
}

vl_result ReferencePorts::receive_packet(Handle handle, std::uint64_t from,
                                         std::string& text)
{
    Port* port = find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    for (auto packet = port->packets.begin(); packet != port->packets.end(); ++packet) {
        if (from != 0 && packet->sender != from)
            continue;
        text = packet->text;
        port->unanswered.push_back(packet->sender);
        if (port->unanswered.size() > port->capacity)
            port->unanswered.pop_front();
        port->packets.erase(packet);
        return VL_OK;
    }
    return EMPTY_QUEUE;
}

vl_result ReferencePorts::reply_packet(Handle handle, const std::string& text)
{
    Port* port = find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (text.size() > queue_bytes)
        return SIZE_IS_NOT_MATCH;
    if (port->unanswered.empty())
        return NON_EXIST_DATA;
    Port* asker = find(port->unanswered.front());
    if (!has_room(asker->replies, *asker, text))
        return WOULD_BLOCK;
    asker->replies.push_back({text, handle});
    port->unanswered.pop_front();
    return VL_OK;
}

bool ReferencePorts::may_still_be_answered(Handle sender) const
{
    for (const Port& port : ports) {
        for (const Packet& packet : port.packets)
            if (packet.sender == sender)
                return true;
        if (std::count(port.unanswered.begin(), port.unanswered.end(), sender) != 0)
            return true;
    }
    return false;
}

vl_result ReferencePorts::receive_reply(Handle handle, std::string& text)
{
    Port* port = find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (port->replies.empty())
        return may_still_be_answered(handle) ? EMPTY_QUEUE : NON_EXIST_DATA;
    text = port->replies.front().text;
    port->replies.pop_front();
    return VL_OK;
}

vl_result ReferencePorts::enable_copy(const std::string& name, std::uint32_t enable)
{
    if (enable > 1)
        return PARAMETER_ERROR;
    Port* port = find(name);
    if (!port)
        return INVAILD_PORT_HANDLE;
    port->copies = enable == 1;
    return VL_OK;
}

std::vector<std::pair<std::string, std::string>> ReferencePorts::connections() const
{
    const auto name = [this](Handle handle) {
        return std::find_if(ports.begin(), ports.end(),
                            [handle](const Port& port) { return port.handle == handle; })
            ->name;
    };
    std::vector<std::pair<std::string, std::string>> all;
    for (const Connection& connection : all_connections)
        all.emplace_back(name(connection.from), name(connection.to));
    return all;
}

} // namespace velmo::tests
