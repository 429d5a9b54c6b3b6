// The unix socket through which clients of the same host call a server.
#ifndef VELMO_SERVER_UNIX_SOCKET_H
#define VELMO_SERVER_UNIX_SOCKET_H

#include <optional>
#include <string>
#include <utility>

#include "orb/server.h"

namespace velmo::server {

// A path for the socket of a server that listens at this endpoint: the same one for
// the same server, but no other live server's. It is in a folder that belongs to this
// user and is closed to everybody else, which is created if need be; none when there
// is no such folder. Sockets that killed servers have left there are removed.
std::optional<std::string> default_socket_path(const std::string& server,
                                               const orb::Endpoint& endpoint);

// Whether it is a folder of this user's, closed to everybody else, and no symbolic
// link. Creates it if nothing has that name.
bool is_private_folder(const std::string& path);

// Throws std::runtime_error when a socket cannot be made there without doing harm:
// the broker removes what it finds at the path.
void check_socket_path(const std::string& path);

// The file of a socket that this process has made: removed with its object.
class SocketFile {
public:
    explicit SocketFile(std::string its_path) : path(std::move(its_path)) {} // empty: none
    ~SocketFile() { remove(); }
    SocketFile(const SocketFile&) = delete;
    SocketFile& operator=(const SocketFile&) = delete;

    void remove();

private:
    std::string path;
};

} // namespace velmo::server

#endif
