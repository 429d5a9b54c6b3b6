// Something happens, and somebody follows it.
#include "tests/examples/example.h"
#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

class EventsExample : public OneServer {};

TEST_F(EventsExample, WhatIsRaisedIsFollowed)
{
    Process follower({example("events"), "follow", "3"});
    EXPECT_EQ(output_of({example("events"), "raise", "dry run"}), "");
    const std::string first = "happened 1 times, the last time because of: dry run\n";
    ASSERT_TRUE(eventually([&] { return follower.out() == first; })) << follower.out();
    EXPECT_EQ(output_of({example("events"), "raise", "too hot", "too cold"}), "");
    EXPECT_EQ(follower.wait(), 0) << follower.err();
    const std::string last = "happened 3 times, the last time because of: too cold\n";
    const std::string out = follower.out(); // it may have seen the second one
    ASSERT_GE(out.size(), first.size() + last.size());
    EXPECT_EQ(out.substr(out.size() - last.size()), last);
}

} // namespace
