#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

constexpr const char* good_file = R"(<velmo naming_timeout_ms="300" local="line">
  <server name="line" host="10.0.0.1" role="master" call_timeout_ms="7000">
    <server name="press" naming="corbaname::1.2@10.0.0.2:2809#press"/>
  </server>
</velmo>
)";

TEST(SettingsCheck, FindsTheFileGood)
{
    SettingsFile settings(good_file);
    const json check = run_json("settings check");
    EXPECT_EQ(check["file"], settings.path());
    EXPECT_EQ(check["origin"], "environment variable VELMO_SETTINGS");
    EXPECT_EQ(check["good"], true);
    EXPECT_EQ(check["fault"], nullptr);
    EXPECT_EQ(check["servers"], 2);
    EXPECT_EQ(run_velmo("settings check").out, settings.path() + ": good, 2 servers\n");
}

TEST(SettingsCheck, TakesAnotherFile)
{
    SettingsFile settings(good_file);
    const TemporaryFolder folder;
    const std::string path = (folder.path() / "other.xml").string();
    std::ofstream(path) << "<velmo>\n<server name=\"\"/>\n</velmo>";
    const Result result = run_velmo({"settings", "check", path, "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(json::parse(result.out)["good"], false);
    EXPECT_EQ(json::parse(result.out)["origin"], "argument");
    EXPECT_EQ(result.err.rfind("velmo: " + path + ":2: ", 0), 0u) << result.err;
    EXPECT_EQ(run_velmo({"settings", "check", path}).out, "");
}

TEST(SettingsCheck, WithoutAFileSaysWhatHolds)
{
    unsetenv("VELMO_SETTINGS");
    EXPECT_EQ(run_velmo("settings check").out,
              "no settings file found; using server 0000 at 127.0.0.1:2809\n");
    EXPECT_EQ(run_json("settings check")["file"], nullptr);
}

TEST(SettingsShow, TellsWhereEachValueComesFrom)
{
    SettingsFile settings(good_file);
    setenv("VELMO_CONNECT_TIMEOUT_MS", "55", 1);
    const json shown = run_json("settings show");
    unsetenv("VELMO_CONNECT_TIMEOUT_MS");
    EXPECT_EQ(shown["file"], (json{{"value", settings.path()},
                                   {"origin", "environment variable VELMO_SETTINGS"}}));
    EXPECT_EQ(
        shown["connect_timeout_ms"],
        (json{{"value", 55}, {"origin", "environment variable VELMO_CONNECT_TIMEOUT_MS"}}));
    ASSERT_EQ(shown["servers"].size(), 2u);
    const json& line = shown["servers"][0];
    EXPECT_EQ(line["naming"]["value"], "corbaloc::1.2@10.0.0.1:2809/NameService");
    EXPECT_EQ(line["call_timeout_ms"], (json{{"value", 7000}, {"origin", "line 2"}}));
    EXPECT_EQ(line["naming_timeout_ms"], (json{{"value", 300}, {"origin", "line 1"}}));
    const json& press = shown["servers"][1];
    EXPECT_EQ(press["parent"], "line");
    EXPECT_EQ(press["line"], 3);
    EXPECT_EQ(press["call_timeout_ms"], (json{{"value", 30000}, {"origin", "default"}}));
    const std::string rows = run_velmo("settings show").out;
    EXPECT_TRUE(contains(rows, "\ncall_timeout_ms\t7000 ms\tline 2\n")) << rows;
}

TEST(SettingsShow, WithoutAFileShowsTheBuiltInServer)
{
    unsetenv("VELMO_SETTINGS");
    const json shown = run_json("settings show");
    EXPECT_EQ(shown["servers"][0]["name"], "0000");
    EXPECT_EQ(shown["servers"][0]["line"], nullptr);
}

} // namespace
