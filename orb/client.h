// What a client does differently with each broker.
//
// Functions throw the broker's exceptions (CORBA::Exception) and nothing else,
// and may be called from any thread.
#ifndef VELMO_ORB_CLIENT_H
#define VELMO_ORB_CLIENT_H

#include <chrono>
#include <string>

#include "orb/corba.h"

namespace velmo::orb {

using Milliseconds = std::chrono::milliseconds;

// Messages up to this size pass, on clients and servers.
constexpr unsigned long max_message_bytes = 256ul << 20;

// An exception in words: kind, repository id, minor code, completion.
std::string describe(const CORBA::Exception& exception);

// Whether the call gave up waiting, as against having been refused.
bool is_timeout(const CORBA::SystemException& exception);

// The process's ORB: the one that the application has made, whose options hold, or a
// new one. connect_timeout (0: none) is set on the process in either case.
CORBA::ORB_ptr join_or_make(Milliseconds connect_timeout);

// A reference of its own to the same object, whose calls give up after the
// time-out (0: never). The given reference is left as it is.
CORBA::Object_ptr with_call_timeout(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                                    Milliseconds timeout);

// Narrowing may drop the time-out of a reference: sets it again on one that no
// other thread knows yet.
void reapply_call_timeout(CORBA::Object_ptr fresh, Milliseconds timeout);

// Narrows an object, asking its server, where that is needed, for no longer than
// query_timeout. The result, nil when the object is nil or of another type, is a
// reference of its own with call_timeout set on it.
template <class Interface>
typename Interface::_ptr_type narrow(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                                     Milliseconds query_timeout, Milliseconds call_timeout)
{
    if (CORBA::is_nil(object))
        return Interface::_nil();
    CORBA::Object_var hasty = with_call_timeout(orb, object, query_timeout);
    typename Interface::_var_type typed = Interface::_narrow(hasty.in());
    if (CORBA::is_nil(typed.in()))
        return Interface::_nil();
    CORBA::Object_var limited = with_call_timeout(orb, typed.in(), call_timeout);
    typename Interface::_var_type result = Interface::_unchecked_narrow(limited.in());
    reapply_call_timeout(result.in(), call_timeout);
    return result._retn();
}

// A string for a remote operation, which NULL is not on every broker.
inline const char* text(const char* string)
{
    return string ? string : "";
}

} // namespace velmo::orb

#endif
