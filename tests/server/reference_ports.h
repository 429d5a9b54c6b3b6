// Ports as simply as they can be said, to compare a PortService with: no waiting, no
// threads, lists searched from end to end.
#ifndef VELMO_TESTS_SERVER_REFERENCE_PORTS_H
#define VELMO_TESTS_SERVER_REFERENCE_PORTS_H

#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "vl_result.h"

namespace velmo::tests {

class ReferencePorts {
public:
    using Handle = std::uint32_t;

    explicit ReferencePorts(std::size_t max_queue_bytes) : queue_bytes(max_queue_bytes) {}

    vl_result create_port(const std::string& name, Handle handle, std::uint32_t capacity);
    vl_result connect_port(const std::string& from, const std::string& to,
                           std::uint32_t mode);
    vl_result register_port_host(const std::string& name, const std::string& host);
    vl_result disconnect_port(Handle handle);
    vl_result send(Handle handle, const std::string& text, bool to_front);
    vl_result receive_packet(Handle handle, std::uint64_t from, std::string& text);
    vl_result reply_packet(Handle handle, const std::string& text);
    vl_result receive_reply(Handle handle, std::string& text);
    vl_result enable_copy(const std::string& name, std::uint32_t enable);
    std::vector<std::pair<std::string, std::string>> connections() const;

private:
    struct Packet {
        std::string text;
        Handle sender;
    };
    struct Port {
        std::string name;
        Handle handle;
        std::uint32_t capacity;
        std::string host;
        bool copies = true;
        std::size_t turn = 0;
        std::deque<Packet> packets;
        std::deque<Packet> replies;
        std::deque<Handle> unanswered;
    };
    struct Connection {
        Handle from;
        Handle to;
        std::uint32_t mode;
    };

    Port* find(Handle handle);
    Port* find(const std::string& name);
    std::vector<Port*> receivers(const Port& sender);
    bool has_room(const std::deque<Packet>& queue, const Port& port,
                  const std::string& text) const;
    bool may_still_be_answered(Handle sender) const;

    const std::size_t queue_bytes;
    std::list<Port> ports;
    std::list<Connection> all_connections;
};

} // namespace velmo::tests

#endif
