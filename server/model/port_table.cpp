#include "server/model/port_table.h"

#include <algorithm>

#include "server/model/names.h"

namespace velmo::model {

namespace {

bool has_mode(const std::vector<Connections::iterator>& connections, ConnectionMode mode)
{
    return std::any_of(connections.begin(), connections.end(),
                       [mode](const auto& connection) { return connection->mode == mode; });
}

void erase(std::vector<Connections::iterator>& from, Connections::iterator what)
{
    from.erase(std::find(from.begin(), from.end(), what));
}

PortImage image_of(const Port& port)
{
    const auto packets = [](const PacketQueue& queue) {
        std::vector<PacketImage> images;
        for (const Packet& packet : queue.content())
            images.push_back({packet.data, packet.sender->handle, packet.number});
        return images;
    };
    PortImage image;
    image.name = port.name;
    image.handle = port.handle;
    image.capacity = static_cast<std::uint32_t>(port.capacity);
    image.host = port.host;
    image.copies = port.copies;
    image.turn = port.turn;
    image.packets = packets(port.packets);
    image.replies = packets(port.replies);
    for (const Port* sender : port.unanswered)
        image.unanswered.push_back(sender->handle);
    image.questions_before = port.questions_before;
    return image;
}

} // namespace

std::optional<ConnectionMode> known_mode(std::uint32_t number)
{
    for (const ConnectionMode mode :
         {ConnectionMode::plain, ConnectionMode::exclusive, ConnectionMode::from_host})
        if (static_cast<std::uint32_t>(mode) == number)
            return mode;
    return std::nullopt;
}

bool Port::exclusive() const
{
    return has_mode(outgoing, ConnectionMode::exclusive) ||
           has_mode(incoming, ConnectionMode::exclusive);
}

bool Port::takes_host() const
{
    return has_mode(outgoing, ConnectionMode::from_host);
}

Port* PortTable::find(Handle handle) const
{
    const auto found = ports.find(handle);
    return found == ports.end() ? nullptr : found->second.get();
}

Port* PortTable::find(std::string_view name) const
{
    const auto found = names.find(name);
    return found == names.end() ? nullptr : found->second;
}

Port* PortTable::add(std::string_view name, Handle handle, std::uint32_t capacity)
{
    if (find(handle) || find(name))
        return nullptr;
    auto port =
        std::make_unique<Port>(std::string(name), handle, capacity, max_queue_bytes);
    Port* added = port.get();
    ports.emplace(handle, std::move(port));
    names.emplace(added->name, added);
    return added;
}

vl_result PortTable::connect(Port& from, Port& to, ConnectionMode mode)
{
    for (const Port* end : {&from, &to}) {
        const bool connected = !end->outgoing.empty() || !end->incoming.empty();
        if (end->exclusive() || (connected && mode == ConnectionMode::exclusive))
            return ALREADY_CONNECTED;
    }
    for (const auto& connection : from.outgoing)
        if (connection->to == &to)
            return ALREADY_CONNECTED;
    all_connections.push_back({&from, &to, mode});
    const auto connection = std::prev(all_connections.end());
    from.outgoing.push_back(connection);
    to.incoming.push_back(connection);
    return VL_OK;
}

void PortTable::disconnect(Connections::iterator connection)
{
    erase(connection->from->outgoing, connection);
    erase(connection->to->incoming, connection);
    all_connections.erase(connection);
}

void PortTable::wake_all()
{
    for (const auto& [handle, port] : ports) {
        port->packets.wake_all();
        port->replies.wake_all();
    }
}

// ---------------------------------------------------------------- images

PortsImage PortTable::image() const
{
    PortsImage result;
    for (const auto& [handle, port] : ports)
        result.ports.push_back(image_of(*port));
    std::sort(result.ports.begin(), result.ports.end(),
              [](const PortImage& a, const PortImage& b) { return a.handle < b.handle; });
    for (const Connection& connection : all_connections)
        result.connections.push_back({connection.from->handle, connection.to->handle,
                                      static_cast<std::uint32_t>(connection.mode)});
    return result;
}

bool PortTable::fill(const PortsImage& image)
{
    for (const PortImage& port : image.ports)
        if (!restore(port))
            return false;
    // Packets refer to their senders: all ports have to be there.
    for (const PortImage& port : image.ports)
        if (!restore_queues(*find(port.handle), port))
            return false;
    for (const ConnectionImage& connection : image.connections) {
        Port* from = find(connection.from);
        Port* to = find(connection.to);
        const auto mode = known_mode(connection.mode);
        if (!from || !to || !mode || connect(*from, *to, *mode) != VL_OK)
            return false;
    }
    return true;
}

Port* PortTable::restore(const PortImage& image)
{
    if (check_name(image.name) != VL_OK || image.handle == 0 || image.capacity == 0 ||
        image.host.size() > max_name_bytes)
        return nullptr;
    Port* port = add(image.name, image.handle, image.capacity);
    if (port) {
        port->host = image.host;
        port->copies = image.copies;
        port->turn = image.turn;
    }
    return port;
}

bool PortTable::restore_queues(Port& port, const PortImage& image)
{
    const auto put = [&](PacketQueue& queue, const PacketImage& packet) {
        Port* sender = find(packet.sender);
        if (sender && packet.data)
            queue.restore({packet.data, sender, packet.number});
        return packet.data ? sender : nullptr;
    };
    for (const PacketImage& packet : image.packets) {
        Port* sender = put(port.packets, packet);
        if (!sender)
            return false;
        ++sender->awaited;
    }
    for (const PacketImage& reply : image.replies)
        if (!put(port.replies, reply))
            return false;
    if (image.unanswered.size() > image.capacity)
        return false;
    port.questions_before = image.questions_before;
    for (const Handle handle : image.unanswered) {
        Port* sender = find(handle);
        if (!sender)
            return false;
        port.unanswered.push_back(sender);
        ++sender->awaited;
    }
    return true;
}

} // namespace velmo::model
