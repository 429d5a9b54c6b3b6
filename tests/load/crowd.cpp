#include "tests/load/crowd.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>

#include "tests/support/giop.h"
#include "tests/support/loopback.h"

namespace velmo::tests {

namespace {

constexpr const char* key = "NameService"; // of an object that every server has

Descriptor unix_connection(const std::string& path, int flags)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    Descriptor result(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
    check_system_call(result.get() >= 0, "socket");
    if (connect(result.get(), reinterpret_cast<const sockaddr*>(&address),
                sizeof address) != 0)
        result.reset();
    return result;
}

} // namespace

bool Crowd::join()
{
    Descriptor connection = connections.size() % 2 == 0 || server.unix_socket.empty()
                                ? connected_socket(server.port)
                                : unix_connection(server.unix_socket, 0);
    check_system_call(connection.get() >= 0, "connect");
    giop::limit_waiting(connection);
    if (!giop::ping(connection, key))
        return false;
    connections.push_back(std::move(connection));
    return true;
}

void Crowd::leave(std::size_t how_many)
{
    connections.erase(connections.end() - static_cast<std::ptrdiff_t>(how_many),
                      connections.end());
}

bool Crowd::is_served(std::size_t number) const
{
    return giop::ping(connections.at(number), key);
}

Descriptor connected_at_once(const std::string& unix_socket)
{
    return unix_connection(unix_socket, SOCK_NONBLOCK);
}

} // namespace velmo::tests
