// Snapshots while clients go on: one moment, and nobody waits for the disk.
#include <array>
#include <atomic>
#include <map>
#include <thread>

#include <gtest/gtest.h>

#include "server/model/realm.h"
#include "server/services/snapshots.h"
#include "server/store/snapshot_store.h"
#include "tests/server/images.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;
using store::SnapshotStore;

namespace {

std::string first_of(int writer)
{
    return "writer/" + std::to_string(writer) + "/first";
}

std::string second_of(int writer)
{
    return "writer/" + std::to_string(writer) + "/second";
}

// Writers that count in two points each, always in the first one first: at any moment
// it is ahead of the second by one at most.
class MomentTest : public ::testing::Test {
protected:
    MomentTest()
    {
        for (int i = 0; i < others; ++i)
            EXPECT_EQ(realm.points.create("other/" + std::to_string(i), "text"), VL_OK);
        for (int writer = 0; writer < writers; ++writer)
            for (const std::string& name : {first_of(writer), second_of(writer)}) {
                EXPECT_EQ(realm.points.create(name, "text"), VL_OK);
                EXPECT_EQ(realm.points.set(name, bytes_of("0")), VL_OK);
            }
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([this, writer] { count_up(writer); });
    }

    ~MomentTest() override
    {
        stop = true;
        for (std::thread& thread : threads)
            thread.join();
    }

    void count_up(int writer)
    {
        for (int number = 1; !stop; ++number) {
            const model::Data value = bytes_of(std::to_string(number));
            realm.points.set(first_of(writer), value);
            realm.points.set(second_of(writer), value);
            const std::string passing = "passing/" + std::to_string(writer);
            realm.points.create(passing, "text"); // comes and goes
            realm.points.remove(passing);
            ++written[static_cast<std::size_t>(writer)];
        }
    }

    // Until every writer has written once more.
    bool all_go_on() const
    {
        std::array<long, writers> before;
        for (std::size_t i = 0; i < writers; ++i)
            before[i] = written[i];
        return eventually([&] {
            for (std::size_t i = 0; i < writers; ++i)
                if (written[i] < before[i] + 2)
                    return false;
            return true;
        });
    }

    void expect_one_moment()
    {
        const auto points = snapshots.load_points("");
        ASSERT_TRUE(points);
        std::map<std::string, int> numbers;
        for (const model::PointImage& point : *points)
            if (point.value)
                numbers[point.name] =
                    std::stoi(std::string(point.value->begin(), point.value->end()));
        for (int writer = 0; writer < writers; ++writer) {
            const int ahead = numbers.at(first_of(writer)) - numbers.at(second_of(writer));
            EXPECT_TRUE(ahead == 0 || ahead == 1) << ahead;
        }
        EXPECT_GE(points->size(), std::size_t(others + 2 * writers));
        EXPECT_LE(points->size(), std::size_t(others + 3 * writers));
    }

    static constexpr int writers = 4;
    static constexpr int others = 2000;

    TemporaryFolder folder;
    SnapshotStore snapshots{folder.path(), "S"};
    model::Realm realm{""};
    std::atomic<bool> stop{false};
    std::array<std::atomic<long>, writers> written{};
    std::vector<std::thread> threads;
};

TEST_F(MomentTest, EverySnapshotIsOfOneMoment)
{
    for (int i = 0; i < 15; ++i) {
        ASSERT_TRUE(all_go_on());
        ASSERT_EQ(services::Snapshots(&snapshots, realm).make_points(), VL_OK);
        expect_one_moment();
    }
}

TEST_F(MomentTest, WritersGoOnWhileItIsWritten)
{
    snapshots.save_points("", [&](const SnapshotStore::VisitPoint& visit) {
        int visited = 0;
        realm.points.visit_moment([&](const model::PointImage& point) {
            if (visited++ % 500 == 0) {
                EXPECT_TRUE(all_go_on()) << "they wait for the snapshot";
            }
            visit(point);
        });
    });
    expect_one_moment();
}

TEST_F(MomentTest, SnapshotsOfManyRealmsAndServicesAtOnce)
{
    model::Realm other("other");
    ASSERT_EQ(other.points.create("p", "int32"), VL_OK);
    ASSERT_EQ(other.ports.create_port("p", 1, 0), VL_OK);
    const services::Snapshots of_root(&snapshots, realm);
    const services::Snapshots of_other(&snapshots, other);
    ASSERT_EQ(of_other.make_points(), VL_OK); // for the loads
    std::vector<std::thread> savers;
    for (int i = 0; i < 4; ++i)
        savers.emplace_back([&, i] {
            for (int round = 0; round < 5; ++round) {
                EXPECT_EQ(i % 2 == 0 ? of_root.make_points() : of_other.make_points(),
                          VL_OK);
                EXPECT_EQ(of_other.make_ports(), VL_OK);
                EXPECT_EQ(of_other.load_points(), VL_OK);
            }
        });
    for (std::thread& saver : savers)
        saver.join();
    expect_one_moment();
    EXPECT_EQ(snapshots.load_points("other")->size(), 1u);
}

} // namespace
