// Settings.
#include <gtest/gtest.h>

#include "tests/support/settings_file.h"
#include "velmo/velmo.hpp"

using namespace std::chrono_literals;
using velmo::tests::SettingsFile;

namespace {

TEST(CppSettings, AreThoseOfTheLibraryOrOfAFile)
{
    SettingsFile file("local=\"S\" connect_timeout_ms=\"700\"",
                      {{"S", "corbaloc::1.2@host.example:1/NameService"},
                       {"T", "corbaloc::1.2@host.example:2/NameService"}});
    const velmo::Settings settings;
    EXPECT_EQ(settings.path(), file.path());
    EXPECT_EQ(settings.path_origin(), "environment variable VELMO_SETTINGS");
    EXPECT_FALSE(settings.error());
    EXPECT_EQ(settings.connect_timeout().limit, 700ms);
    EXPECT_EQ(settings.connect_timeout().origin, "line 1");
    ASSERT_EQ(settings.server_count(), 2);
    EXPECT_STREQ(settings.server(0)->name, "S");
    EXPECT_EQ(settings.server(1).value().line, 3);
    EXPECT_TRUE(settings.server(2).error() == velmo::Condition::invalid_argument);
    EXPECT_EQ(settings.server(-1).code(), PARAMETER_ERROR);

    const velmo::Settings same(file.path());
    EXPECT_EQ(same.path_origin(), "argument");
    EXPECT_EQ(same.server_count(), 2);
}

TEST(CppSettings, TellWhatIsWrong)
{
    SettingsFile file("<velmo>\n  <nonsense/>\n</velmo>");
    const velmo::Settings settings;
    ASSERT_TRUE(settings.error());
    EXPECT_EQ(settings.error()->substr(0, file.path().size() + 3), file.path() + ":2:");
    EXPECT_EQ(settings.server_count(), 0);
}

} // namespace
