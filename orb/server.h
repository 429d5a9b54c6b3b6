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

struct ServerOptions {
    std::vector<Endpoint> endpoints;
    std::string unix_socket; // path, empty for none; brokers without them ignore it
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

// The host and port that a reference names first (what "port 0" became).
// Throws std::runtime_error for a reference without an internet address.
Endpoint published_endpoint(CORBA::ORB_ptr orb, CORBA::Object_ptr object);

} // namespace velmo::orb

#endif
