// Many threads on events and on contenders. Meant for the thread sanitizer as well.
#include <atomic>
#include <thread>

#include "tests/server/contention_fixture.h"
#include "tests/server/event_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

constexpr int threads = 8;
constexpr int rounds = 2000;

template <class Work>
void on_all_threads(Work work)
{
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([=] { work(i); });
    for (std::thread& thread : running)
        thread.join();
}

class EventStress : public EventFixture {};

TEST_F(EventStress, NoRaiseIsLost)
{
    add({"e"});
    on_all_threads([this](int thread) {
        for (int i = 0; i < rounds; ++i) {
            ASSERT_EQ(raise("e", std::to_string(i)), VL_OK);
            if (i % 100 == 0) {
                const std::string own = "e" + std::to_string(thread) + std::to_string(i);
                ASSERT_EQ(events.add_event(own, 7), VL_OK);
                ASSERT_EQ(raise(own), VL_OK);
                ASSERT_TRUE(model::EventPoints(events).read("$SYS/events/e/data"));
            }
        }
    });
    std::uint64_t count = 0;
    ASSERT_EQ(events.event_count("e", count), VL_OK);
    EXPECT_EQ(count, static_cast<std::uint64_t>(threads) * rounds);
    EXPECT_EQ(events.names().size(), 1 + static_cast<std::size_t>(threads) * rounds / 100);
}

TEST_F(EventStress, AnImageIsOfOneMoment)
{
    add({"first", "second"});
    std::atomic<bool> done{false};
    std::thread raiser([&] {
        for (int i = 0; i < rounds; ++i) {
            ASSERT_EQ(raise("first"), VL_OK);
            ASSERT_EQ(raise("second"), VL_OK);
        }
        done = true;
    });
    while (!done) {
        const model::EventsImage image = events.image();
        const std::uint64_t ahead = image.events[0].count - image.events[1].count;
        ASSERT_LE(ahead, 1u);
    }
    raiser.join();
}

// The service's own clock, and leases so short that they end all the time.
class ContentionStress : public ::testing::Test {
protected:
    static model::ContentionLimits short_leases()
    {
        model::ContentionLimits limits;
        limits.lease = std::chrono::milliseconds(1);
        return limits;
    }

    model::ContentionService contention{short_leases(),
                                        model::ContentionService::Clock::now, 1};
};

TEST_F(ContentionStress, NoEpochIsSharedOrLowerThanOneBefore)
{
    constexpr model::Epoch most = threads * rounds * 8;
    std::vector<std::atomic<int>> master_of(most);
    on_all_threads([&](int thread) {
        const std::string name = std::to_string(thread);
        model::Epoch highest = 0;
        for (int i = 0; i < rounds; ++i) {
            contention.regist_contender("g", name, bytes_of(name), "", i % 3);
            contention.update_contender("g", name);
            const auto group = contention.status("g");
            ASSERT_TRUE(group);
            ASSERT_GE(group->epoch, highest);
            highest = group->epoch;
            if (!group->contenders.empty()) {
                const int master = std::stoi(group->contenders.front().name) + 1;
                ASSERT_LT(highest, most);
                const int before = master_of[highest].exchange(master);
                ASSERT_TRUE(before == 0 || before == master) << "epoch " << highest;
            }
            if (i % 5 == 0)
                contention.out_contend("g", name);
            contention.leases();
        }
    });
}

} // namespace
