#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Events : public CommandTest {};

TEST_F(Events, AreDeclaredAddedRaisedCountedAndCleared)
{
    EXPECT_EQ(run_json("event declare 7 idle"), (json{{"id", 7}, {"size", 4}}));
    EXPECT_EQ(run_json("event add pump 7"), (json{{"event", "pump"}, {"id", 7}}));
    EXPECT_EQ(good("event count pump"), "0\n");
    EXPECT_EQ(run_json({"event", "send", "pump", "dry run"}),
              (json{{"event", "pump"}, {"size", 7}}));
    EXPECT_EQ(run_json("event count pump"), (json{{"event", "pump"}, {"count", 1}}));
    EXPECT_EQ(good("point get $SYS/events/pump/data"), "dry run\n");
    EXPECT_EQ(run_json("event clear pump"), (json{{"event", "pump"}}));
    EXPECT_EQ(good("event count pump"), "0\n");
    EXPECT_EQ(good("point get $SYS/events/pump/data"), "idle\n");
}

TEST_F(Events, TakeDataFromAFileOrInHexadecimal)
{
    good("event declare 1 --hex 69");
    good("event add e 1");
    EXPECT_EQ(good("point get $SYS/events/e/data"), "i\n");
    good({"event", "send", "e", "--file", "-"}, "piped");
    EXPECT_EQ(good("point get $SYS/events/e/data"), "piped\n");
    good("event send e");
    EXPECT_EQ(good("point get $SYS/events/e/data"), "i\n") << "what was declared";
}

TEST_F(Events, FailuresHaveTheirCodes)
{
    good("event declare 7");
    good("event add pump 7");
    for (const auto& [command, said] :
         std::initializer_list<std::pair<const char*, const char*>>{
             {"event declare 7", "OBJECT_ALREADY_EXSIT (2014)"},
             {"event add pump 7", "OBJECT_ALREADY_EXSIT (2014)"},
             {"event add other 8", "NO_MATCH_EVENT_CODE (3012)"},
             {"event send other", "EVENT_DECLARE_NUL (3011)"},
             {"event count other", "EVENT_DECLARE_NUL (3011)"},
             {"event clear other", "EVENT_DECLARE_NUL (3011)"}}) {
        const Result result = run_velmo(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_TRUE(contains(result.err, said)) << result.err;
    }
    EXPECT_EQ(run_velmo("event declare x").status, 2);
    EXPECT_EQ(run_velmo("event declare -1").status, 2);
}

} // namespace
