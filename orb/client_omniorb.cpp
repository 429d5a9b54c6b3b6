#include "orb/arguments.h"
#include "orb/client.h"
#include "orb/options_omniorb.h"
#include "orb/timed_connection_omniorb.h"

namespace velmo::orb {

namespace {

// One connection for each call in progress: a waiting receive holds one.
constexpr const char* connections_per_server = "256";

CORBA::ULong clamp(Milliseconds timeout)
{
    return timeout.count() > 0 ? static_cast<CORBA::ULong>(timeout.count()) : 0;
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
