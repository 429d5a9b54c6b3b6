#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Contention : public CommandTest {};

TEST_F(Contention, HighestPriorityIsMaster)
{
    const json one = run_json("contend join g --as one --priority 1");
    EXPECT_EQ(one["master"], true);
    const json two = run_json("contend join g --as two --priority 2 --role line");
    EXPECT_EQ(two["master"], true);
    EXPECT_GT(two["epoch"], one["epoch"]);
    EXPECT_EQ(
        run_json("contend join g --as one --priority -1"),
        (json{
            {"group", "g"}, {"contender", "one"}, {"master", false}, {"epoch", nullptr}}));
    EXPECT_EQ(good("contend join g --as one"), "not master\n");

    const json group = run_json("contend status g")["groups"][0];
    EXPECT_EQ(group["master"], "two");
    EXPECT_EQ(group["epoch"], two["epoch"]);
    ASSERT_EQ(group["contenders"].size(), 2u);
    EXPECT_EQ(group["contenders"][0]["contender"], "two");
    EXPECT_EQ(group["contenders"][0]["role"], "line");
    EXPECT_EQ(group["contenders"][0]["priority"], 2);
    EXPECT_EQ(group["contenders"][1]["contender"], "one");
    EXPECT_EQ(group["contenders"][1]["master"], false);
}

TEST_F(Contention, NextOneFollowsWhoLeaves)
{
    good("contend join g --as one");
    good("contend join g --as two");
    EXPECT_EQ(run_json("contend leave g --as one"),
              (json{{"group", "g"}, {"contender", "one"}}));
    EXPECT_EQ(run_json("contend status")["groups"][0]["master"], "two");
    good("contend leave g --as two");
    const json group = run_json("contend status g")["groups"][0];
    EXPECT_EQ(group["master"], nullptr);
    EXPECT_EQ(group["contenders"], json::array());
    EXPECT_TRUE(contains(good("contend status"), "nobody"));
}

TEST_F(Contention, AnyNameWillDo)
{
    const std::string group = "a/b %", contender = "x/y%2F\n";
    EXPECT_EQ(run_json({"contend", "join", group, "--as", contender})["master"], true);
    const json shown = run_json({"contend", "status", group})["groups"][0];
    EXPECT_EQ(shown["group"], group);
    EXPECT_EQ(shown["contenders"][0]["contender"], contender);
}

TEST_F(Contention, DataAreKept)
{
    good({"contend", "join", "g", "--as", "one", "--role", "address", "10.0.0.1"});
    EXPECT_EQ(good("point get $SYS/contention/g/contenders/one/data"), "10.0.0.1\n");
}

TEST_F(Contention, FailuresHaveTheirCodes)
{
    EXPECT_EQ(run_json("contend status"), (json{{"groups", json::array()}}));
    const Result nobody = run_velmo("contend leave g --as one");
    EXPECT_EQ(nobody.status, 1);
    EXPECT_TRUE(contains(nobody.err, "CONTENDER_IS_NUL (4003)")) << nobody.err;
    const Result nothing = run_velmo("contend status g");
    EXPECT_EQ(nothing.status, 1);
    EXPECT_TRUE(contains(nothing.err, "there is no group \"g\"")) << nothing.err;
    EXPECT_EQ(run_velmo("contend join g").status, 2);
    EXPECT_EQ(run_velmo("contend join g --as x --priority high").status, 2);
    EXPECT_EQ(run_velmo("contend run g").status, 2);
}

} // namespace
