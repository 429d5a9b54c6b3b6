#include <tao/SystemException.h>

#include "orb/client.h"

namespace velmo::orb {

std::string describe(const CORBA::Exception& exception)
{
    return exception._info().c_str();
}

bool is_timeout(const CORBA::SystemException& exception)
{
    return CORBA::TIMEOUT::_downcast(&exception) != nullptr;
}

} // namespace velmo::orb
