#include "server/model/packet_queue.h"

#include <algorithm>

#include "server/model/port.h"

namespace velmo::model {

bool Receiver::wants(const Packet& candidate) const
{
    return !packet && !lost && (from == 0 || from == candidate.sender->handle);
}

bool Receiver::is_there()
{
    lost = lost || caller.gone();
    return !lost;
}

bool Write::retry()
{
    const std::vector<PacketQueue*> before = std::move(obstacles);
    obstacles.clear();
    result = attempt();
    // One that still waits for the same queues keeps its place there.
    if (obstacles != before) {
        for (PacketQueue* queue : before)
            queue->leave(*this);
        for (PacketQueue* queue : obstacles)
            queue->join(*this);
    }
    if (result)
        settled.notify_one();
    return result.has_value();
}

void Write::withdraw()
{
    for (PacketQueue* queue : obstacles)
        queue->leave(*this);
    obstacles.clear();
}

PacketQueue::PacketQueue(std::size_t packet_limit, std::size_t byte_limit)
    : max_packets(packet_limit), max_bytes(byte_limit)
{
}

bool PacketQueue::accepts(const Packet& packet)
{
    const bool receiver_waits =
        std::any_of(receivers.begin(), receivers.end(), [&](Receiver* receiver) {
            return receiver->wants(packet) && receiver->is_there();
        });
    return receiver_waits ||
           (packets.size() < max_packets && bytes + packet.data->size() <= max_bytes);
}

const Packet* PacketQueue::put(Packet packet, End end)
{
    const auto taker =
        std::find_if(receivers.begin(), receivers.end(),
                     [&](const Receiver* receiver) { return receiver->wants(packet); });
    if (taker != receivers.end()) {
        (*taker)->packet = std::move(packet);
        (*taker)->arrived.notify_one();
        return nullptr;
    }
    bytes += packet.data->size();
    if (end == End::front) {
        packet.number = packets.empty() ? 0 : packets.front().number - 1;
        return &packets.emplace_front(std::move(packet));
    }
    packet.number = next_number();
    return &packets.emplace_back(std::move(packet));
}

void PacketQueue::restore(Packet packet)
{
    bytes += packet.data->size();
    if (!packets.empty())
        packet.number = std::max(packet.number, next_number());
    packets.push_back(std::move(packet));
}

std::int64_t PacketQueue::next_number() const
{
    return packets.empty() ? 0 : packets.back().number + 1;
}

std::optional<Packet> PacketQueue::take(Receiver& receiver)
{
    const auto oldest =
        std::find_if(packets.begin(), packets.end(),
                     [&](const Packet& packet) { return receiver.wants(packet); });
    if (oldest == packets.end() || !receiver.is_there())
        return std::nullopt;
    Packet packet = std::move(*oldest);
    packets.erase(oldest);
    bytes -= packet.data->size();
    return packet;
}

void PacketQueue::retry_writes()
{
    // A copy, since a write that is tried again may leave the list.
    for (Write* write : std::list<Write*>(writes))
        write->retry();
}

void PacketQueue::wake_all()
{
    for (Receiver* receiver : receivers)
        receiver->arrived.notify_one();
    for (Write* write : writes)
        write->settled.notify_one();
}

} // namespace velmo::model
