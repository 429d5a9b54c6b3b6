#include "cli/suggestion.h"

#include <gtest/gtest.h>

using velmo::cli::nearest;

namespace {

const std::vector<std::string> words = {"server", "settings", "point", "port", "event"};

TEST(Suggestion, IsTheNearestWord)
{
    EXPECT_EQ(nearest("pont", words), "point");
    EXPECT_EQ(nearest("potr", words), "port") << "two letters swapped";
    EXPECT_EQ(nearest("sever", words), "server");
    EXPECT_EQ(nearest("events", words), "event");
    EXPECT_EQ(nearest("sett", words), "settings") << "its beginning";
}

TEST(Suggestion, IsNoneWhenNothingIsNear)
{
    EXPECT_EQ(nearest("snapshot", words), "");
    EXPECT_EQ(nearest("x", words), "");
    EXPECT_EQ(nearest("", words), "");
    EXPECT_EQ(nearest("point", {}), "");
}

} // namespace
