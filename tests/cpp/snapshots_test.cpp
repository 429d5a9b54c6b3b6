// Snapshots.
#include "tests/e2e/one_server.h"
#include "tests/support/temporary_folder.h"
#include "velmo/velmo.hpp"

using namespace velmo::tests;

namespace {

class CppSnapshots : public ::testing::Test {
protected:
    TemporaryFolder folder;
    Velmod velmod{{"--data-dir", folder.path().string()}};
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};
    velmo::Snapshots snapshots;
};

TEST_F(CppSnapshots, BringPointsBack)
{
    const velmo::Points points;
    EXPECT_TRUE(snapshots.load_points().error() == velmo::Condition::no_data);
    ASSERT_TRUE(points.create("level", "float64"));
    ASSERT_TRUE(points.set("level", 1.0));
    ASSERT_TRUE(snapshots.save_points());
    ASSERT_TRUE(points.set("level", 2.0));
    ASSERT_TRUE(snapshots.load_points());
    EXPECT_EQ(points.get<double>("level").value(), 1.0);
}

TEST_F(CppSnapshots, TemplatesAndPortsAreSavedAndLoadedAtTheStart)
{
    EXPECT_TRUE(snapshots.save_templates());
    EXPECT_TRUE(snapshots.save_ports());
    EXPECT_TRUE(snapshots.load_templates());
    EXPECT_TRUE(snapshots.load_ports());
}

class CppNoSnapshots : public OneServer {};

TEST_F(CppNoSnapshots, AServerWithoutAFolderSaysSo)
{
    const velmo::Snapshots snapshots;
    EXPECT_EQ(snapshots.save_points().code(), OBJECT_PATCH_FAI);
    EXPECT_EQ(snapshots.save_ports().code(), OBJECT_PATCH_FAI);
    EXPECT_EQ(snapshots.save_templates().code(), OBJECT_PATCH_FAI);
}

} // namespace
