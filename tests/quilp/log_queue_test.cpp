#include "quilp/log_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/process.h"

namespace {

using velmo::quilp::Line;
using velmo::quilp::LogQueue;
using velmo::tests::patience;
using Texts = std::vector<std::string>;

constexpr LogQueue::Duration moment{20}; // where a wait is to end in vain

// Stands for a disk: remembers what is written, and can be made to stand still.
class Disk {
public:
    LogQueue::Write writer()
    {
        return [this](const Line& line) { write(line); };
    }
    void stand_still()
    {
        const std::lock_guard lock(mutex);
        moving = false;
    }
    void go_on()
    {
        const std::lock_guard lock(mutex);
        moving = true;
        changed.notify_all();
    }
    // Waits until a line is being written, and standing still.
    void wait_for_writer()
    {
        std::unique_lock lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, patience, [this] { return inside; }));
    }
    Texts texts()
    {
        const std::lock_guard lock(mutex);
        return written;
    }
    std::thread::id writing_thread()
    {
        const std::lock_guard lock(mutex);
        return last_thread;
    }

private:
    void write(const Line& line)
    {
        std::unique_lock lock(mutex);
        EXPECT_FALSE(inside) << "two lines are written at once";
        inside = true;
        changed.notify_all();
        changed.wait(lock, [this] { return moving; });
        inside = false;
        written.push_back(line.text);
        last_thread = std::this_thread::get_id();
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool moving = true;
    bool inside = false;
    Texts written;
    std::thread::id last_thread;
};

void add(LogQueue& queue, const std::string& text)
{
    queue.add(Line::now(text));
}

TEST(LogQueue, WritesLinesInOrderOnItsOwnThread)
{
    Disk disk;
    LogQueue queue(disk.writer());
    Texts expected;
    for (int i = 0; i < 1000; ++i) {
        expected.push_back(std::to_string(i));
        add(queue, expected.back());
    }
    EXPECT_TRUE(queue.flush(patience));
    EXPECT_EQ(disk.texts(), expected);
    EXPECT_NE(disk.writing_thread(), std::this_thread::get_id());
}

TEST(LogQueue, AddingDoesNotWaitForTheDisk)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer());
    add(queue, "one");
    add(queue, "two");
    EXPECT_FALSE(queue.flush(moment));
    EXPECT_TRUE(disk.texts().empty());
    disk.go_on();
    EXPECT_TRUE(queue.flush(patience));
    EXPECT_EQ(disk.texts(), (Texts{"one", "two"}));
}

TEST(LogQueue, WhenFullDropsTheOldestAndTellsHowMany)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer(), LogQueue::Writer::own_thread, 10000);
    add(queue, "in hand");
    disk.wait_for_writer();
    constexpr int count = 100;
    for (int i = 0; i < count; ++i)
        add(queue, std::to_string(i) + std::string(1000, ' '));
    disk.go_on();
    ASSERT_TRUE(queue.flush(patience));

    const Texts texts = disk.texts();
    const auto kept = static_cast<int>(texts.size()) - 2;
    ASSERT_GE(kept, 5);
    ASSERT_LE(kept, 10);
    EXPECT_EQ(texts[0], "in hand");
    EXPECT_EQ(texts[1].find("lost " + std::to_string(count - kept) + " log lines"), 0u)
        << texts[1];
    EXPECT_EQ(std::stoi(texts[2]), count - kept);
    EXPECT_EQ(std::stoi(texts.back()), count - 1);
}

TEST(LogQueue, KeepsTheNewestLineHoweverLong)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer(), LogQueue::Writer::own_thread, 10);
    add(queue, "in hand");
    disk.wait_for_writer();
    add(queue, std::string(1000, 'x'));
    disk.go_on();
    ASSERT_TRUE(queue.flush(patience));
    EXPECT_EQ(disk.texts().back(), std::string(1000, 'x'));
}

TEST(LogQueue, TellsOfLinesThatCouldNotBeMade)
{
    Disk disk;
    LogQueue queue(disk.writer());
    queue.count_lost();
    add(queue, "next");
    ASSERT_TRUE(queue.flush(patience));
    ASSERT_EQ(disk.texts().size(), 2u);
    EXPECT_EQ(disk.texts()[0].find("lost 1 log lines"), 0u);
}

TEST(LogQueue, FlushWaitsForTheLineInHandThoughLaterOnesWereDropped)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer(), LogQueue::Writer::own_thread, 10);
    add(queue, "in hand");
    disk.wait_for_writer();
    add(queue, "dropped");
    add(queue, "dropped too");
    add(queue, "kept");
    EXPECT_FALSE(queue.flush(moment));
    disk.go_on();
    EXPECT_TRUE(queue.flush(patience));
}

