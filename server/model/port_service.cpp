#include "server/model/port_service.h"

#include <algorithm>
#include <set>

#include "server/model/changing_ports.h"
#include "server/model/names.h"

namespace velmo::model {

// ---------------------------------------------------------------- ports

PortService::PortService(const PortLimits& port_limits)
    : limits(port_limits), table(std::make_shared<PortTable>(limits.queue_bytes))
{
}

PortService::~PortService() = default;

vl_result PortService::create_port(std::string_view name, Handle handle,
                                   std::uint32_t capacity)
{
    if (const vl_result result = check_name(name); result != VL_OK)
        return result;
    if (handle == 0)
        return PARAMETER_ERROR;
    if (capacity == 0)
        capacity = limits.default_capacity;
    const Changing lock(*this);
    const bool full = table->all().size() >= limits.max_ports;
    if (full && !table->find(name) && !table->find(handle))
        return MEMORY_ALLOCATION_FAI;
    const Port* port = table->add(name, handle, std::min(capacity, limits.max_capacity));
    if (!port)
        return OBJECT_ALREADY_EXSIT;
    record(*port);
    return VL_OK;
}

vl_result PortService::register_port_host(std::string_view from, std::string_view host)
{
    if (host.size() > max_name_bytes)
        return PARAMETER_ERROR;
    const Changing lock(*this);
    Port* port = table->find(from);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (!port->takes_host())
        return NOT_CONNECTED;
    port->host = host;
    record(*port);
    return VL_OK;
}

vl_result PortService::enable_copy(std::string_view name, std::uint32_t enable)
{
    if (enable > 1)
        return PARAMETER_ERROR;
    const Changing lock(*this);
    Port* port = table->find(name);
    if (!port)
        return INVAILD_PORT_HANDLE;
    port->copies = enable == 1;
    record(*port);
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
    const Changing lock(*this);
    Port* from = table->find(from_name);
    if (!from)
        return INVAILD_PORT_HANDLE;
    Port* to = table->find(to_name);
    if (!to)
        return RECEIVER_IS_NOT_EXIST;
    if (const vl_result result = table->connect(*from, *to, *mode); result != VL_OK)
        return result;
    recorder.add(ConnectionImage{from->handle, to->handle, mode_number});
    // A send that waits at the mailbox, or at another receiver, may go there now.
    from->packets.retry_writes();
    for (const auto& other : from->outgoing)
        other->to->packets.retry_writes();
    return VL_OK;
}

vl_result PortService::disconnect_port(Handle handle)
{
    const Changing lock(*this);
    Port* port = table->find(handle);
    if (!port)
        return INVAILD_PORT_HANDLE;
    if (port->outgoing.empty() && port->incoming.empty())
        return NOT_CONNECTED;
    std::set<Port*> touched{port};
    const auto disconnect = [&](Connections::iterator connection) {
        recorder.add(ConnectionRemoved{connection->from->handle, connection->to->handle});
        table->disconnect(connection);
    };
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
    for (const Connection& connection : table->connections())
        result.push_back({connection.from->name, connection.to->name});
    return result;
}

ChannelNames PortService::channels() const
{
    const Lock lock(mutex);
    ChannelNames result;
    // A port is named where its first connection stands in the order of connecting.
    const Connections& all = table->connections();
    for (auto i = all.begin(); i != all.end(); ++i) {
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
                        const Caller& caller, Condition condition)
{
    using Clock = std::chrono::steady_clock;
    const auto limit = std::min(limits.max_wait, std::chrono::milliseconds(wait));
    const Clock::time_point deadline = Clock::now() + limit;
    const PortTable* mine = table.get();
    const auto over = [&] { return stopped || table.get() != mine || condition(); };
    ++asleep;
    while (!caller.gone() && Clock::now() < deadline &&
           !wake.wait_until(lock, std::min(deadline, Clock::now() + limits.caller_check),
                            over)) {
    }
    --asleep;
    return condition();
}

vl_result PortService::complete(Lock& lock, Write& write, WaitOption wait,
                                const Caller& caller)
{
    if (write.retry())
        return *write.result;
    const std::shared_ptr<PortTable> kept = table;
    const bool done = wait != no_wait && sleep(lock, write.settled, wait, caller,
                                               [&] { return write.result.has_value(); });
    write.withdraw();
    if (done) {
        recorder.rely();
        return *write.result;
    }
    return wait == no_wait ? WOULD_BLOCK : SENDMSG_TIMEOUT;
}

bool PortService::await(Lock& lock, PacketQueue& queue, Receiver& receiver, WaitOption wait)
{
    if (wait == no_wait)
        return false;
    const std::shared_ptr<PortTable> kept = table;
    queue.join(receiver);
    const bool arrived = sleep(lock, receiver.arrived, wait, receiver.caller,
                               [&] { return receiver.packet.has_value(); });
    queue.leave(receiver);
    if (arrived)
        recorder.rely();
    return arrived;
}

std::size_t PortService::waiting() const
{
    const Lock lock(mutex);
    return asleep;
}

void PortService::set_max_wait(std::chrono::milliseconds max_wait)
{
    const Lock lock(mutex);
    limits.max_wait = max_wait;
}

void PortService::stop()
{
    const Lock lock(mutex);
    stopped = true;
    table->wake_all();
}

// ------------------------------------------------------- the whole of it

std::optional<PortStatus> PortService::status(std::string_view name) const
{
    const Lock lock(mutex);
    const Port* port = table->find(name);
    if (!port)
        return std::nullopt;
    PortStatus status;
    status.handle = port->handle;
    status.capacity = port->capacity;
    status.depth = port->packets.content().size();
    status.bytes = port->packets.size_in_bytes();
    status.replies = port->replies.content().size();
    status.waiting = port->packets.waiting();
    status.host = port->host;
    return status;
}

std::vector<std::string> PortService::names() const
{
    const Lock lock(mutex);
    std::vector<std::string> result;
    for (const auto& [handle, port] : table->all())
        result.push_back(port->name);
    return result;
}

PortTotals PortService::totals() const
{
    const Lock lock(mutex);
    PortTotals totals;
    totals.ports = table->all().size();
    for (const auto& [handle, port] : table->all()) {
        totals.packets += port->packets.content().size();
        totals.replies += port->replies.content().size();
        totals.bytes += port->packets.size_in_bytes() + port->replies.size_in_bytes();
    }
    return totals;
}

PortsImage PortService::image() const
{
    const Lock lock(mutex);
    return table->image();
}

vl_result PortService::check(const PortsImage& image) const
{
    return PortTable(limits.queue_bytes).fill(image) ? VL_OK : MIDPLUSDATA_IS_BAD;
}

vl_result PortService::restore(const PortsImage& image)
{
    auto restored = std::make_shared<PortTable>(limits.queue_bytes);
    if (!restored->fill(image))
        return MIDPLUSDATA_IS_BAD;
    const Changing lock(*this);
    table.swap(restored);
    restored->wake_all();
    record_all();
    return VL_OK;
}

} // namespace velmo::model
