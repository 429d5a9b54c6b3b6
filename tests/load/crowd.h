// Very many clients at once, without a process or a thread for each.
#ifndef VELMO_TESTS_LOAD_CROWD_H
#define VELMO_TESTS_LOAD_CROWD_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace velmo::tests {

// A server's addresses on this host.
struct Addresses {
    std::uint16_t port;
    std::string unix_socket; // empty: none
};

// Connections to a server, that each have made a request: every other one over TCP,
// or all.
class Crowd {
public:
    explicit Crowd(const Addresses& its_server) : server(its_server) {}

    // One more; false when the server has closed it without an answer.
    bool join();

    // The last ones leave.
    void leave(std::size_t how_many);

    std::size_t size() const { return connections.size(); }

    // Whether the server answers another request of that connection.
    bool is_served(std::size_t number) const;

private:
    const Addresses server;
    std::vector<Descriptor> connections;
};

// Connected to a unix socket without waiting for anything; not open when that failed.
Descriptor connected_at_once(const std::string& unix_socket);

} // namespace velmo::tests

#endif
