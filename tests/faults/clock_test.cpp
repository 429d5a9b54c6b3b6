// The wall clock is set, forward or back. The library's own waits and those of velmod are
// measured with the steady clock; the broker takes the ends of its time-outs from the wall
// clock.
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <ctime>
#include <thread>

#include "tests/faults/faulty_relay.h"
#include "tests/faults/servers.h"

using namespace velmo::tests;

namespace {

std::atomic<std::time_t> clock_offset{0}; // seconds

void set_clock(std::chrono::seconds from_the_true_time)
{
    clock_offset = from_the_true_time.count();
}

} // namespace

// The clock of this process: the libraries find these instead of the C library's.
extern "C" {

[[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, now);
    if (clock == CLOCK_REALTIME)
        now->tv_sec += clock_offset;
    return static_cast<int>(result);
}

[[gnu::visibility("default")]] int gettimeofday(timeval* now, void*) noexcept
{
    timespec precise{};
    clock_gettime(CLOCK_REALTIME, &precise);
    now->tv_sec = precise.tv_sec;
    now->tv_usec = precise.tv_nsec / 1000;
    return 0;
}

[[gnu::visibility("default")]] int pthread_cond_timedwait(pthread_cond_t* condition,
                                                          pthread_mutex_t* mutex,
                                                          const timespec* until)
{
    timespec true_until = *until;
    true_until.tv_sec -= clock_offset;
    return pthread_cond_clockwait(condition, mutex, CLOCK_REALTIME, &true_until);
}

} // extern "C"

namespace {

constexpr std::chrono::hours forward{1}, back{-1};

TEST(AClock, ThatIsSetBetweenCallsDoesNotMatter)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("the clock is set between calls, an hour forward and two back");
    ASSERT_TRUE(port_is_there());
    for (const std::chrono::seconds offset : {forward, back}) {
        set_clock(offset);
        EXPECT_EQ(fault.call(make_port), VL_OK);
        EXPECT_EQ(fault.call([] { return wait_for_packet(7, Milliseconds(100)); }),
                  TIME_OUT);
        EXPECT_EQ(fault.call([] { return vl_mid_connect("S"); }), VL_OK);
    }
    velmod.kill();
    velmod.restart();
    EXPECT_EQ(fault.call(make_port), 112);
    fault.recovers(make_port);
}

class ACallToASilentServer : public ::testing::TestWithParam<std::chrono::hours> {};

TEST_P(ACallToASilentServer, EndsInTimeWhenTheClockIsSetMeanwhile)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault(std::string("the clock is set an hour ") +
                (GetParam() == forward ? "forward" : "back") +
                " during a call to a server that is silent");
    ASSERT_TRUE(port_is_there());
    velmod.process().suspend();
    std::thread caller([&] { EXPECT_EQ(fault.call(make_port), 112); });
    std::this_thread::sleep_for(Milliseconds(200)); // the call is waiting, most likely
    set_clock(GetParam());
    caller.join();
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    velmod.process().signal(SIGCONT);
    fault.recovers(make_port);
}

INSTANTIATE_TEST_SUITE_P(Jumps, ACallToASilentServer, ::testing::Values(forward, back));

// The broker looks at the clock again for each piece of an answer.
TEST(AClock, ThatIsSetBackWithinAnAnswerThatNeverEndsProlongsTheCallByAsMuch)
{
    constexpr std::chrono::seconds jump{2};
    Velmod velmod(over_tcp);
    FaultyRelay relay(velmod.port());
    FaultSettings settings(naming_url(relay.port()));
    Fault fault("the clock is set back by 2 s within an answer that never ends",
                call_timeout + jump);
    ASSERT_TRUE(port_is_there());
    relay.answer_with([jump](const std::string&) {
        set_clock(-jump);
        return std::string("GIOP\1\2\1\1\xFF\0\0\0", 12); // 255 bytes are to follow
    });
    EXPECT_EQ(fault.call(make_port), 112);
    relay.pass();
    fault.recovers(make_port);
}

} // namespace
