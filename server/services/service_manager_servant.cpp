#include "server/services/service_manager_servant.h"

#include "server/services/sequences.h"
#include "vl_result.h"

namespace velmo::services {

using metrics::Operation;

ServiceManagerServant::ServiceManagerServant(std::vector<std::string> realms,
                                             const Calls& calls)
    : call(calls), names(std::move(realms))
{
}

CORBA::Long ServiceManagerServant::get_releam_seq(Velmo::NAME_SEQ_out realms)
{
    realms = new Velmo::NAME_SEQ;
    return call(Operation::get_releam_seq, [&] {
        fill(*realms.ptr(), names);
        return VL_OK;
    });
}

} // namespace velmo::services
