#include "server/services/service_manager_servant.h"

#include "server/services/sequences.h"
#include "vl_result.h"

namespace velmo::services {

ServiceManagerServant::ServiceManagerServant(std::vector<std::string> realms)
    : names(std::move(realms))
{
}

CORBA::Long ServiceManagerServant::get_releam_seq(Velmo::NAME_SEQ_out realms)
{
    realms = name_sequence(names);
    return VL_OK;
}

} // namespace velmo::services
