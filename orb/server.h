// What a server does differently with each broker.
//
// Functions throw the broker's exceptions (CORBA::Exception) unless they say
// otherwise.
#ifndef VELMO_ORB_SERVER_H
#define VELMO_ORB_SERVER_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "orb/client.h"

namespace velmo::orb {

struct Endpoint {
    std::string host;
    std::uint16_t port = 0; // 0: any free one
};

// A host as URLs have it: numeric IPv6 addresses in brackets.
std::string url_host(const std::string& host);

// What a server can do with one broker and not with another, and what that costs.
struct Abilities {
    bool unix_sockets;        // listen on them, beside TCP
    bool ipv6;                // listen on addresses of IP version 6
    bool sees_connections;    // tell what becomes of them: see ServedConnection
    bool refuses_connections; // while short of descriptors: see ServerOptions::refused
    unsigned connection_kib;  // the most memory for one, its thread's stack included
};
Abilities abilities();

struct ServerOptions {
    std::vector<Endpoint> endpoints;
    std::string unix_socket; // path, empty for none; see Abilities
    // Larger ones are refused before a servant sees them; brokers without such a limit
    // ignore it.
    unsigned long max_message = max_message_bytes;
    // Called, by any thread, for every connection that was closed at once since the process
    // may not open many more descriptors; brokers that cannot do so never call it.
    void (*refused)() = nullptr;
};

// An endpoint that cannot be had, most often since the port is taken.
class EndpointError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An ORB that listens. Throws EndpointError.
CORBA::ORB_var make_server_orb(const ServerOptions& options);

// What every servant derives from, beside its skeleton: counted by reference.
#if defined(VELMO_ORB_TAO)
using ServantBase = PortableServer::ServantBase;
#else
using ServantBase = PortableServer::RefCountServantBase;
#endif

// Activates a servant so that corbaloc::HOST:PORT/KEY finds it, today and after
// a restart.
CORBA::Object_ptr activate_under_key(CORBA::ORB_ptr orb, const char* key,
                                     PortableServer::Servant servant);

// The connection of the client that the calling thread serves. To be made and used
// within a servant's operation; closed() by any thread while that lasts.
class ServedConnection {
public:
    ServedConnection();

    // Whether the client has closed it, or died. One whose host is cut off is not told
    // from one that is silent. Costs a system call, does not block. Never true for a
    // caller within this process, nor where the broker does not see connections.
    bool closed() const;

private:
    int socket; // -1: none
};

// The host and port that a reference names first (what "port 0" became).
// Throws std::runtime_error for a reference without an internet address.
Endpoint published_endpoint(CORBA::ORB_ptr orb, CORBA::Object_ptr object);

} // namespace velmo::orb

#endif
