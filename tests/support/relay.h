// A detour for connections to a server.
#ifndef VELMO_TESTS_SUPPORT_RELAY_H
#define VELMO_TESTS_SUPPORT_RELAY_H

#include <cstdint>
#include <list>
#include <thread>

#include "tests/support/process.h"

namespace velmo::tests {

// Listens on a free port of 127.0.0.1 and passes everything on to another port there,
// and back. A broker takes objects behind it for another process's, wherever they are.
class Relay {
public:
    // Throws std::system_error.
    explicit Relay(std::uint16_t target);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    std::uint16_t port() const { return number; }

private:
    struct Connection {
        Descriptor client;
        Descriptor server;
    };

    void run();
    void accept();

    const std::uint16_t target;
    std::uint16_t number = 0;
    Descriptor listener;
    Descriptor stop_reader;
    Descriptor stop_writer;
    std::list<Connection> connections; // of the thread
    std::thread thread;
};

} // namespace velmo::tests

#endif
