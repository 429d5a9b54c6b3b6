// A bounded queue of packets with the receivers and the writers that wait for it.
//
// Nothing here locks: a queue belongs to a PortService and is touched under its
// lock only.
#ifndef VELMO_SERVER_MODEL_PACKET_QUEUE_H
#define VELMO_SERVER_MODEL_PACKET_QUEUE_H

#include <condition_variable>
#include <deque>
#include <list>
#include <optional>
#include <vector>

#include "server/model/caller.h"
#include "server/model/data.h"
#include "vl_result.h"

namespace velmo::model {

struct Port;
class PacketQueue;

struct Packet {
    Data data;
    Port* sender = nullptr;
    std::int64_t number = 0; // in its queue: the older one of two has the lower
};

enum class End { front, back };

// A receiver in waiting. A packet that it wants is handed to it and never enters
// the queue: nobody can snatch it, one packet wakes one thread, and the one that
// has waited longest comes first. One that has gone gets none.
struct Receiver {
    Receiver(const Caller& who, std::uint64_t from_whom) : caller(who), from(from_whom) {}

    bool wants(const Packet& candidate) const;

    // Whether it still is there, at the moment of asking.
    bool is_there();

    const Caller& caller;
    const std::uint64_t from; // 0: anybody's packets, else those of the port so numbered
    bool lost = false;        // it was found gone
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

    // Whether there is room for the packet, or a receiver for it.
    bool accepts(const Packet& packet);

    // Hands the packet to a waiting receiver (null), or queues it and gives it as it is
    // there, without looking at the limits: accepts() has, and has found out who of the
    // receivers is there.
    const Packet* put(Packet packet, End end);

    // Queues a packet of an image at the back. It keeps its number, if it can.
    void restore(Packet packet);

    // The oldest packet that the receiver wants, if it is there to get it.
    // retry_writes() is to follow.
    std::optional<Packet> take(Receiver& receiver);

    // Oldest first.
    const std::deque<Packet>& content() const { return packets; }

    // Of data in it.
    std::size_t size_in_bytes() const { return bytes; }

    // How many receivers wait.
    std::size_t waiting() const { return receivers.size(); }

    // Gives room that has come about to the writes that wait here.
    void retry_writes();

    // Wakes everybody who waits here.
    void wake_all();

    void join(Receiver& receiver) { receivers.push_back(&receiver); }
    void leave(Receiver& receiver) { receivers.remove(&receiver); }
    void join(Write& write) { writes.push_back(&write); }
    void leave(Write& write) { writes.remove(&write); }

private:
    std::int64_t next_number() const; // at the back

    std::size_t max_packets;
    std::size_t max_bytes;
    std::size_t bytes = 0;
    std::deque<Packet> packets;
    std::list<Receiver*> receivers; // none of them wants a queued packet
    std::list<Write*> writes;       // in the order of their coming
};

} // namespace velmo::model

#endif
