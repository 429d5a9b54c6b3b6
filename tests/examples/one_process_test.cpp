// Examples that need one process.
#include "tests/examples/example.h"

using namespace velmo::tests;

namespace {

class Example : public OneServer {};

TEST_F(Example, PointsAreCreatedReadListedAndRemoved)
{
    const char* const expected =
        "example/temperature: nobody has written it yet\n"
        "example/temperature: 180.5\n"
        "example/note (text, for the next shift): to be cleaned on Monday\n"
        "removing example/temperature\n"
        "removing example/note\n";
    EXPECT_EQ(output_of({example("points")}), expected);
    EXPECT_EQ(all_points(), Names{});
    EXPECT_EQ(output_of({example("points")}), expected) << "a second time";
}

TEST_F(Example, PointsLeavesThoseOfOthersAlone)
{
    ASSERT_EQ(create_point("level", "float64"), VL_OK);
    output_of({example("points")});
    EXPECT_EQ(all_points(), Names{"level"});
}

TEST_F(Example, FanOutCopiesAndTakesTurns)
{
    const char* const expected = "example news -> example reader 1\n"
                                 "example news -> example reader 2\n"
                                 "example news -> example reader 3\n"
                                 "example reader 1: one two three\n"
                                 "example reader 2: one two three\n"
                                 "example reader 3: one two three\n"
                                 "and now in turn\n"
                                 "example reader 1: one\n"
                                 "example reader 2: two\n"
                                 "example reader 3: three\n";
    EXPECT_EQ(output_of({example("fan_out")}), expected);
}

TEST_F(Example, ThreadsDoEveryJobOnce)
{
    EXPECT_EQ(output_of({example("threads")}),
              "100 jobs done by 4 workers, the sum of the squares is 338350\n");
    EXPECT_EQ(output_of({example("threads"), "2", "10"}),
              "10 jobs done by 2 workers, the sum of the squares is 385\n");
}

} // namespace
