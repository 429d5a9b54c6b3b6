// A client of the matrix: what becomes of its calls while the test that runs it kills,
// restarts and stops the default server.

#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "tests/e2e/functions.h"
#include "tests/matrix/dialogue.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

// Goes on when the other side has done its part.
void take_turns(const std::string& said)
{
    std::cout << said << std::endl;
    std::string line;
    ASSERT_TRUE(std::getline(std::cin, line)) << "the other side has given up";
}

bool fails_to_reach(const Function& function, int code)
{
    return code == function.failed || code == function.no_reference;
}

TEST(Restart, OfTheServerFailsCallsOnlyWhileItIsDown)
{
    for (const Function& function : functions)
        EXPECT_NE(function.call(nullptr), VL_NO_REFERENCE) << function.name;
    ASSERT_NO_FATAL_FAILURE(take_turns(used_server)); // kills it

    for (const Function& function : functions) {
        const int code = function.call(nullptr);
        EXPECT_TRUE(fails_to_reach(function, code)) << function.name << " " << code;
    }
    ASSERT_NO_FATAL_FAILURE(take_turns(missed_server)); // starts it again

    // A reference that is cached still may cost a call.
    for (const Function& function : functions)
        function.call(nullptr);
    for (const Function& function : functions) {
        const int code = function.call(nullptr);
        EXPECT_TRUE(code == VL_OK || !fails_to_reach(function, code))
            << function.name << " " << code;
    }
    ASSERT_EQ(create_port("after", 77), VL_OK);
    ASSERT_EQ(send(77, "after"), VL_OK);
    EXPECT_EQ(receive(77), "after");
}

TEST(Timeouts, EndACallThatTakesLonger)
{
    ASSERT_EQ(create_port("p", 1), VL_OK);
    EXPECT_EQ(receive(1, 0xFFFFFFFF), in_brackets(123));
    EXPECT_EQ(create_port("p", 1), OBJECT_ALREADY_EXSIT) << "looked up afresh";
    // The server may still wait on behalf of that receive, and hand it a packet.
    ASSERT_EQ(create_port("q", 2), VL_OK);
    ASSERT_EQ(send(2, "next"), VL_OK);
    EXPECT_EQ(receive(2), "next");
}

TEST(Timeouts, EndCallsToAServerThatStandsStill)
{
    ASSERT_EQ(create_port("r", 3), VL_OK);
    ASSERT_NO_FATAL_FAILURE(take_turns(used_server)); // suspends it
    EXPECT_EQ(send(3, "x"), 112);
    const int next = send(3, "x"); // whether it is found depends on who answers for naming
    EXPECT_TRUE(next == 112 || next == VL_NO_REFERENCE) << next;
    ASSERT_NO_FATAL_FAILURE(take_turns(missed_server)); // wakes it
    EXPECT_TRUE(eventually([] { return send(3, "y") == VL_OK; }));
    std::string last;
    EXPECT_TRUE(eventually([&] { return (last = receive(3)) == "y"; })) << last;
}

} // namespace
