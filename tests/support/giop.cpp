#include "tests/support/giop.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>

#include "tests/support/loopback.h"

namespace velmo::tests::giop {

namespace {

// The position of the byte of a number that counts 256 to this power.
std::size_t byte_of(const std::string& message, std::size_t at, std::size_t power)
{
    return at + ((message[flags_at] & low_byte_first) != 0 ? power : 3 - power);
}

void set_body_size(std::string& message, std::size_t size)
{
    for (std::size_t power = 0; power < 4; ++power)
        message[byte_of(message, size_at, power)] = static_cast<char>(size >> 8 * power);
}

bool receive_exactly(const Descriptor& connection, std::size_t count, std::string& bytes)
{
    const std::size_t before = bytes.size();
    bytes.resize(before + count);
    return count == 0 || recv(connection.get(), &bytes[before], count, MSG_WAITALL) ==
                             static_cast<ssize_t>(count);
}

void append(std::string& body, std::uint32_t number)
{
    body.resize((body.size() + 3) / 4 * 4);
    for (int shift = 0; shift < 32; shift += 8)
        body += static_cast<char>(number >> shift);
}

void append(std::string& body, const std::string& bytes)
{
    append(body, static_cast<std::uint32_t>(bytes.size()));
    body += bytes;
}

} // namespace

std::uint32_t number_at(const std::string& message, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t power = 0; power < 4 && at + 3 < message.size(); ++power)
        number |= static_cast<std::uint32_t>(
                      static_cast<unsigned char>(message[byte_of(message, at, power)]))
                  << 8 * power;
    return number;
}

std::size_t body_size(const std::string& message)
{
    return number_at(message, size_at);
}

void correct_body_sizes(std::string& messages)
{
    std::string corrected;
    for (std::size_t begin = 0; begin < messages.size();) {
        const std::size_t end = std::min(messages.find(magic, begin + 1), messages.size());
        std::string message = messages.substr(begin, end - begin);
        if (message.size() >= header_bytes)
            set_body_size(message, message.size() - header_bytes);
        corrected += message;
        begin = end;
    }
    messages = corrected;
}

void limit_waiting(const Descriptor& connection)
{
    const timeval limit{std::chrono::seconds(patience).count(), 0};
    check_system_call(
        setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit) == 0,
        "setsockopt");
}

bool send(const Descriptor& connection, const std::string& bytes)
{
    return ::send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

std::string receive(const Descriptor& connection)
{
    std::string message;
    const bool whole = receive_exactly(connection, header_bytes, message) &&
                       receive_exactly(connection, body_size(message), message);
    return whole ? message : "";
}

bool drain(const Descriptor& connection)
{
    char taken[4096];
    ssize_t count;
    do
        count = recv(connection.get(), taken, sizeof taken, 0);
    while (count > 0);
    return count == 0 || errno == ECONNRESET;
}

bool ping(const Descriptor& connection, const std::string& key)
{
    // GIOP 1.0, low byte first: a request without service contexts.
    static const std::string request_header("GIOP\1\0\1\0\0\0\0\0", header_bytes);
    static const std::string operation("_non_existent", sizeof "_non_existent");
    std::string body;
    append(body, 0); // no service contexts
    append(body, 1); // the request's number
    body += '\1';    // it wants a reply
    append(body, key);
    append(body, operation); // with its NUL
    append(body, 0);         // no principal
    std::string request = request_header + body;
    set_body_size(request, body.size());
    if (!send(connection, request))
        return false;
    // Likewise: contexts, number, no exception, and the answer: it does exist. TAO answers
    // that it is elsewhere, and where.
    const std::string reply = receive(connection);
    static const std::string exists("\0\0\0\0\1\0\0\0\0\0\0\0\0", 13);
    static const std::string elsewhere("\0\0\0\0\1\0\0\0\3\0\0\0", 12);
    return reply.size() >= header_bytes && reply[7] == 1 &&
           (reply.substr(header_bytes) == exists ||
            reply.substr(header_bytes, elsewhere.size()) == elsewhere);
}

} // namespace velmo::tests::giop
