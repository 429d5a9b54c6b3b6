// A plain HTTP request, for tests.
#ifndef VELMO_TESTS_SUPPORT_HTTP_GET_H
#define VELMO_TESTS_SUPPORT_HTTP_GET_H

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "tests/support/process.h"

namespace velmo::tests {

// A connection to that port of 127.0.0.1; of no use where nobody listens.
inline Descriptor connection_to(std::uint16_t port)
{
    Descriptor connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(connection.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) !=
        0)
        connection.reset();
    return connection;
}

// The whole answer of that port of 127.0.0.1, headers included; "" without one.
inline std::string http_get(std::uint16_t port, const std::string& path)
{
    const Descriptor connection = connection_to(port);
    const std::string request =
        "GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n";
    if (send(connection.get(), request.data(), request.size(), MSG_NOSIGNAL) < 0)
        return "";
    std::string answer;
    char block[4096];
    for (ssize_t got; (got = recv(connection.get(), block, sizeof block, 0)) > 0;)
        answer.append(block, static_cast<std::size_t>(got));
    return answer;
}

} // namespace velmo::tests

#endif
