// A writer gets the lock although readers never leave it free.

#include "registry/fair_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "tests/support/eventually.h"

using namespace velmo::tests;

namespace {

struct Level;
using ReadGuard = FairReadGuard<Level>;

struct FairLock : ::testing::Test {
    ACE_RW_Mutex lock{USYNC_THREAD};
    Turnstile turnstile;
};

TEST_F(FairLock, LetsAWriterInWhileReadersComeAndGo)
{
    constexpr std::chrono::milliseconds stay{50};
    std::atomic<bool> written{false};
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i)
        readers.emplace_back([&, i] {
            std::this_thread::sleep_for(stay / 4 * i); // they overlap
            eventually([&] {
                const ReadGuard guard(lock, turnstile);
                std::this_thread::sleep_for(stay);
                return written.load();
            });
        });
    std::this_thread::sleep_for(stay);
    std::thread writer([&] {
        const FairWriteGuard guard(lock, turnstile);
        written = guard.locked();
    });
    EXPECT_TRUE(eventually([&] { return written.load(); }, Turnstile::patience * 5));
    written = true;
    writer.join();
    for (std::thread& reader : readers)
        reader.join();
}

TEST_F(FairLock, DoesNotMakeAReaderWaitForAWriterThatWaitsForIt)
{
    auto outer = std::make_unique<ReadGuard>(lock, turnstile);
    auto writing = std::async(std::launch::async,
                              [&] { return FairWriteGuard(lock, turnstile).locked(); });
    std::this_thread::sleep_for(Turnstile::patience * 3 / 2); // it has waited for long
    EXPECT_TRUE(ReadGuard(lock, turnstile).locked());
    outer.reset();
    EXPECT_TRUE(writing.get());
}

TEST_F(FairLock, MakesNewcomersWaitForAWriterThatHasWaitedForLong)
{
    auto outer = std::make_unique<ReadGuard>(lock, turnstile);
    std::atomic<bool> written{false};
    auto writing = std::async(std::launch::async, [&] {
        const FairWriteGuard guard(lock, turnstile);
        written = true;
    });
    std::this_thread::sleep_for(Turnstile::patience * 3 / 2);
    auto reading = std::async(std::launch::async, [&] {
        const ReadGuard guard(lock, turnstile);
        return written.load();
    });
    EXPECT_EQ(reading.wait_for(std::chrono::milliseconds(100)),
              std::future_status::timeout);
    outer.reset();
    EXPECT_TRUE(reading.get()) << "it was in before the writer";
    writing.get();
}

} // namespace
