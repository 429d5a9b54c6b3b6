#include "bench/contenders/stream_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

#include "tests/support/loopback.h"

namespace velmo::bench {

using tests::check_system_call;
using tests::Descriptor;

namespace {

bool is_path(const std::string& address)
{
    return !address.empty() && address.front() == '/';
}

sockaddr_un local_address(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

void send_at_once(int socket)
{
    const int on = 1; // fails on a unix socket, which needs none of it
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void answer(Descriptor socket)
{
    send_at_once(socket.get());
    std::vector<char> buffer;
    RequestHeader header{};
    while (read_all(socket.get(), &header, sizeof header)) {
        buffer.resize(std::max<std::size_t>(
            {buffer.size(), header.request_bytes, header.answer_bytes}));
        iovec whole{buffer.data(), header.answer_bytes};
        if (!read_all(socket.get(), buffer.data(), header.request_bytes) ||
            !write_all(socket.get(), &whole, 1))
            return;
    }
}

} // namespace

Descriptor connect_to(const std::string& address)
{
    if (!is_path(address)) {
        Descriptor socket =
            tests::connected_socket(static_cast<std::uint16_t>(std::stoul(address)));
        send_at_once(socket.get());
        return socket;
    }
    const sockaddr_un local = local_address(address);
    Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    check_system_call(connect(connection.get(), reinterpret_cast<const sockaddr*>(&local),
                              sizeof local) == 0,
                      "connect");
    return connection;
}

Descriptor listen_on(std::string& address)
{
    if (!is_path(address)) {
        std::uint16_t port = 0;
        Descriptor socket = tests::listening_socket(port);
        address = std::to_string(port);
        return socket;
    }
    const sockaddr_un local = local_address(address);
    Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    check_system_call(bind(listener.get(), reinterpret_cast<const sockaddr*>(&local),
                           sizeof local) == 0 &&
                          listen(listener.get(), SOMAXCONN) == 0,
                      "listen");
    return listener;
}

void serve_raw(const Descriptor& listener)
{
    for (;;) {
        Descriptor accepted(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        check_system_call(accepted.get() >= 0, "accept");
        std::thread(answer, std::move(accepted)).detach();
    }
}

bool read_all(int socket, void* to, std::size_t bytes)
{
    auto* next = static_cast<char*>(to);
    while (bytes > 0) {
        const ssize_t read = recv(socket, next, bytes, 0);
        if (read <= 0)
            return false;
        next += read;
        bytes -= static_cast<std::size_t>(read);
    }
    return true;
}

bool write_all(int socket, iovec* parts, int count)
{
    while (count > 0) {
        msghdr message{};
        message.msg_iov = parts;
        message.msg_iovlen = static_cast<std::size_t>(count);
        ssize_t written = sendmsg(socket, &message, MSG_NOSIGNAL);
        if (written < 0)
            return false;
        for (; count > 0 && static_cast<std::size_t>(written) >= parts->iov_len; --count)
            written -= static_cast<ssize_t>((parts++)->iov_len);
        if (count > 0) {
            parts->iov_base = static_cast<char*>(parts->iov_base) + written;
            parts->iov_len -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

} // namespace velmo::bench
