#include <cstdio>

#include "orb/client.h"

namespace velmo::orb {

namespace {

const char* completion(CORBA::CompletionStatus status)
{
    switch (status) {
    case CORBA::COMPLETED_YES:
        return "YES";
    case CORBA::COMPLETED_NO:
        return "NO";
    default:
        return "MAYBE";
    }
}

} // namespace

std::string describe(const CORBA::Exception& exception)
{
    const auto* system = CORBA::SystemException::_downcast(&exception);
    std::string text = system ? "system exception, ID '" : "user exception, ID '";
    text.append(exception._rep_id()).append("'");
    if (!system)
        return text;

    char minor[16];
    std::snprintf(minor, sizeof minor, "0x%x", static_cast<unsigned>(system->minor()));
    text.append(", minor code = ").append(minor);
    if (const char* name = system->NP_minorString())
        text.append(" (").append(name).append(")");
    return text.append(", completed = ").append(completion(system->completed()));
}

bool is_timeout(const CORBA::SystemException& exception)
{
    return CORBA::TIMEOUT::_downcast(&exception) != nullptr;
}

} // namespace velmo::orb
