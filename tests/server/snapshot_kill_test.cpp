// A server that is killed while it saves: the last complete snapshot is always there.
#include <csignal>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "tests/server/numbered_points.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

using namespace velmo::tests;
using velmo::store::SnapshotStore;

namespace {

// The last number in whole lines of numbers; 0 for none.
int last_number(const std::string& lines)
{
    const std::size_t end = lines.rfind('\n');
    if (end == std::string::npos)
        return 0;
    const std::size_t before = end == 0 ? std::string::npos : lines.rfind('\n', end - 1);
    return std::stoi(lines.substr(before == std::string::npos ? 0 : before + 1));
}

TEST(SnapshotKill, AHundredTimesAnywhereLosesNothingThatWasComplete)
{
    const TemporaryFolder folder;
    std::mt19937 random(4);
    std::uniform_int_distribution<int> microseconds(0, 30000);
    int told = 0;
    int in_the_middle = 0;
    for (int i = 0; i < 100; ++i) {
        Process writer({SNAPSHOT_WRITER_PATH, folder.path(), std::to_string(told + 1)});
        ASSERT_TRUE(eventually([&] { return last_number(writer.out()) > told; }))
            << writer.err();
        // Not for anything to happen: any moment is as good.
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        writer.signal(SIGKILL);
        ASSERT_EQ(writer.wait(), 128 + SIGKILL);
        told = last_number(writer.out());

        const auto file = velmo::store::snapshot_file(folder.path(), "S");
        in_the_middle += std::filesystem::exists(file.string() + "-journal");
        SnapshotStore snapshots(folder.path(), "S");
        const auto points = snapshots.load_points("");
        ASSERT_TRUE(points);
        const std::optional<int> found = number_of(*points);
        ASSERT_TRUE(found) << "a mixture, or a part";
        // Complete, but killed before it could say so.
        ASSERT_TRUE(*found == told || *found == told + 1) << *found << " for " << told;
        told = *found;
    }
    EXPECT_GT(in_the_middle, 0);
    RecordProperty("in_the_middle", in_the_middle);
}

TEST(SnapshotKill, EvenTheFirstSnapshotOfAllCanBeInterrupted)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<int> microseconds(0, 20000);
    for (int i = 0; i < 20; ++i) {
        const TemporaryFolder folder;
        Process writer({SNAPSHOT_WRITER_PATH, folder.path(), "1"});
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        writer.signal(SIGKILL);
        ASSERT_EQ(writer.wait(), 128 + SIGKILL);
        SnapshotStore snapshots(folder.path(), "S");
        const auto points = snapshots.load_points("");
        if (points) {
            EXPECT_TRUE(number_of(*points));
        }
        save_numbered(snapshots, 1);
    }
}

} // namespace
