// Who is answered when, and what is written together.
#include <atomic>
#include <functional>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "server/journal/group_commit.h"
#include "tests/support/eventually.h"
#include "tests/support/gate.h"

using namespace velmo;
using namespace velmo::tests;
using journal::Entries;
using journal::Entry;
using journal::GroupCommit;

namespace {

constexpr std::chrono::milliseconds soon{5};

model::Changes removal(const std::string& point)
{
    return {model::PointRemoved{point}};
}

std::string point_of(const Entry& entry)
{
    return std::get<model::PointRemoved>(entry.change).name;
}

// Keeps what is written, when the test lets it.
class Disk : public journal::Storage {
public:
    void write(const Entries& entries) override
    {
        std::function<void()> act;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            act = before;
            ++attempts;
        }
        if (act)
            act();
        const std::lock_guard<std::mutex> lock(mutex);
        if (full)
            throw std::runtime_error("no room");
        std::vector<std::string> group;
        for (const Entry& entry : entries)
            group.push_back(point_of(entry));
        groups.push_back(group);
    }

    void set_full(bool is_full)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        full = is_full;
    }
    void before_a_write(std::function<void()> act)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        before = std::move(act);
    }

    using Groups = std::vector<std::vector<std::string>>;
    Groups written() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return groups;
    }
    int tried() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return attempts;
    }

private:
    mutable std::mutex mutex;
    std::function<void()> before;
    bool full = false;
    int attempts = 0;
    Groups groups;
};

class GroupCommitTest : public ::testing::Test {
protected:
    vl_result change(const std::string& point)
    {
        commit->append(1, removal(point));
        return commit->confirm();
    }

    std::future<vl_result> changing(const std::string& point)
    {
        return std::async(std::launch::async, [this, point] { return change(point); });
    }

    // Holds writes up until the gate opens.
    void hold()
    {
        disk.before_a_write([this] { gate.pass(); });
    }

    template <class Future>
    static bool waits(const Future& future)
    {
        return future.wait_for(soon) == std::future_status::timeout;
    }

    Disk disk;
    Gate gate;
    Gate gate_of_others;
    std::optional<GroupCommit> commit{std::in_place, disk, soon};
};

TEST_F(GroupCommitTest, WhoHasChangedNothingDoesNotWait)
{
    hold();
    auto other = changing("a");
    ASSERT_TRUE(gate.reached_by(1));
    EXPECT_EQ(commit->confirm(), VL_OK);
    gate.open();
    EXPECT_EQ(other.get(), VL_OK);
}

TEST_F(GroupCommitTest, AnAnswerComesWhenTheChangeIsWritten)
{
    hold();
    auto client = changing("a");
    ASSERT_TRUE(gate.reached_by(1));
    EXPECT_TRUE(waits(client));
    EXPECT_TRUE(disk.written().empty());
    gate.open();
    EXPECT_EQ(client.get(), VL_OK);
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a"}}));
}

TEST_F(GroupCommitTest, WhoComesDuringAWriteSharesTheNextOne)
{
    hold();
    auto first = changing("first");
    ASSERT_TRUE(gate.reached_by(1));
    std::vector<std::future<vl_result>> others;
    for (int i = 0; i < 8; ++i)
        others.push_back(std::async(std::launch::async, [this] {
            commit->append(1, removal("other"));
            gate_of_others.pass();
            return commit->confirm();
        }));
    ASSERT_TRUE(gate_of_others.reached_by(8));
    gate_of_others.open();
    gate.open();
    EXPECT_EQ(first.get(), VL_OK);
    for (auto& other : others)
        EXPECT_EQ(other.get(), VL_OK);
    const Disk::Groups written = disk.written();
    ASSERT_EQ(written.size(), 2u);
    EXPECT_EQ(written[1], std::vector<std::string>(8, "other"));
    EXPECT_EQ(commit->status().groups, 2u);
    EXPECT_EQ(commit->status().changes, 9u);
}

