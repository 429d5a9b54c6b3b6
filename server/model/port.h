// One port, as its PortService keeps it, under the service's lock.
#ifndef VELMO_SERVER_MODEL_PORT_H
#define VELMO_SERVER_MODEL_PORT_H

#include <list>
#include <string>

#include "server/model/packet_queue.h"

namespace velmo::model {

enum class ConnectionMode : std::uint32_t {
    plain = 30001,
    exclusive = 30002,
    from_host = 30004
};

struct Connection {
    Port* from;
    Port* to;
    ConnectionMode mode;
};
using Connections = std::list<Connection>;

struct Port {
    Port(std::string port_name, Handle port_handle, std::size_t max_packets,
         std::size_t max_bytes)
        : name(std::move(port_name)), handle(port_handle), capacity(max_packets),
          packets(max_packets, max_bytes), replies(max_packets, max_bytes)
    {
    }

    // Where packets sent on this port go: it is its own mailbox unless connected.
    std::size_t receivers() const { return outgoing.empty() ? 1 : outgoing.size(); }
    Port& receiver(std::size_t i) { return outgoing.empty() ? *this : *outgoing[i]->to; }

    bool exclusive() const;

    // Whether it has a connection for which a host registers itself.
    bool takes_host() const;

    const std::string name;
    const Handle handle;
    const std::size_t capacity; // of either queue, and of unanswered

    std::string host; // the one that registered itself
    bool copies = true;
    std::size_t turn = 0; // the receiver to begin with when there are no copies

    std::vector<Connections::iterator> outgoing;
    std::vector<Connections::iterator> incoming;

    PacketQueue packets;
    PacketQueue replies;
    std::deque<Port*> unanswered;      // senders of received packets, oldest first
    std::int64_t questions_before = 0; // those unanswered were received after so many
    std::uint64_t awaited = 0;         // packets sent from here that may still be answered
};

} // namespace velmo::model

#endif
