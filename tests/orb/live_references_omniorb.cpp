#include <atomic>
#include <memory>

#include "VelmoC.h"
#include "Velmo_serverC.h"
#include "tests/orb/live_references.h"

namespace velmo::tests {

namespace {

template <class Interface, class Stub>
class CountedReference : public Stub {
public:
    CountedReference(omniIOR* ior, omniIdentity* identity)
        : omniObjRef(Interface::_PD_repoId, ior, identity, true), Stub(ior, identity)
    {
        ++alive;
    }
    ~CountedReference() override { --alive; }

    static inline std::atomic<int> alive{0};
};

// Takes the place of the stubs' own maker of references: the last one made for an
// interface is used.
template <class Interface, class Stub, class StubFactory>
class CountingFactory : public StubFactory {
public:
    using Reference = CountedReference<Interface, Stub>;

    // The broker deletes it when its last duplicate is released.
    omniObjRef* newObjRef(omniIOR* ior, omniIdentity* identity) override
    {
        return std::make_unique<Reference>(ior, identity).release();
    }

    int alive() const { return Reference::alive; }
};

#define COUNTING_FACTORY(scope, interface)                                                 \
    CountingFactory<scope::interface, scope::_objref_##interface, scope::_pof_##interface>

const COUNTING_FACTORY(Velmo::DT_PORT_SVC, Port_Factory) ports;
const COUNTING_FACTORY(Velmo::DT_POINT_SVC, DT_Point_Factory) points;
const COUNTING_FACTORY(Velmo::SYSTEM_SVC, DT_manager) templates;
const COUNTING_FACTORY(Velmo::HEART_BIT, contender_server) contention;
const COUNTING_FACTORY(Velmo, VelmoServiceManager) manager;

#undef COUNTING_FACTORY

} // namespace

bool references_can_be_counted()
{
    return true;
}

int live_references()
{
    return ports.alive() + points.alive() + templates.alive() + contention.alive() +
           manager.alive();
}

int live_port_references()
{
    return ports.alive();
}

} // namespace velmo::tests