TEST_F(GroupCommitTest, TheDiskHasThemInTheOrderOfTheCalls)
{
    std::vector<std::string> expected;
    for (int i = 0; i < 1000; ++i) {
        expected.push_back(std::to_string(i));
        commit->append(1, removal(expected.back()));
    }
    EXPECT_EQ(commit->confirm(), VL_OK);
    std::vector<std::string> found;
    for (const auto& group : disk.written())
        found.insert(found.end(), group.begin(), group.end());
    EXPECT_EQ(found, expected);
}

TEST_F(GroupCommitTest, WhoFindsNobodyWritingWritesItself)
{
    std::atomic<int> by_client{0};
    disk.before_a_write([&by_client, client = std::this_thread::get_id()] {
        by_client += std::this_thread::get_id() == client;
    });
    for (int i = 0; i < 1000 && by_client == 0; ++i) // the thread may be sooner
        EXPECT_EQ(change("a"), VL_OK);
    EXPECT_GT(by_client, 0);
}

TEST_F(GroupCommitTest, AnAppendOfNothingIsNothingToWaitFor)
{
    hold();
    auto other = changing("a");
    ASSERT_TRUE(gate.reached_by(1));
    commit->append(1, {});
    EXPECT_EQ(commit->confirm(), VL_OK);
    gate.open();
    EXPECT_EQ(other.get(), VL_OK);
}

TEST_F(GroupCommitTest, WhatAnEarlierCallHasLeftIsForgotten)
{
    disk.set_full(true);
    commit->append(1, removal("a"));
    ASSERT_TRUE(eventually([&] { return commit->admit() == OBJECT_PATCH_FAI; }));
    commit->forget();
    EXPECT_EQ(commit->confirm(), VL_OK);
}

TEST_F(GroupCommitTest, AChangeBehindAnAppendOfNoneIsWritten)
{
    commit->append(1, {});
    EXPECT_EQ(change("a"), VL_OK);
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a"}}));
}

TEST_F(GroupCommitTest, WhatIsToBeKeptTogetherIsOneWrite)
{
    journal::RealmJournal realm(*commit, 1);
    {
        const model::Together whole(&realm);
        realm.append(removal("a"));
        std::this_thread::sleep_for(soon); // what would be wrong may happen
        EXPECT_EQ(disk.tried(), 0);
        realm.append(removal("b"));
    }
    EXPECT_EQ(commit->confirm(), VL_OK);
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a", "b"}}));
}

TEST_F(GroupCommitTest, WhatOthersAppendMeanwhileWaitsForWhatIsToBeKeptTogether)
{
    journal::RealmJournal realm(*commit, 1);
    std::optional<model::Together> whole(std::in_place, &realm);
    realm.append(removal("a"));
    auto other = std::async(std::launch::async, [this] {
        commit->append(1, removal("b"));
        gate_of_others.pass();
        return commit->confirm();
    });
    ASSERT_TRUE(gate_of_others.reached_by(1));
    gate_of_others.open();
    EXPECT_TRUE(waits(other));
    realm.append(removal("c"));
    whole.reset();
    EXPECT_EQ(other.get(), VL_OK);
    EXPECT_EQ(commit->confirm(), VL_OK);
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a", "b", "c"}}));
}

TEST_F(GroupCommitTest, WhoReliesOnAChangeOfAnotherWaitsForIt)
{
    hold();
    auto sender = changing("a");
    ASSERT_TRUE(gate.reached_by(1));
    auto receiver = std::async(std::launch::async, [this] {
        commit->rely();
        return commit->confirm();
    });
    EXPECT_TRUE(waits(receiver));
    gate.open();
    EXPECT_EQ(receiver.get(), VL_OK);
    EXPECT_EQ(sender.get(), VL_OK);
}

