#include "tests/support/loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace velmo::tests {

namespace {

Descriptor stream_socket()
{
    Descriptor result(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    check_system_call(result.get() >= 0, "socket");
    return result;
}

sockaddr_in loopback(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

} // namespace

void check_system_call(bool good, const char* what)
{
    if (!good)
        throw std::system_error(errno, std::generic_category(), what);
}

Descriptor listening_socket(std::uint16_t& port)
{
    Descriptor result = stream_socket();
    sockaddr_in address = loopback(0);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    check_system_call(bind(result.get(), generic, length) == 0, "bind");
    check_system_call(listen(result.get(), 16) == 0, "listen");
    check_system_call(getsockname(result.get(), generic, &length) == 0, "getsockname");
    port = ntohs(address.sin_port);
    return result;
}

Descriptor connected_socket(std::uint16_t port)
{
    Descriptor result = stream_socket();
    const sockaddr_in address = loopback(port);
    if (connect(result.get(), reinterpret_cast<const sockaddr*>(&address),
                sizeof address) != 0)
        result.reset();
    return result;
}

SilentListener::SilentListener() : socket(listening_socket(number)) {}

std::size_t SilentListener::connections()
{
    pollfd waiting{socket.get(), POLLIN, 0};
    while (poll(&waiting, 1, 0) > 0)
        accepted.emplace_back(accept4(socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
    return accepted.size();
}

std::uint16_t free_port()
{
    return SilentListener().port();
}

bool somebody_listens(std::uint16_t port)
{
    return connected_socket(port).get() >= 0;
}

std::string naming_url(std::uint16_t port)
{
    return "corbaloc::1.2@127.0.0.1:" + std::to_string(port) + "/NameService";
}

} // namespace velmo::tests
