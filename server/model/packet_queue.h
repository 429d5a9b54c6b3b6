// A bounded queue of packets with the receivers and the writers that wait for it.
//
// Nothing here locks: a queue belongs to a PortService and is touched under its
// lock only.
#ifndef VELMO_SERVER_MODEL_PACKET_QUEUE_H
#define VELMO_SERVER_MODEL_PACKET_QUEUE_H

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "vl_result.h"

namespace velmo::model {

struct Port;
class PacketQueue;

using Bytes = std::vector<std::uint8_t>;
using Data = std::shared_ptr<const Bytes>; // copies of a packet share their bytes

struct Packet {
    Data data;
    Port* sender = nullptr;
};

enum class End { front, back };

// A receiver in waiting. A packet that it wants is handed to it and never enters
// the queue: nobody can snatch it, one packet wakes one thread, and the one that
// has waited longest comes first.
struct Receiver {
    bool wants(const Packet& candidate) const;

    std::uint64_t from = 0; // 0: anybody's packets, else those of the port so numbered
    std::optional<Packet> packet;
    std::condition_variable arrived;
};

// A write that may have found no room. Whoever makes room tries it again on behalf
// of its thread, which sleeps until there is a result.
class Write {
public:
    // Does it, or tells through obstacles which queues are in the way.
    virtual std::optional<vl_result> attempt() = 0;

    // Attempts it, and waits at the obstacles that there are. True when there is
    // a result.
    bool retry();

    // Ends the wait at the obstacles.
    void withdraw();

    std::optional<vl_result> result;
    std::condition_variable settled;

protected:
    ~Write() = default;

    std::vector<PacketQueue*> obstacles;
};

class PacketQueue {
public:
    PacketQueue(std::size_t max_packets, std::size_t max_bytes);

    // Whether put() may be called with this packet.
    bool accepts(const Packet& packet) const;

    // Hands the packet to a waiting receiver (true), or queues it.
    bool put(Packet packet, End end);

    // The oldest packet that the receiver wants. retry_writes() is to follow.
    std::optional<Packet> take(const Receiver& receiver);

    // Gives room that has come about to the writes that wait here.
    void retry_writes();

    // Wakes everybody who waits here.
    void wake_all();

    void join(Receiver& receiver) { receivers.push_back(&receiver); }
    void leave(Receiver& receiver) { receivers.remove(&receiver); }
    void join(Write& write) { writes.push_back(&write); }
    void leave(Write& write) { writes.remove(&write); }

private:
    std::size_t max_packets;
    std::size_t max_bytes;
    std::size_t bytes = 0;
    std::deque<Packet> packets;
    std::list<Receiver*> receivers; // none of them wants a queued packet
    std::list<Write*> writes;       // in the order of their coming
};

} // namespace velmo::model

#endif
