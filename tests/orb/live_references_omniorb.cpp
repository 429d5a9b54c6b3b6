#include <atomic>
#include <memory>

#include "VelmoC.h"
#include "tests/orb/live_references.h"

namespace velmo::tests {

namespace {

using PortFactory = Velmo::DT_PORT_SVC::Port_Factory;

std::atomic<int> alive{0};

class CountedReference : public Velmo::DT_PORT_SVC::_objref_Port_Factory {
public:
    CountedReference(omniIOR* ior, omniIdentity* identity)
        : omniObjRef(PortFactory::_PD_repoId, ior, identity, true),
          _objref_Port_Factory(ior, identity)
    {
        ++alive;
    }
    ~CountedReference() override { --alive; }
};

// Takes the place of the stubs' own maker of references: the last one made for an
// interface is used.
class CountingFactory : public Velmo::DT_PORT_SVC::_pof_Port_Factory {
public:
    // The broker deletes it when its last duplicate is released.
    omniObjRef* newObjRef(omniIOR* ior, omniIdentity* identity) override
    {
        return std::make_unique<CountedReference>(ior, identity).release();
    }
};

const CountingFactory factory;

} // namespace

bool references_can_be_counted()
{
    return true;
}

int live_port_references()
{
    return alive;
}

} // namespace velmo::tests
