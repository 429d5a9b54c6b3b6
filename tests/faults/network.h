// Two hosts and the wire between them.
#ifndef VELMO_TESTS_FAULTS_NETWORK_H
#define VELMO_TESTS_FAULTS_NETWORK_H

#include <chrono>
#include <deque>
#include <mutex>
#include <random>
#include <string>
#include <thread>

#include "tests/support/process.h"

namespace velmo::tests {

// Hosts are network namespaces without a name: the kernel removes them with the last
// process that is in them, however a test ends. The wire is a thread of the test that
// carries packets from one to the other: this needs nothing of the kernel but tun devices,
// where queueing disciplines that delay and lose packets may be missing.
//
// The thread that makes it is on the client's host from then on, and so are the threads
// that it starts. Processes that on_server() starts are on the other one.
class Network {
public:
    static constexpr const char* server_address = "10.77.0.1";
    static constexpr const char* other_server_address = "10.77.0.3";
    static constexpr const char* client_address = "10.77.0.2";
    static constexpr const char* other_client_address = "10.77.0.4";

    // Why there can be none; empty when there can.
    static std::string unavailable();

    Network(); // throws std::system_error
    ~Network();
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    template <class Work>
    void on_server(Work work)
    {
        const Visit visit(*this);
        work();
    }

    // What the wire does to packets that enter it from now on.
    void delay(std::chrono::milliseconds each_way);
    void lose(int percent);
    void cut();
    void heal();

    // A host has this address from now on, and no other.
    void move_server(const char* address);
    void move_client(const char* address);

    int lost() const;

private:
    using Clock = std::chrono::steady_clock;

    // The calling thread is on the server's host as long as this lives.
    struct Visit {
        explicit Visit(const Network& network);
        ~Visit();
        const Network& network;
    };

    struct Packet {
        Clock::time_point due;
        std::string bytes;
    };

    struct End {
        Descriptor host;   // its namespace
        Descriptor device; // what is sent there comes out here
        std::deque<Packet> incoming;
    };

    static End new_host(const char* address);
    void run();
    void take(const End& from, End& to);
    static void deliver(End& end);

    const Descriptor home; // where the thread was before
    End server;
    End client;
    Descriptor stop_reader;
    Descriptor stop_writer;

    mutable std::mutex mutex; // guards what follows
    std::chrono::milliseconds latency{0};
    int loss = 0; // percent
    int lost_packets = 0;
    std::mt19937 random{1};

    std::thread wire;
};

} // namespace velmo::tests

#endif
