#include "server/model/port_service.h"

#include <algorithm>
#include <set>

namespace velmo::model {

namespace {

std::optional<ConnectionMode> known_mode(std::uint32_t number)
{
    for (const ConnectionMode mode :
         {ConnectionMode::plain, ConnectionMode::exclusive, ConnectionMode::from_host})
        if (static_cast<std::uint32_t>(mode) == number)
            return mode;
    return std::nullopt;
}

bool has_mode(const std::vector<Connections::iterator>& connections, ConnectionMode mode)
{
    return std::any_of(connections.begin(), connections.end(),
                       [mode](const auto& connection) { return connection->mode == mode; });
}

void erase(std::vector<Connections::iterator>& from, Connections::iterator what)
{
    from.erase(std::find(from.begin(), from.end(), what));
}

} // namespace

bool Port::exclusive() const
{
    return has_mode(outgoing, ConnectionMode::exclusive) ||
           has_mode(incoming, ConnectionMode::exclusive);
}

void Port::expect_answer(Port& sender)
{
    if (unanswered.size() == unanswered_limit) {
        --unanswered.front()->awaited;
        unanswered.pop_front();
    }
    unanswered.push_back(&sender);
}

// ---------------------------------------------------------------- ports

PortService::PortService(const PortLimits& port_limits) : limits(port_limits) {}

PortService::~PortService() = default;

Port* PortService::find(Handle handle) const
{
    const auto found = ports.find(handle);
    return found == ports.end() ? nullptr : found->second.get();
}

Port* PortService::find(std::string_view name) const
{
    const auto found = names.find(name);
    return found == names.end() ? nullptr : found->second;
}

vl_result PortService::create_port(std::string_view name, Handle handle,
                                   std::uint32_t capacity)
{
    if (name.empty())
        return INVAILD_NULL_PARAMETER;
    if (name.size() > max_name_bytes || handle == 0)
        return PARAMETER_ERROR;
    if (capacity == 0)
        capacity = limits.default_capacity;
    auto port =
        std::make_unique<Port>(std::string(name), handle,
                               std::min(capacity, limits.max_capacity), limits.queue_bytes);
    const Lock lock(mutex);
    if (find(handle) || find(name))
        return OBJECT_ALREADY_EXSIT;
    names.emplace(port->name, port.get());
    ports.emplace(handle, std::move(port));
    return VL_OK;
}

vl_result PortService::register_port_host(std::string_view from, std::string_view host)
{
    if (host.size() > max_name_bytes)
        return PARAMETER_ERROR;
    const Lock lock(mutex);
    Port* port = find(from);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (!has_mode(port->outgoing, ConnectionMode::from_host))
        return NOT_CONNECTED;
    port->host = host;
    return VL_OK;
}

std::string PortService::host_of(std::string_view name) const
{
    const Lock lock(mutex);
    const Port* port = find(name);
    return port ? port->host : "";
}

vl_result PortService::enable_copy(std::string_view name, std::uint32_t enable)
{
    if (enable > 1)
        return PARAMETER_ERROR;
    const Lock lock(mutex);
    Port* port = find(name);
    if (!port)
        return INVAILD_PORT_HANDLE;
    port->copies = enable == 1;
    for (std::size_t i = 0; i < port->receivers(); ++i)
        port->receiver(i).packets.retry_writes();
    return VL_OK;
}

// ---------------------------------------------------------- connections

vl_result PortService::connect_port(std::string_view from_name, std::string_view to_name,
                                    std::uint32_t mode_number)
{
    const std::optional<ConnectionMode> mode = known_mode(mode_number);
    if (!mode)
        return INVAILD_SINK_MODE;
    const Lock lock(mutex);
    Port* from = find(from_name);
    if (!from)
        return INVAILD_PORT_HANDLE;
    Port* to = find(to_name);
    if (!to)
        return RECEIVER_IS_NOT_EXIST;
    for (const Port* end : {from, to}) {
        const bool connected = !end->outgoing.empty() || !end->incoming.empty();
        if (end->exclusive() || (connected && *mode == ConnectionMode::exclusive))
            return ALREADY_CONNECTED;
    }
    for (const auto& connection : from->outgoing)
        if (connection->to == to)
            return ALREADY_CONNECTED;

    all_connections.push_back({from, to, *mode});
    const auto connection = std::prev(all_connections.end());
    from->outgoing.push_back(connection);
    to->incoming.push_back(connection);
    // A send that waits at the mailbox, or at another receiver, may go there now.
    from->packets.retry_writes();
    for (const auto& other : from->outgoing)
        other->to->packets.retry_writes();
    return VL_OK;
}

void PortService::disconnect(Connections::iterator connection)
{
    erase(connection->from->outgoing, connection);
    erase(connection->to->incoming, connection);
    all_connections.erase(connection);
}

vl_result PortService::disconnect_port(Handle handle)
{
    const Lock lock(mutex);
    Port* port = find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (port->outgoing.empty() && port->incoming.empty())
        return NOT_CONNECTED;
    std::set<Port*> touched{port};
    while (!port->outgoing.empty()) {
        touched.insert(port->outgoing.back()->to);
        disconnect(port->outgoing.back());
    }
    while (!port->incoming.empty())
        disconnect(port->incoming.back());
    // Sends that waited at a receiver which they have lost.
    for (Port* receiver : touched)
        receiver->packets.retry_writes();
    return VL_OK;
}

std::vector<ConnectionNames> PortService::connections() const
{
    const Lock lock(mutex);
    std::vector<ConnectionNames> result;
    for (const Connection& connection : all_connections)
        result.push_back({connection.from->name, connection.to->name});
    return result;
}

ChannelNames PortService::channels() const
{
    const Lock lock(mutex);
    ChannelNames result;
    // A port is named where its first connection stands in the order of connecting.
    for (auto i = all_connections.begin(); i != all_connections.end(); ++i) {
        const Connections::const_iterator first_out = i->from->outgoing.front();
        const Connections::const_iterator first_in = i->to->incoming.front();
        if (first_out == i)
            result.outgoing.push_back(i->from->name);
        if (first_in == i)
            result.incoming.push_back(i->to->name);
    }
    return result;
}

// ---------------------------------------------------------------- waits

template <class Condition>
bool PortService::sleep(Lock& lock, std::condition_variable& wake, WaitOption wait,
                        Condition condition)
{
    const auto limit = std::min(limits.max_wait, std::chrono::milliseconds(wait));
    ++asleep;
    wake.wait_until(lock, std::chrono::steady_clock::now() + limit,
                    [&] { return stopped || condition(); });
    --asleep;
    return condition();
}

vl_result PortService::complete(Lock& lock, Write& write, WaitOption wait)
{
    if (write.retry())
        return *write.result;
    const bool done = wait != no_wait && sleep(lock, write.settled, wait,
                                               [&] { return write.result.has_value(); });
    write.withdraw();
    if (done)
        return *write.result;
    return wait == no_wait ? WOULD_BLOCK : SENDMSG_TIMEOUT;
}

bool PortService::await(Lock& lock, PacketQueue& queue, Receiver& receiver, WaitOption wait)
{
    if (wait == no_wait)
        return false;
    queue.join(receiver);
    const bool arrived =
        sleep(lock, receiver.arrived, wait, [&] { return receiver.packet.has_value(); });
    queue.leave(receiver);
    return arrived;
}

std::size_t PortService::waiting() const
{
    const Lock lock(mutex);
    return asleep;
}

void PortService::stop()
{
    const Lock lock(mutex);
    stopped = true;
    for (const auto& [handle, port] : ports) {
        port->packets.wake_all();
        port->replies.wake_all();
    }
}

} // namespace velmo::model
