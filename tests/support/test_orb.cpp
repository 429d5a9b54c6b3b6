#include "tests/support/test_orb.h"

#include <memory>

#include <gtest/gtest.h>

namespace velmo::tests {

namespace {

class TestOrb : public ::testing::Environment {
public:
    static CORBA::ORB_var& orb()
    {
        static CORBA::ORB_var only;
        return only;
    }

    void TearDown() override
    {
        if (!CORBA::is_nil(orb().in()))
            orb()->destroy();
        orb() = CORBA::ORB::_nil();
    }
};

const ::testing::Environment* const registered =
    ::testing::AddGlobalTestEnvironment(std::make_unique<TestOrb>().release());

} // namespace

CORBA::ORB_ptr test_orb()
{
    static_cast<void>(registered);
    if (CORBA::is_nil(TestOrb::orb().in()))
        TestOrb::orb() = orb::make_server_orb({{{"127.0.0.1", 0}}, ""});
    return TestOrb::orb().in();
}

CORBA::Object_var dead_reference()
{
    // tcpmux, which nobody runs; reserved for the superuser.
    const char* const url = "corbaloc::1.2@127.0.0.1:1/nobody";
    return CORBA::Object_var(test_orb()->string_to_object(url));
}

} // namespace velmo::tests
