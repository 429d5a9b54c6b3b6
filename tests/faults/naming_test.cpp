// A naming service that forgets what was registered, or is gone.
#include <csignal>

#include "tests/faults/servers.h"

using namespace velmo::tests;

namespace {

class AStandardNamingService : public RegisteredServer {};

TEST_F(AStandardNamingService, ThatRestartsEmptyIsFilledAgain)
{
    Fault fault("omniNames restarts and has forgotten everything: the first look-up");
    names->kill();
    names->restart_empty();
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    EXPECT_EQ(fault.call([] { return vl_mid_is_connect("S"); }), VL_OK);
    fault.recovers(make_port); // the server looks after its registration
}

TEST_F(AStandardNamingService, ThatRestartsEmptyDoesNotConcernWhoHasItsReferences)
{
    Fault fault(
        "omniNames restarts and has forgotten everything: calls of who has looked up");
    ASSERT_TRUE(port_is_there());
    names->kill();
    EXPECT_EQ(fault.call(make_port), VL_OK);
    names->restart_empty();
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(fault.call(make_port), VL_OK);
}

TEST_F(AStandardNamingService, ThatIsGoneWhenTheServerRestartsMakesTheServerWait)
{
    Fault fault("omniNames is gone, then the server fails; omniNames comes back");
    ASSERT_TRUE(port_is_there());
    names->kill();
    velmod->process().suspend();
    EXPECT_EQ(fault.call(make_port), 112);
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    velmod->process().signal(SIGCONT);
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE) << "nobody tells where it is";
    names->restart();
    fault.recovers(make_port);
}

} // namespace
