// Stream sockets for the bare contender: the least that a call costs.
#ifndef VELMO_BENCH_CONTENDERS_STREAM_SOCKET_H
#define VELMO_BENCH_CONTENDERS_STREAM_SOCKET_H

#include <sys/uio.h>

#include <cstdint>
#include <string>

#include "tests/support/process.h"

namespace velmo::bench {

// Ahead of every request. The answer is as long as it says.
struct RequestHeader {
    std::uint32_t request_bytes; // that follow it
    std::uint32_t answer_bytes;
};

// address: a path, or a port of 127.0.0.1. Throw std::system_error.
tests::Descriptor connect_to(const std::string& address);
tests::Descriptor listen_on(std::string& address); // "": a free port, which it becomes

// Answers whoever connects, for ever.
[[noreturn]] void serve_raw(const tests::Descriptor& listener);

// All of it. False when the other end has closed.
bool read_all(int socket, void* to, std::size_t bytes);
bool write_all(int socket, iovec* parts, int count);

} // namespace velmo::bench

#endif
