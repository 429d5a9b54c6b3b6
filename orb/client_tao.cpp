#include "orb/client.h"

#include <tao/AnyTypeCode/Any.h>
#include <tao/Messaging/Messaging.h>
#include <tao/PolicyC.h>
#include <tao/Policy_ManagerC.h>

#include "orb/arguments.h"
#include "orb/options_tao.h"

namespace velmo::orb {

namespace {

// A policy that limits a time, destroyed with the list that holds it.
class TimePolicy {
public:
    TimePolicy(CORBA::ORB_ptr orb, CORBA::PolicyType type, Milliseconds timeout)
    {
        constexpr TimeBase::TimeT ticks_per_millisecond = 10000; // of 100 ns
        CORBA::Any value;
        value <<= static_cast<TimeBase::TimeT>(timeout.count()) * ticks_per_millisecond;
        policies.length(1);
        policies[0] = orb->create_policy(type, value);
    }
    ~TimePolicy() { policies[0]->destroy(); }

    TimePolicy(const TimePolicy&) = delete;
    TimePolicy& operator=(const TimePolicy&) = delete;

    const CORBA::PolicyList& list() const { return policies; }

private:
    CORBA::PolicyList policies;
};

void limit_connecting(CORBA::ORB_ptr orb, Milliseconds timeout)
{
    CORBA::Object_var object = orb->resolve_initial_references("ORBPolicyManager");
    CORBA::PolicyManager_var manager = CORBA::PolicyManager::_narrow(object.in());
    const TimePolicy limit(orb, TAO::CONNECTION_TIMEOUT_POLICY_TYPE, timeout);
    manager->set_policy_overrides(limit.list(), CORBA::ADD_OVERRIDE);
}

} // namespace

CORBA::ORB_ptr join_or_make(Milliseconds connect_timeout)
{
    std::vector<std::string> options = connection_options();
    // A caller sends by itself and for no longer than its time-out.
    options.insert(options.end(),
                   {"-ORBSvcConfDirective",
                    "static Resource_Factory '-ORBFlushingStrategy blocking'"});
    Arguments arguments{std::move(options)};
    CORBA::ORB_var orb = CORBA::ORB_init(arguments.count, arguments.values());
    if (connect_timeout.count() > 0)
        limit_connecting(orb.in(), connect_timeout);
    return orb._retn();
}

CORBA::Object_ptr with_call_timeout(CORBA::ORB_ptr orb, CORBA::Object_ptr object,
                                    Milliseconds timeout)
{
    if (timeout.count() <= 0)
        return object->_set_policy_overrides(CORBA::PolicyList(), CORBA::SET_OVERRIDE);
    const TimePolicy limit(orb, Messaging::RELATIVE_RT_TIMEOUT_POLICY_TYPE, timeout);
    return object->_set_policy_overrides(limit.list(), CORBA::SET_OVERRIDE);
}

void reapply_call_timeout(CORBA::Object_ptr, Milliseconds)
{
    // Narrowed references share their policies.
}

} // namespace velmo::orb