TEST(LogQueue, FlushOfAnEmptyQueueReturns)
{
    Disk disk;
    LogQueue queue(disk.writer());
    EXPECT_TRUE(queue.flush(patience));
}

TEST(LogQueue, KeepsTheOrderOfEachOfManyThreads)
{
    Disk disk;
    constexpr int threads = 8;
    constexpr int lines = 500;
    {
        LogQueue queue(disk.writer());
        std::vector<std::thread> loggers;
        for (int t = 0; t < threads; ++t)
            loggers.emplace_back([&queue, t] {
                for (int i = 0; i < lines; ++i)
                    add(queue, std::to_string(t) + " " + std::to_string(i));
            });
        for (std::thread& logger : loggers)
            logger.join();
    }
    const Texts texts = disk.texts();
    EXPECT_EQ(texts.size(), std::size_t{threads * lines});
    for (int t = 0; t < threads; ++t) {
        int next = 0;
        for (const std::string& text : texts)
            if (std::stoi(text) == t) {
                EXPECT_EQ(text, std::to_string(t) + " " + std::to_string(next));
                ++next;
            }
        EXPECT_EQ(next, lines);
    }
}

TEST(LogQueue, ItsDestructorWritesWhatWaits)
{
    Disk disk;
    disk.stand_still();
    {
        LogQueue queue(disk.writer());
        add(queue, "one");
        add(queue, "two");
        disk.go_on();
    }
    EXPECT_EQ(disk.texts(), (Texts{"one", "two"}));
}

TEST(LogQueue, AfterFinishALineIsWrittenWhenAddReturns)
{
    Disk disk;
    LogQueue queue(disk.writer());
    add(queue, "before");
    queue.finish();
    EXPECT_EQ(disk.texts(), Texts{"before"});
    for (int i = 0; i < 100; ++i) {
        add(queue, std::to_string(i));
        ASSERT_EQ(disk.texts().back(), std::to_string(i));
    }
}

TEST(LogQueue, FinishAndLaterLinesDoNotWaitForeverForADeadDisk)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer());
    add(queue, "in hand");
    disk.wait_for_writer();
    const auto begin = std::chrono::steady_clock::now();
    queue.finish();
    for (int i = 0; i < 1000; ++i)
        add(queue, "later");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, patience);
    EXPECT_TRUE(disk.texts().empty());
    disk.go_on();
}

TEST(LogQueue, WithoutAThreadTheCallerWrites)
{
    Disk disk;
    LogQueue queue(disk.writer(), LogQueue::Writer::caller);
    add(queue, "one");
    EXPECT_EQ(disk.texts(), Texts{"one"});
    EXPECT_EQ(disk.writing_thread(), std::this_thread::get_id());
    EXPECT_TRUE(queue.flush(patience));
    queue.finish();
    add(queue, "two");
    EXPECT_EQ(disk.texts(), (Texts{"one", "two"}));
}

TEST(LogQueue, WithoutAThreadManyCallersWriteOneAtATime)
{
    Disk disk; // checks that it is one at a time
    LogQueue queue(disk.writer(), LogQueue::Writer::caller);
    std::vector<std::thread> loggers;
    for (int t = 0; t < 4; ++t)
        loggers.emplace_back([&queue] {
            for (int i = 0; i < 250; ++i)
                add(queue, "line");
        });
    for (std::thread& logger : loggers)
        logger.join();
    EXPECT_EQ(disk.texts().size(), 1000u);
}

TEST(LogQueue, PauseWaitsForTheLineInHand)
{
    Disk disk;
    disk.stand_still();
    LogQueue queue(disk.writer());
    add(queue, "in hand");
    disk.wait_for_writer();
    EXPECT_TRUE(queue.is_writing());
    EXPECT_FALSE(queue.pause(moment));
    queue.resume();
    disk.go_on();
    EXPECT_TRUE(queue.pause(patience));
    EXPECT_FALSE(queue.is_writing());
    queue.resume();
}

TEST(LogQueue, NothingIsWrittenDuringAPause)
{
    for (const auto writer : {LogQueue::Writer::own_thread, LogQueue::Writer::caller}) {
        Disk disk;
        LogQueue queue(disk.writer(), writer);
        ASSERT_TRUE(queue.pause(patience));
        ASSERT_TRUE(queue.pause(patience)); // of two threads
        add(queue, "later");                // may wait, but not for ever
        queue.resume();
        EXPECT_FALSE(queue.flush(moment));
        EXPECT_TRUE(disk.texts().empty());
        queue.resume();
        EXPECT_TRUE(queue.flush(patience));
        EXPECT_EQ(disk.texts(), Texts{"later"});
    }
}

} // namespace
