#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

#include "orb/arguments.h"
#include "orb/connections_omniorb.h"
#include "orb/listening.h"
#include "orb/options_omniorb.h"
#include "orb/server.h"

namespace velmo::orb {

namespace {

// A free port, as the system gives it. omniORB could ask for one itself, but then it
// leaves SO_REUSEADDR off, and after a crash of the server nobody could listen on that
// port until its last client has closed its connection.
std::uint16_t free_port(const std::string& host)
{
    addrinfo hints{};
    hints.ai_flags = AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0)
        throw EndpointError("there is no address for host \"" + host + "\"");
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, freeaddrinfo);

    const int probe = socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    const bool bound = probe >= 0 && bind(probe, found->ai_addr, found->ai_addrlen) == 0 &&
                       getsockname(probe, generic, &length) == 0;
    const std::error_code reason(errno, std::generic_category());
    if (probe >= 0)
        close(probe);
    if (!bound)
        throw EndpointError(host + ": " + reason.message());
    const auto* v4 = reinterpret_cast<const sockaddr_in*>(&address);
    const auto* v6 = reinterpret_cast<const sockaddr_in6*>(&address);
    return ntohs(address.ss_family == AF_INET6 ? v6->sin6_port : v4->sin_port);
}

CORBA::ORB_var listening_orb(const ServerOptions& options)
{
    // With a thread for each connection, however many there are: calls may wait for long,
    // and those that a pool has no thread for would wait for them.
    std::vector<std::string> arguments{"-ORBtraceLevel",
                                       "0",
                                       "-ORBgiopMaxMsgSize",
                                       std::to_string(options.max_message),
                                       "-ORBthreadPerConnectionUpperLimit",
                                       "1000000"};
    for (const Endpoint& endpoint : options.endpoints) {
        const std::uint16_t port = endpoint.port ? endpoint.port : free_port(endpoint.host);
        arguments.insert(arguments.end(),
                         {"-ORBendPoint", "giop:tcp:" + url_host(endpoint.host) + ":" +
                                              std::to_string(port)});
    }
    if (!options.unix_socket.empty()) {
        arguments.insert(arguments.end(),
                         {"-ORBendPoint", "giop:unix:" + options.unix_socket,
                          "-ORBunixTransportPermission", "700"});
    }
    Arguments vector{std::move(arguments)};
    CORBA::ORB_var orb = CORBA::ORB_init(vector.count, vector.values());
    look_after_connections(options.refused);
    try {
        // The ORB listens as soon as it has an object adapter.
        CORBA::Object_var adapter = orb->resolve_initial_references("RootPOA");
        lengthen_queues();
    } catch (const CORBA::INITIALIZE& error) {
        orb->destroy();
        throw EndpointError(describe(error));
    }
    return orb;
}

} // namespace

Abilities abilities()
{
    return {true, true, true, true, 64};
}

CORBA::ORB_var make_server_orb(const ServerOptions& options)
{
    tune_streams();
    const auto any_free = [](const Endpoint& endpoint) { return endpoint.port == 0; };
    const bool may_retry =
        std::any_of(options.endpoints.begin(), options.endpoints.end(), any_free);
    for (int attempt = 1;; ++attempt) {
        try {
            return listening_orb(options);
        } catch (const EndpointError&) {
            // Somebody else may have taken a port that was free a moment ago.
            if (!may_retry || attempt == 5)
                throw;
        }
    }
}

CORBA::Object_ptr activate_under_key(CORBA::ORB_ptr orb, const char* key,
                                     PortableServer::Servant servant)
{
    CORBA::Object_var object = orb->resolve_initial_references("omniINSPOA");
    PortableServer::POA_var adapter = PortableServer::POA::_narrow(object.in());
    PortableServer::ObjectId_var id = PortableServer::string_to_ObjectId(key);
    adapter->activate_object_with_id(id.in(), servant);
    PortableServer::POAManager_var manager = adapter->the_POAManager();
    manager->activate();
    return adapter->id_to_reference(id.in());
}

} // namespace velmo::orb
