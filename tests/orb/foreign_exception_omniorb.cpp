#include "tests/orb/foreign_exception.h"

#include <mutex>
#include <stdexcept>

#include <omniORB4/CORBA.h>
#include <omniORB4/omniInterceptors.h>

namespace velmo::tests {

namespace {

std::mutex mutex;
std::string victim; // the operation that fails, "" for none

CORBA::Boolean fail(omni::omniInterceptors::clientSendRequest_T::info_T& request)
{
    std::lock_guard<std::mutex> guard(mutex);
    if (!victim.empty() && victim == request.operation())
        throw std::runtime_error("not the broker's");
    return true;
}

void set_victim(const std::string& operation)
{
    // For good: a list of interceptors may not change while calls are under way.
    static const bool added = [] {
        omniORB::getInterceptors()->clientSendRequest.add(fail);
        return true;
    }();
    static_cast<void>(added);
    std::lock_guard<std::mutex> guard(mutex);
    victim = operation;
}

} // namespace

ForeignException::ForeignException(const std::string& operation)
{
    set_victim(operation);
}

ForeignException::~ForeignException()
{
    set_victim("");
}

bool undeclared_exceptions_pass()
{
    return true;
}

} // namespace velmo::tests
