#include "tests/support/test_orb.h"

#include <memory>
#include <thread>

#include <gtest/gtest.h>

namespace velmo::tests {

namespace {

// With a thread that runs it: some brokers accept no connection otherwise.
class TestOrb : public ::testing::Environment {
public:
    static CORBA::ORB_ptr orb()
    {
        if (CORBA::is_nil(only.in())) {
            only = orb::make_server_orb({{{"127.0.0.1", 0}}, ""});
            runner = std::thread([] {
                try {
                    only->run();
                } catch (const CORBA::BAD_INV_ORDER&) {
                    // The tests ended before it began.
                }
            });
        }
        return only.in();
    }

    void TearDown() override { end(); }

private:
    static void end()
    {
        if (CORBA::is_nil(only.in()))
            return;
        only->shutdown(true);
        runner.join();
        only->destroy();
        only = CORBA::ORB::_nil();
    }

    // For programs that have no environments.
    struct End {
        ~End() { end(); }
    };

    static inline CORBA::ORB_var only;
    static inline std::thread runner;
    static inline const End at_exit{};
};

const ::testing::Environment* const registered =
    ::testing::AddGlobalTestEnvironment(std::make_unique<TestOrb>().release());

} // namespace

CORBA::ORB_ptr test_orb()
{
    static_cast<void>(registered);
    return TestOrb::orb();
}

CORBA::Object_var dead_reference()
{
    // tcpmux, which nobody runs; reserved for the superuser.
    const char* const url = "corbaloc::1.2@127.0.0.1:1/nobody";
    return CORBA::Object_var(test_orb()->string_to_object(url));
}

} // namespace velmo::tests
