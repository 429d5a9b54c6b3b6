// A server on another host, over a wire that delays and loses, or is cut.
#include <atomic>
#include <thread>

#include "tests/faults/fault.h"
#include "tests/faults/network.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

std::string url_of(const char* address)
{
    return "corbaloc::1.2@" + std::string(address) + ":2809/NameService";
}

class AnotherHost : public ::testing::Test {
protected:
    void SetUp() override
    {
        const std::string reason = Network::unavailable();
        if (!reason.empty())
            GTEST_SKIP() << reason;
        network.emplace();
        settings.emplace(url_of(Network::server_address));
        start_server(Network::server_address);
    }

    void TearDown() override
    {
        velmod.reset();
        network.reset();
    }

    void start_server(const char* address)
    {
        velmod.reset();
        const std::string place = std::string(address) + ":2809";
        network->on_server([&] {
            velmod.emplace(
                std::vector<std::string>{"--server", "S", "--no-unix", "--listen", place});
        });
    }

    std::optional<Network> network;
    std::optional<Velmod> velmod;
    std::optional<FaultSettings> settings;
};

TEST_F(AnotherHost, FarAwayIsSlowerAndNothingElse)
{
    Fault fault("another host, 50 ms away each way");
    ASSERT_TRUE(port_is_there());
    network->delay(Milliseconds(50));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(fault.call(make_port), VL_OK);
}

TEST_F(AnotherHost, FarAwayIsLookedUpByManyAndAFailedCallReturnsAllTheSame)
{
    Fault fault("another host, 50 ms away each way, a call that fails while 8 threads look "
                "services up",
                longest_call + Milliseconds(2000) + naming_timeout);
    ASSERT_TRUE(port_is_there());
    network->delay(Milliseconds(50));
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
            while (!stop && std::chrono::steady_clock::now() < end) {
                create_point("p", "text", "a realm that is none");
            }
        });
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(fault.call([] { return wait_for_packet(7, call_timeout * 2); }), 123);
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(AnotherHost, OverAWireThatLosesPacketsIsReachedInTimeOrNot)
{
    Fault fault("a wire that loses 10 % of the packets");
    ASSERT_TRUE(port_is_there());
    network->lose(10);
    for (int i = 0; i < (long_form() ? 200 : 40); ++i)
        if (fault.call(make_port) != VL_OK)
            fault.recovers(make_port); // while packets go on being lost
    network->heal();
    fault.recovers(make_port);
    fault.remark(std::to_string(network->lost()) + " packets lost");
}

TEST_F(AnotherHost, CutOffDuringACallIsFoundAgain)
{
    Fault fault("the wire is cut for three calls, and heals");
    ASSERT_TRUE(port_is_there());
    network->cut();
    EXPECT_EQ(fault.call(make_port), 112);
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    EXPECT_EQ(fault.call(make_port), VL_NO_REFERENCE);
    network->heal();
    fault.recovers(make_port);
}

TEST_F(AnotherHost, RestartedWhileItWasCutOffCostsOneCall)
{
    Fault fault("the wire is cut, the server's host restarts meanwhile, the wire heals");
    ASSERT_TRUE(port_is_there());
    network->cut();
    velmod->kill();
    start_server(Network::server_address);
    network->heal();
    EXPECT_EQ(fault.call(make_port), 112) << "its connection is half-open";
    fault.recovers(make_port);
}

TEST_F(AnotherHost, ThatGetsAnotherAddressIsFoundThroughTheNamingServicesAddresses)
{
    settings->write(
        "local=\"S\" call_timeout_ms=\"600\" naming_timeout_ms=\"2000\" "
        "connect_timeout_ms=\"300\"",
        {{"S", "corbaloc::1.2@" + std::string(Network::server_address) + ":2809,:1.2@" +
                   Network::other_server_address + ":2809/NameService"}});
    Fault fault("the server's host gets another address, the second in the naming URL",
                Milliseconds(2600));
    ASSERT_TRUE(port_is_there());
    velmod->kill();
    network->move_server(Network::other_server_address);
    start_server(Network::other_server_address);
    EXPECT_EQ(fault.call(make_port), 112);
    fault.recovers(make_port);
}

TEST_F(AnotherHost, IsReachedFromANewAddress)
{
    Fault fault("the client's host gets another address");
    ASSERT_TRUE(port_is_there());
    network->move_client(Network::other_client_address);
    EXPECT_EQ(fault.call(make_port), 112) << "its connection is of the old address";
    fault.recovers(make_port);
}

} // namespace
