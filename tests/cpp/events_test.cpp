// Events.
#include "tests/e2e/one_server.h"
#include "velmo/velmo.hpp"

using namespace velmo::tests;

namespace {

class CppEvents : public OneServer {};

TEST_F(CppEvents, AreDeclaredAddedRaisedCountedAndCleared)
{
    const velmo::Events events;
    EXPECT_TRUE(events.add("stopped", 7).error() == velmo::Condition::not_found);
    ASSERT_TRUE(events.declare(7, "idle"));
    EXPECT_TRUE(events.declare(7).error() == velmo::Condition::already_exists);
    ASSERT_TRUE(events.add("stopped", 7));
    EXPECT_EQ(events.count("stopped").value(), 0);
    ASSERT_TRUE(events.raise("stopped", "dry run"));
    EXPECT_EQ(get_point("$SYS/events/stopped/data"), "dry run");
    ASSERT_TRUE(events.raise("stopped"));
    EXPECT_EQ(get_point("$SYS/events/stopped/data"), "idle");
    EXPECT_EQ(events.count("stopped").value(), 2);
    ASSERT_TRUE(events.clear("stopped"));
    EXPECT_EQ(events.count("stopped").value(), 0);
    EXPECT_EQ(events.count("nothing").code(), EVENT_DECLARE_NUL);
}

} // namespace
