// A server that is killed, and comes back.
#include <atomic>
#include <random>
#include <thread>

#include "tests/faults/servers.h"

using namespace velmo::tests;

namespace {

TEST(Kill, WhileNobodyCallsCostsOneCall)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("kill -9 between two calls, restart on the same port");
    ASSERT_TRUE(port_is_there());
    velmod.kill();
    velmod.restart();
    EXPECT_EQ(fault.call(make_port), 112);
    EXPECT_NE(fault.log().find("create_port M/W Error system exception, ID "
                               "'IDL:omg.org/CORBA/COMM_FAILURE:1.0'"),
              std::string::npos)
        << fault.log();
    fault.recovers(make_port);
}

TEST(Kill, OfAServerThatStaysDownGivesCodesAtOnce)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("kill -9, calls while it is down, restart on the same port");
    ASSERT_TRUE(port_is_there());
    velmod.kill();
    EXPECT_EQ(fault.call(make_port), 112);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    EXPECT_EQ(fault.call([] { return vl_mid_is_connect("S"); }), NAMING_SERVER_NOT_ONLINE);
    velmod.restart();
    fault.recovers(make_port);
}

TEST(Kill, AndARestartOnAnotherPortIsFoundThroughTheNamingService)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    OmniNames names;
    const std::vector<std::string> registered{"--server", "S", "--no-unix", "--naming",
                                              names.naming_url()};
    std::optional<Velmod> velmod(registered);
    FaultSettings settings(names.naming_url());
    Fault fault("kill -9, restart on another port, found through omniNames");
    ASSERT_TRUE(port_is_there());
    velmod->kill();
    EXPECT_EQ(fault.call(make_port), 112);
    EXPECT_EQ(fault.call(make_port), 112) << "its registration is still there";
    velmod.emplace(registered);
    fault.recovers(make_port);
}

TEST(Kill, DuringCallsOfManyThreadsEndsEachWithItsCode)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("kill -9 while 8 threads wait in a call, restart on the same port");
    ASSERT_TRUE(port_is_there());
    std::atomic<int> begun{0};
    std::vector<std::thread> callers;
    for (int i = 0; i < 8; ++i)
        callers.emplace_back([&] {
            ++begun;
            const int code =
                fault.call([] { return wait_for_packet(7, Milliseconds(400)); });
            EXPECT_TRUE(code == 123 || code == VL_NO_REFERENCE) << code;
        });
    ASSERT_TRUE(eventually([&] { return begun == 8; }));
    std::this_thread::sleep_for(Milliseconds(100)); // most have reached the server
    velmod.kill();
    for (std::thread& caller : callers)
        caller.join();
    velmod.restart();
    fault.recovers(make_port);
}

// What clients see of a server that keeps dying under load. Each call is made once: what
// is counted on the server never exceeds what was asked of it.
TEST(Kill, AgainAndAgainUnderLoadIsAtMostOncePerCall)
{
    const int kills = long_form() ? 100 : 5;
    constexpr int callers = 4;
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("kill -9 " + std::to_string(kills) + " times at random moments under load");
    std::mt19937 random(1);
    std::uniform_int_distribution<int> moment(5, 60);
    for (int kill = 0; kill < kills; ++kill) {
        fault.recovers([] { return declare_event(1, ""); });
        fault.recovers([] { return add_event("e", 1); });
        std::atomic<bool> stop{false};
        std::atomic<int> asked{0}, acknowledged{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < callers; ++i)
            threads.emplace_back([&] {
                while (!stop) {
                    ++asked;
                    acknowledged += fault.call([] { return raise_event("e"); }) == VL_OK;
                }
            });
        ASSERT_TRUE(eventually([&] { return acknowledged > callers; }));
        std::this_thread::sleep_for(Milliseconds(moment(random)));
        const int acknowledged_before = acknowledged;
        const int counted = std::stoi(event_count("e"));
        const int asked_after = asked;
        EXPECT_GE(counted, acknowledged_before);
        EXPECT_LE(counted, asked_after);
        velmod.kill();
        ASSERT_TRUE(eventually([&] { return asked > asked_after + 4 * callers; }));
        stop = true;
        for (std::thread& thread : threads)
            thread.join();
        velmod.restart();
    }
    fault.recovers([] { return declare_event(1, ""); });
}

} // namespace