TEST_F(GroupCommitTest, AFailureIsToldAndMoreIsRefused)
{
    disk.set_full(true);
    EXPECT_EQ(commit->admit(), VL_OK);
    EXPECT_EQ(change("a"), OBJECT_PATCH_FAI);
    EXPECT_EQ(commit->admit(), OBJECT_PATCH_FAI);
    EXPECT_EQ(change("b"), OBJECT_PATCH_FAI) << "one that was admitted just before";
    EXPECT_EQ(commit->status().failing, "no room");
    EXPECT_GE(commit->status().failures, 1u);
    EXPECT_TRUE(disk.written().empty());
}

TEST_F(GroupCommitTest, AFailureWithoutAReasonIsOneAsWell)
{
    disk.before_a_write([] { throw std::runtime_error(""); });
    EXPECT_EQ(change("a"), OBJECT_PATCH_FAI);
    EXPECT_EQ(commit->status().failing, "unknown");
}

TEST_F(GroupCommitTest, AFailedWriteIsTriedAgainAfterItsTimeOnly)
{
    commit.emplace(disk, std::chrono::hours(1));
    disk.set_full(true);
    EXPECT_EQ(change("a"), OBJECT_PATCH_FAI);
    std::this_thread::sleep_for(soon); // what would be wrong may happen
    EXPECT_EQ(disk.tried(), 1);
    disk.set_full(false);
    commit.reset();
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a"}})) << "the end tries once more";
}

TEST_F(GroupCommitTest, WhoComesDuringAWriteThatFailsIsToldAsWell)
{
    hold();
    disk.set_full(true);
    auto first = changing("a");
    ASSERT_TRUE(gate.reached_by(1));
    auto second = changing("b");
    EXPECT_TRUE(waits(second));
    gate.open();
    EXPECT_EQ(first.get(), OBJECT_PATCH_FAI);
    EXPECT_EQ(second.get(), OBJECT_PATCH_FAI);
}

TEST_F(GroupCommitTest, WhenThereIsRoomAgainMemoryAndDiskAgree)
{
    disk.set_full(true);
    EXPECT_EQ(change("a"), OBJECT_PATCH_FAI);
    EXPECT_EQ(change("b"), OBJECT_PATCH_FAI);
    ASSERT_TRUE(eventually([&] { return disk.tried() > 3; }));
    disk.set_full(false);
    ASSERT_TRUE(eventually([&] { return commit->admit() == VL_OK; }));
    EXPECT_TRUE(commit->status().failing.empty());
    EXPECT_EQ(change("c"), VL_OK);
    std::vector<std::string> found;
    for (const auto& group : disk.written())
        found.insert(found.end(), group.begin(), group.end());
    EXPECT_EQ(found, (std::vector<std::string>{"a", "b", "c"}));
}

TEST_F(GroupCommitTest, TheEndWritesWhatIsLeft)
{
    hold();
    commit->append(1, removal("a"));
    ASSERT_TRUE(gate.reached_by(1));
    commit->append(1, removal("b"));
    gate.open();
    commit.reset();
    EXPECT_EQ(disk.written(), (Disk::Groups{{"a"}, {"b"}}));
}

TEST_F(GroupCommitTest, TheEndComesAlsoWhenTheDiskIsFull)
{
    disk.set_full(true);
    EXPECT_EQ(change("a"), OBJECT_PATCH_FAI);
    commit.reset();
    EXPECT_TRUE(disk.written().empty());
}

TEST_F(GroupCommitTest, ManyClientsAreAnsweredAndWritten)
{
    constexpr int clients = 8;
    constexpr int changes = 200;
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (int i = 0; i < clients; ++i)
        threads.emplace_back([&, i] {
            for (int j = 0; j < changes; ++j)
                good += change(std::to_string(i) + ":" + std::to_string(j)) == VL_OK;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, clients * changes);
    EXPECT_EQ(commit->status().changes, static_cast<std::uint64_t>(clients * changes));
}

} // namespace
