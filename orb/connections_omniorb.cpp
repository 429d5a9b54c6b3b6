#include "orb/connections_omniorb.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>

#include "orb/server.h"

// Written to be included after the broker's other headers, and in this order.
#include <omniORB4/internal/giopStream.h>
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/GIOP_S.h>
#include <omniORB4/omniInterceptors.h>
#include <omniORB4/tcpConnection.h>
#include <omniORB4/unixConnection.h>

namespace velmo::orb {

namespace {

using omni::omniInterceptors;

int socket_of(const omni::giopConnection* connection)
{
    if (const auto* tcp = dynamic_cast<const omni::tcpConnection*>(connection))
        return tcp->handle();
    if (const auto* local = dynamic_cast<const omni::unixConnection*>(connection))
        return local->handle();
    return -1;
}

// Where the call has come from that this thread serves, or has served last.
thread_local omni::giopConnection* served_connection = nullptr;

CORBA::Boolean note_connection(omniInterceptors::serverReceiveRequest_T::info_T& call)
{
    served_connection = call.giop_s.strand().connection;
    return true; // the call may go on
}

// No adapter here has such keys, and omniORB 4.2.5 answers a request for a short one
// over and over: what it raises then leaves the request unread.
CORBA::Boolean refuse_nul_key(omniInterceptors::serverReceiveRequest_T::info_T& call)
{
    if (call.giop_s.keysize() > 0 && *call.giop_s.key() == 0)
        throw CORBA::OBJECT_NOT_EXIST(0, CORBA::COMPLETED_NO);
    return true;
}

// Descriptors that clients' connections leave for everything else.
constexpr rlim_t most_kept_back = 64;

void (*tell_of_refusal)() = nullptr;

// The system gives the lowest number that is free: as many are in use, or nearly.
CORBA::Boolean refuse_when_short(omniInterceptors::serverAcceptConnection_T::info_T& client)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t kept_back = std::min(most_kept_back, limit.rlim_cur / 4);
    const int socket = socket_of(client.strand.connection);
    if (socket < 0 || static_cast<rlim_t>(socket) < limit.rlim_cur - kept_back)
        return true;
    client.reject = true;
    client.why = "the process may not open many more descriptors";
    if (tell_of_refusal)
        tell_of_refusal();
    return false; // nobody else needs to be asked
}

} // namespace

void look_after_connections(void (*refused)())
{
    tell_of_refusal = refused;
    omniInterceptors* interceptors = omniORB::getInterceptors();
    interceptors->serverReceiveRequest.add(note_connection);
    interceptors->serverReceiveRequest.add(refuse_nul_key);
    interceptors->serverAcceptConnection.add(refuse_when_short);
}

// The broker closes a socket only when no call of its connection is served any more.
ServedConnection::ServedConnection() : socket(socket_of(served_connection)) {}

bool ServedConnection::closed() const
{
    // Requests that lie unread do not hide the end.
    pollfd state{socket, POLLRDHUP, 0};
    return socket >= 0 && poll(&state, 1, 0) == 1;
}

} // namespace velmo::orb
