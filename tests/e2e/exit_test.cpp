// Processes that use the library end without a crash, whatever was made first and
// whoever made the ORB. Under the address sanitizer also without leaks.

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

std::string test_name(std::string text)
{
    for (char& c : text)
        c = c == '-' ? '_' : c;
    return text;
}

void expect_clean_exit(const std::string& first, const std::string& orb,
                       const std::string& end)
{
    // An ORB that the application destroys waits for the calls under way.
    Velmod velmod({"--max-wait", "1000"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    Process process({EXIT_SCENARIO_PATH, first, orb, end});
    EXPECT_EQ(process.wait(), 0) << process.err();
    EXPECT_NE(process.err().find("used"), std::string::npos)
        << "the last log line is missing";
}

using MadeFirst = ::testing::TestWithParam<std::tuple<const char*, const char*>>;

TEST_P(MadeFirst, ExitsCleanly)
{
    expect_clean_exit(std::get<0>(GetParam()), std::get<1>(GetParam()), "return");
}

INSTANTIATE_TEST_SUITE_P(
    Exit, MadeFirst,
    ::testing::Combine(::testing::Values("manager", "registry", "errors", "naming", "log"),
                       ::testing::Values("library", "kept-before", "destroyed-before",
                                         "kept-after", "destroyed-after")),
    [](const auto& scenario) {
        return test_name(std::string(std::get<0>(scenario.param)) + "_orb_" +
                         std::get<1>(scenario.param));
    });

using Ended = ::testing::TestWithParam<std::tuple<const char*, const char*>>;

TEST_P(Ended, ExitsCleanly)
{
    expect_clean_exit("manager", std::get<0>(GetParam()), std::get<1>(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Exit, Ended,
                         ::testing::Combine(::testing::Values("library", "kept-before",
                                                              "destroyed-before"),
                                            ::testing::Values("exit", "call", "twice")),
                         [](const auto& scenario) {
                             return test_name(std::string("orb_") +
                                              std::get<0>(scenario.param) + "_end_" +
                                              std::get<1>(scenario.param));
                         });

} // namespace
