// Objects of the test's own process, reached through the broker.
#ifndef VELMO_TESTS_SUPPORT_TEST_ORB_H
#define VELMO_TESTS_SUPPORT_TEST_ORB_H

#include <memory>
#include <utility>

#include "orb/server.h"

namespace velmo::tests {

// The ORB of the test program, listening on loopback; made at the first use and
// destroyed after the last test.
CORBA::ORB_ptr test_orb();

// A reference that nobody answers, of no known type.
CORBA::Object_var dead_reference();

// A servant that is reachable for as long as this object lives.
template <class Servant>
class Published {
public:
    template <class... Arguments>
    explicit Published(Arguments&&... arguments)
        : servant(
              std::make_unique<Servant>(std::forward<Arguments>(arguments)...).release())
    {
        adapter = root_adapter();
        id = adapter->activate_object(servant.get());
    }
    ~Published() { withdraw(); }
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    // Callers find nobody from now on. The servant stays until the object goes.
    void withdraw()
    {
        if (reachable)
            adapter->deactivate_object(id.in());
        reachable = false;
    }

    Servant* operator->() { return servant.get(); }
    CORBA::Object_var reference() const
    {
        return CORBA::Object_var(adapter->id_to_reference(id.in()));
    }

private:
    static PortableServer::POA_ptr root_adapter()
    {
        CORBA::Object_var object = test_orb()->resolve_initial_references("RootPOA");
        PortableServer::POA_var root = PortableServer::POA::_narrow(object.in());
        PortableServer::POAManager_var manager = root->the_POAManager();
        manager->activate();
        return root._retn();
    }

    // Calls under way hold the servant as well.
    struct LetGo {
        void operator()(Servant* counted) const { counted->_remove_ref(); }
    };

    std::unique_ptr<Servant, LetGo> servant;
    PortableServer::POA_var adapter;
    PortableServer::ObjectId_var id;
    bool reachable = true;
};

} // namespace velmo::tests

#endif
