// The snapshot file where there is no room, or no right, to write.
#include <sys/fsuid.h>
#include <unistd.h>

#include <fstream>

#include <gtest/gtest.h>

#include "tests/server/numbered_points.h"
#include "tests/server/small_disk.h"

using namespace velmo::tests;
using velmo::store::SnapshotStore;
using velmo::store::StoreError;

namespace fs = std::filesystem;

namespace {

// The last snapshot of a store, as a restarted server finds it.
std::optional<int> last_number(const fs::path& folder)
{
    const auto points = SnapshotStore(folder, "S").load_points("");
    return points ? number_of(*points) : std::nullopt;
}

void save_too_much(SnapshotStore& snapshots)
{
    snapshots.save_points("", [](const SnapshotStore::VisitPoint& visit) {
        for (std::size_t i = 0; i < 100; ++i)
            visit({"p", "bytes", "", binary(100000, i)});
    });
}

std::string reason_of_refusal(const fs::path& folder)
{
    try {
        SnapshotStore(folder, "S");
    } catch (const StoreError& error) {
        return error.what();
    }
    return "";
}

TEST(SnapshotDisk, WhenItIsFullTheLastSnapshotStays)
{
    const SmallDisk disk;
    if (!disk.available())
        GTEST_SKIP() << "no right to mount";
    SnapshotStore snapshots(disk.path(), "S");
    save_numbered(snapshots, 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_THROW(save_too_much(snapshots), StoreError);
        EXPECT_EQ(last_number(disk.path()), 0);
    }
    save_numbered(snapshots, 1);
    EXPECT_EQ(last_number(disk.path()), 1);
}

TEST(SnapshotDisk, WhenItIsFullFromTheBeginningThereIsAReason)
{
    const SmallDisk disk;
    if (!disk.available())
        GTEST_SKIP() << "no right to mount";
    const fs::path filler = disk.path() / "filler";
    std::ofstream(filler) << std::string(5u << 20, 'x');
    const std::string reason = reason_of_refusal(disk.path());
    EXPECT_NE(reason.find((disk.path() / "S.db").string()), std::string::npos) << reason;
    EXPECT_NE(reason.find("full"), std::string::npos) << reason;
    fs::remove(filler);
    SnapshotStore snapshots(disk.path(), "S");
    save_numbered(snapshots, 0);
    EXPECT_EQ(last_number(disk.path()), 0);
}

TEST(SnapshotDisk, WhenItBecomesReadOnlyThereIsAReason)
{
    SmallDisk disk;
    if (!disk.available())
        GTEST_SKIP() << "no right to mount";
    {
        SnapshotStore snapshots(disk.path(), "S");
        save_numbered(snapshots, 0);
    }
    disk.make_read_only();
    const std::string reason = reason_of_refusal(disk.path());
    EXPECT_NE(reason.find((disk.path() / "S.db").string()), std::string::npos) << reason;
}

// Makes file accesses those of somebody who is not root, for this thread.
class NotRoot {
public:
    NotRoot()
    {
        if (geteuid() == 0)
            setfsuid(65534);
    }
    ~NotRoot() { setfsuid(geteuid()); }
};

class ReadOnlyFolder : public ::testing::Test {
protected:
    ~ReadOnlyFolder() override { fs::permissions(folder.path(), fs::perms::owner_all); }

    void protect() const
    {
        constexpr auto reading =
            fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
        if (fs::exists(file()))
            fs::permissions(file(), reading);
        fs::permissions(folder.path(), reading | fs::perms::owner_exec |
                                           fs::perms::group_exec | fs::perms::others_exec);
    }

    fs::path file() const { return velmo::store::snapshot_file(folder.path(), "S"); }

    TemporaryFolder folder;
};

TEST_F(ReadOnlyFolder, NothingCanBeCreatedIn)
{
    protect();
    const NotRoot user;
    for (const fs::path& place : {folder.path(), folder.path() / "below"}) {
        const std::string reason = reason_of_refusal(place);
        EXPECT_NE(reason.find((place / "S.db").string()), std::string::npos) << reason;
        EXPECT_NE(reason.find("Permission denied"), std::string::npos) << reason;
    }
}

TEST_F(ReadOnlyFolder, AFileInItMayBeReadButThatIsNotEnough)
{
    {
        SnapshotStore snapshots(folder.path(), "S");
        save_numbered(snapshots, 0);
    }
    protect();
    const NotRoot user;
    const std::string reason = reason_of_refusal(folder.path());
    EXPECT_NE(reason.find(file().string()), std::string::npos) << reason;
    EXPECT_NE(reason.find("not written"), std::string::npos) << reason;
}

} // namespace
