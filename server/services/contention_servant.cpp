#include "server/services/contention_servant.h"

#include "server/services/sequences.h"

namespace velmo::services {

using metrics::Operation;

ContentionServant::ContentionServant(model::ContentionService& model, const Calls& calls)
    : call(calls), contention(model)
{
}

CORBA::Long ContentionServant::out_contend(const char* group, const char* contender)
{
    return call(Operation::out_contend,
                [&] { return contention.out_contend(group, contender); });
}

CORBA::Long ContentionServant::regist_contender(const char* group, const char* contender,
                                                const Velmo::DATA_BUFFER& data,
                                                const char* role, CORBA::Long priority)
{
    return call(Operation::regist_contender, data, [&] {
        return contention.regist_contender(group, contender, received(data), role,
                                           priority);
    });
}

CORBA::Long ContentionServant::update_contender(const char* group, const char* contender)
{
    return call(Operation::update_contender,
                [&] { return contention.update_contender(group, contender); });
}

} // namespace velmo::services
