// Messages of the brokers' protocol, as bytes on a connection.
#ifndef VELMO_TESTS_SUPPORT_GIOP_H
#define VELMO_TESTS_SUPPORT_GIOP_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/support/process.h"

namespace velmo::tests::giop {

constexpr const char* magic = "GIOP"; // every message begins with it
constexpr std::size_t header_bytes = 12;

// Where the header has what, and what is told apart by it.
constexpr std::size_t minor_version_at = 5;
constexpr std::size_t flags_at = 6;
constexpr char low_byte_first = 1;
constexpr char more_fragments = 2;
constexpr std::size_t type_at = 7;
constexpr char request_type = 0;
constexpr char cancellation_type = 2;
constexpr std::size_t size_at = 8;

// A number of four bytes in the message's byte order; 0 where the message ends before it
// does. The header must be complete.
std::uint32_t number_at(const std::string& message, std::size_t at);

// What the header says of the bytes that follow it. The header must be complete.
std::size_t body_size(const std::string& message);

// Makes it true, of each of several messages; leaves less than a header alone.
void correct_body_sizes(std::string& messages);

// Connections wait for their other end for as long as tests have patience.
void limit_waiting(const Descriptor& connection);

// False when the other end has closed it, or is silent.
bool send(const Descriptor& connection, const std::string& bytes);

// A whole message; "" when there is none any more.
std::string receive(const Descriptor& connection);

// Takes what there is up to the end; false when there is none.
bool drain(const Descriptor& connection);

// Asks the object of that key whether it exists; whether it says so.
bool ping(const Descriptor& connection, const std::string& key);

} // namespace velmo::tests::giop

#endif
