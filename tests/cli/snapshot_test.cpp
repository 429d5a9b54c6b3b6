#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Snapshots : public CommandTest {};

TEST_F(Snapshots, BringPointsBack)
{
    good("point create a int32");
    good("point set a 1");
    EXPECT_EQ(good("snapshot make"),
              "templates\tsaved\t\npoints\tsaved\t\nports\tsaved\t\n");
    good("point set a 2");
    good("point create b int32");
    const json loaded = run_json("snapshot load points")["parts"];
    EXPECT_EQ(loaded, json::parse(R"([{"part":"points","result":"loaded","note":""}])"));
    EXPECT_EQ(good("point get a"), "1\n");
    EXPECT_EQ(good("point ls"), "a\n");
}

TEST_F(Snapshots, LoadSaysWhatItDoesNotDo)
{
    good("snapshot make");
    const json parts = run_json("snapshot load")["parts"];
    ASSERT_EQ(parts.size(), 3u);
    for (const int unchanged : {0, 2}) {
        EXPECT_EQ(parts[unchanged]["result"], "unchanged");
        EXPECT_TRUE(contains(parts[unchanged]["note"], "velmod --load"));
    }
    EXPECT_EQ(parts[1]["result"], "loaded");
}

TEST_F(Snapshots, OfOnePartAreOfThatPart)
{
    for (const char* part : {"templates", "points", "ports"})
        EXPECT_EQ(run_json({"snapshot", "make", part})["parts"],
                  (json::array({{{"part", part}, {"result", "saved"}, {"note", ""}}})));
    EXPECT_EQ(run_velmo("snapshot make everything").status, 2);
}

TEST_F(Snapshots, ThatWereNeverMadeCannotBeLoaded)
{
    const Result result = run_velmo("snapshot load points");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "NON_EXIST_DATA (2001)")) << result.err;
}

TEST(SnapshotsWithoutAFolder, AreRefusedWithWhatToDo)
{
    Velmod velmod({"--server", "S"});
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    for (const char* part : {"templates", "points", "ports"}) {
        const Result result = run_velmo({"snapshot", "make", part});
        EXPECT_EQ(result.status, 1) << part;
        EXPECT_TRUE(contains(result.err, "OBJECT_PATCH_FAI (2022)")) << result.err;
        EXPECT_TRUE(contains(result.err, "velmod --data-dir")) << result.err;
    }
}

} // namespace
