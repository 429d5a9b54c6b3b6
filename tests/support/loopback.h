// The loopback interface, for tests.
#ifndef VELMO_TESTS_SUPPORT_LOOPBACK_H
#define VELMO_TESTS_SUPPORT_LOOPBACK_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace velmo::tests {

// Throws std::system_error when a system call was not good.
void check_system_call(bool good, const char* what);

// A socket that listens on a free port of 127.0.0.1. Throws std::system_error.
Descriptor listening_socket(std::uint16_t& port);

// A socket connected to that port of 127.0.0.1, or not open when nobody listens.
Descriptor connected_socket(std::uint16_t port);

// A listening socket on a free port of 127.0.0.1. It accepts connections as far
// as the kernel does so by itself, and never answers.
class SilentListener {
public:
    SilentListener();
    std::uint16_t port() const { return number; }

    // How many connections were made so far.
    std::size_t connections();

private:
    std::uint16_t number = 0;
    Descriptor socket;
    std::vector<Descriptor> accepted;
};

// A port of 127.0.0.1 that nobody listens on, as far as one can tell.
std::uint16_t free_port();

// Whether somebody listens on that port of 127.0.0.1.
bool somebody_listens(std::uint16_t port);

// The URL of a naming service on that port of 127.0.0.1.
std::string naming_url(std::uint16_t port);

} // namespace velmo::tests

#endif
