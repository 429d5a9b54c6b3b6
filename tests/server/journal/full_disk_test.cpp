// A disk that is full for a while.
#include <fstream>

#include <gtest/gtest.h>

#include "tests/server/journal/kept_realm.h"
#include "tests/server/small_disk.h"
#include "tests/support/eventually.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

TEST(FullDisk, StopsChangesUntilThereIsRoomAgain)
{
    const SmallDisk disk;
    if (!disk.available())
        GTEST_SKIP() << "no right to mount";
    const auto filler = disk.path() / "filler";
    Content before;
    {
        KeptRealm realm(disk.path());
        journal::GroupCommit& commit = realm.kept().commit();
        ASSERT_EQ(realm->points.create("p", "bytes"), VL_OK);
        ASSERT_TRUE(realm.confirmed());
        {
            std::ofstream file(filler);
            while (file << std::string(4096, 'x') << std::flush) {
            }
        }
        std::size_t variant = 0;
        while (realm.confirmed()) // the log has some room of its own
            ASSERT_EQ(realm->points.set("p", binary(5000, ++variant)), VL_OK);
        EXPECT_EQ(commit.admit(), OBJECT_PATCH_FAI);
        EXPECT_NE(commit.status().failing.find("full"), std::string::npos)
            << commit.status().failing;
        model::Data value;
        EXPECT_EQ(realm->points.get("p", value), VL_OK);

        std::filesystem::remove(filler);
        ASSERT_TRUE(eventually([&] { return commit.admit() == VL_OK; }));
        ASSERT_EQ(realm->points.create("q", "bytes"), VL_OK);
        ASSERT_TRUE(realm.confirmed());
        before = realm.content();
    }
    const KeptRealm again(disk.path());
    EXPECT_TRUE(again.content() == before);
}

} // namespace
