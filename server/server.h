// A Velmo server: realms, their services, and how clients find them.
#ifndef VELMO_SERVER_SERVER_H
#define VELMO_SERVER_SERVER_H

#include <memory>
#include <string>
#include <thread>

#include "server/naming/naming_tree.h"
#include "server/naming/registrar.h"
#include "server/options.h"
#include "server/services/services.h"
#include "server/unix_socket.h"

namespace velmo::server {

// Serves from its construction until stop(). One thread uses it.
class Server {
public:
    // Throws orb::EndpointError, naming::RegistrationError, std::runtime_error (the
    // unix socket) and CORBA::Exception. Then the process has to end.
    explicit Server(const Options& options);

    // Calls stop().
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The naming service in which clients find it.
    const std::string& naming_url() const { return url; }

    // Ends all waiting, removes its names, and lets calls in progress end. Blocks for
    // two seconds at most; false when a client has held it up for that long, in which
    // case the process must end at once, without destructors.
    bool stop();

private:
    services::Realms realms;
    std::string socket_path;
    CORBA::ORB_var orb;
    SocketFile socket_file; // not before the broker has made it
    std::unique_ptr<naming::NamingTree> own_naming;
    std::unique_ptr<naming::Registrar> registrar;
    std::string url;
    std::thread runner;
};

} // namespace velmo::server

#endif
