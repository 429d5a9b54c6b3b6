#include "tests/support/loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <system_error>

namespace velmo::tests {

namespace {

void check(bool good, const char* what)
{
    if (!good)
        throw std::system_error(errno, std::generic_category(), what);
}

Descriptor stream_socket()
{
    Descriptor result(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    check(result.get() >= 0, "socket");
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

SilentListener::SilentListener() : socket(stream_socket())
{
    sockaddr_in address = loopback(0);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    check(bind(socket.get(), generic, length) == 0, "bind");
    check(listen(socket.get(), 16) == 0, "listen");
    check(getsockname(socket.get(), generic, &length) == 0, "getsockname");
    number = ntohs(address.sin_port);
}

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
    const Descriptor probe = stream_socket();
    const sockaddr_in address = loopback(port);
    return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address),
                   sizeof address) == 0;
}

std::string naming_url(std::uint16_t port)
{
    return "corbaloc::1.2@127.0.0.1:" + std::to_string(port) + "/NameService";
}

} // namespace velmo::tests
