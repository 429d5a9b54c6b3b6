// Messages of the brokers' protocol, as bytes on a connection.
#ifndef VELMO_TESTS_SUPPORT_GIOP_H
#define VELMO_TESTS_SUPPORT_GIOP_H

#include <cstddef>
#include <string>

#include "tests/support/process.h"

namespace velmo::tests::giop {

constexpr std::size_t header_bytes = 12;

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
