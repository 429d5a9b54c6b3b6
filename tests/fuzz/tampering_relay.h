// A server's replies, tampered with on their way.
#ifndef VELMO_TESTS_FUZZ_TAMPERING_RELAY_H
#define VELMO_TESTS_FUZZ_TAMPERING_RELAY_H

#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

#include "tests/support/process.h"

namespace velmo::tests {

// Listens on a free port of 127.0.0.1 and passes messages on to another port there, and
// back, for one connection at a time. A reply that was tampered with is the last one on
// its connection, so that a client does not wait for more than there is.
class TamperingRelay {
public:
    using Tamper = std::function<void(std::string& message)>;

    // Throws std::system_error.
    explicit TamperingRelay(std::uint16_t target);
    ~TamperingRelay();
    TamperingRelay(const TamperingRelay&) = delete;
    TamperingRelay& operator=(const TamperingRelay&) = delete;

    std::uint16_t port() const { return number; }

    // For the next reply, once.
    void tamper_with(Tamper tamper);

private:
    void run();
    void serve(const Descriptor& client);
    bool tampered_with(std::string& message);

    const std::uint16_t target;
    std::uint16_t number = 0;
    Descriptor listener;
    std::mutex mutex;
    Tamper tamper; // guarded by mutex
    std::thread thread;
};

} // namespace velmo::tests

#endif
