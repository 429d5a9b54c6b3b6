#include "orb/arguments.h"
#include "orb/client.h"
#include "orb/options_omniorb.h"
#include "orb/timed_connection_omniorb.h"

// Written to be included after the broker's other headers, and in this order.
#include <omniORB4/internal/giopStrand.h>
#include <omniORB4/internal/giopRope.h>
#include <omniORB4/internal/GIOP_C.h>
#include <omniORB4/omniInterceptors.h>

namespace velmo::orb {

namespace {

// One connection for each call in progress: a waiting receive holds one.
constexpr const char* connections_per_server = "256";

CORBA::ULong clamp(Milliseconds timeout)
{
    return timeout.count() > 0 ? static_cast<CORBA::ULong>(timeout.count()) : 0;
}

// omniORB makes a request again that a server has declined by closing the connection, and
// allows each new connection its own time: a server that only ever declines would keep it
// busy for ever. Runs when a connection has been opened for a call.
CORBA::Boolean
limit_connections(omni::omniInterceptors::clientOpenConnection_T::info_T& opened)
{
    constexpr int most_for_a_call = 16;
    thread_local omni_time_t call; // calls differ by their deadlines
    thread_local int connections = 0;
    const omni_time_t& deadline = opened.giop_c.calldescriptor()->getDeadline();
    if (!deadline)
        return true;
    connections = deadline == call ? connections + 1 : 1;
    call = deadline;
    omni_time_t now;
    omni_thread::get_time(now);
    opened.reject = deadline <= now || connections > most_for_a_call;
    return true; // other interceptors may look at it
}

// By default omniORB waits and tries again when the server fails that a call was forwarded
// to, whether that server has carried it out or not. For all references of the process:
// what the broker keeps for a single one it keeps for ever.
CORBA::Boolean never_again(void*, CORBA::ULong, const CORBA::TRANSIENT&)
{
    return false;
}

// Instead of once more, when the process joins the same ORB again.
void intercept(omni::omniInterceptors::clientOpenConnection_T::interceptFunc function)
{
    auto& opening = omniORB::getInterceptors()->clientOpenConnection;
    opening.remove(function);
    opening.add(function);
}

} // namespace

CORBA::ORB_ptr join_or_make(Milliseconds connect_timeout)
{
    tune_streams();
    const std::string max_message = std::to_string(max_message_bytes);
    Arguments arguments{{"-ORBtraceLevel", "0", "-ORBgiopMaxMsgSize", max_message,
                         "-ORBmaxGIOPConnectionPerServer", connections_per_server}};
    CORBA::ORB_var orb = CORBA::ORB_init(arguments.count, arguments.values());
    omniORB::setClientConnectTimeout(clamp(connect_timeout));
    omniORB::installTransientExceptionHandler(nullptr, never_again);
    intercept(limit_connections);
    time_connections();
    return orb._retn();
}

CORBA::Object_ptr with_call_timeout(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                                    Milliseconds timeout)
{
    // _duplicate() would give the same object, and a time-out set on it would be
    // set for everybody.
    CORBA::String_var ior = orb->object_to_string(object);
    CORBA::Object_var copy = orb->string_to_object(ior.in());
    omniORB::setClientCallTimeout(copy.in(), clamp(timeout));
    return copy._retn();
}

void reapply_call_timeout(CORBA::Object_ptr fresh, Milliseconds timeout)
{
    omniORB::setClientCallTimeout(fresh, clamp(timeout));
}

} // namespace velmo::orb
