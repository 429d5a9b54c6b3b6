// A client that does a bit of everything.
#ifndef VELMO_TESTS_LOAD_CLIENT_H
#define VELMO_TESTS_LOAD_CLIENT_H

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "cli/histogram.h"

namespace velmo::tests {

// Calls the default server through the library's functions, on whatever thread; one thread
// at a time. What it creates in a round is gone at its end, and every answer is checked: a
// wrong one is a failure of the test.
class Client {
public:
    using Latencies = std::map<std::string, cli::Histogram>; // by kind of operation

    // Creates its ports and its event. number: its own, from 0 on.
    explicit Client(unsigned int number);

    // Waits, for as long as the server lets it, for the packet that lets it go on.
    void wait_for_packet();
    void end_waiting() const;

    void do_round();

    const Latencies& latencies() const { return taken; }
    std::uint64_t operations() const { return calls; }

private:
    void use_point();
    void use_mailbox();
    void use_connection();
    void use_event();
    void use_contention();
    void fail();

    // Makes a call, and notes how long that took. Gives its result.
    template <class Call>
    auto timed(const char* kind, Call call)
    {
        const auto begin = std::chrono::steady_clock::now();
        auto result = call();
        taken[kind].add(std::chrono::steady_clock::now() - begin);
        ++calls;
        return result;
    }

    std::string payload() const;

    const std::string name;      // of whatever it creates, or its beginning
    const unsigned int port;     // a handle: sends, and is its own mailbox
    const unsigned int receiver; // likewise: what the port is connected to
    unsigned int round = 0;
    Latencies taken;
    std::uint64_t calls = 0;
};

} // namespace velmo::tests

#endif
