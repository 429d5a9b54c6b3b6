// What a restart of the server costs an application.

#include "vl_api.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/log_file.h"
#include "tests/support/omni_names.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

constexpr unsigned int port = 7;

int create_port(const char* name, unsigned int handle)
{
    return vl_create_port(name, handle, 0, "S", nullptr);
}

TEST(Restart, BetweenTwoCallsCostsOneFailedCallWithItsCodeAndLogLine)
{
    LogFile log;
    Velmod velmod({"--server", "S", "--no-unix"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_EQ(create_port("p", port), VL_OK);

    velmod.kill();
    velmod.restart();
    EXPECT_EQ(create_port("p", port), 112);
    EXPECT_NE(log.text().find("create_port M/W Error system exception, ID "
                              "'IDL:omg.org/CORBA/COMM_FAILURE:1.0'"),
              std::string::npos)
        << log.text();
    EXPECT_EQ(create_port("p", port), VL_OK) << "the new server has no such port yet";
    EXPECT_EQ(create_port("p", port), OBJECT_ALREADY_EXSIT);
}

TEST(Restart, BetweenTwoCallsCostsOneAtMostThroughAUnixSocket)
{
    Velmod velmod({"--server", "S"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_EQ(create_port("p", port), VL_OK);
    velmod.kill();
    velmod.restart();
    const int first = create_port("p", port);
    EXPECT_TRUE(first == 112 || first == VL_OK) << first;
    EXPECT_EQ(create_port("p", port), first == 112 ? VL_OK : OBJECT_ALREADY_EXSIT);
}

TEST(Restart, WhileDownGivesCodesAndThenWorksAgain)
{
    Velmod velmod({"--server", "S", "--no-unix"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_EQ(create_port("p", port), VL_OK);
    velmod.kill();
    EXPECT_EQ(create_port("p", port), 112);
    EXPECT_EQ(create_port("p", port), VL_NO_REFERENCE);
    EXPECT_EQ(vl_mid_is_connect("S"), NAMING_SERVER_NOT_ONLINE);
    velmod.restart();
    EXPECT_EQ(create_port("p", port), VL_OK);
    EXPECT_EQ(vl_mid_is_connect("S"), VL_OK);
}

TEST(Restart, OfAServerInAStandardNamingServiceCostsOneCallAsWell)
{
    if (!OmniNames::available())
        GTEST_SKIP() << "omniNames is not installed";
    OmniNames names;
    Velmod velmod({"--server", "S", "--naming", names.naming_url()});
    SettingsFile settings("", {{"S", names.naming_url()}});
    ASSERT_EQ(create_port("p", port), VL_OK);
    velmod.kill();
    velmod.restart();
    const int first = create_port("p", port);
    EXPECT_TRUE(first == 112 || first == VL_OK) << first;
    EXPECT_NE(create_port("p", port), 112);
}

TEST(Restart, AfterCallsOfManyThreadsCostsEachThreadOneCallAtMost)
{
    Velmod velmod({"--server", "S", "--no-unix"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    constexpr unsigned int threads = 4;
    ASSERT_EQ(create_port("p", port), VL_OK);
    // Waiting receives at the same time: a connection for each thread.
    std::vector<std::thread> callers;
    for (unsigned int i = 0; i < threads; ++i) {
        callers.emplace_back([] {
            void* data = nullptr;
            unsigned int length = 0;
            EXPECT_EQ(vl_receive_packetv(port, nullptr, &data, &length, 200, "S", nullptr),
                      TIME_OUT);
        });
    }
    for (std::thread& caller : callers)
        caller.join();

    velmod.kill();
    velmod.restart();
    unsigned int failures = 0;
    while (create_port("p", port) == 112)
        ASSERT_LE(++failures, threads);
    EXPECT_LE(failures, 1u);
}

TEST(Restart, WaitingReceiveEndsWithItsCodeWhenTheServerDies)
{
    Velmod velmod({"--server", "S"});
    SettingsFile settings("", {{"S", velmod.naming_url()}});
    ASSERT_EQ(create_port("p", port), VL_OK);
    std::atomic<bool> started{false};
    int code = VL_OK;
    std::thread receiver([&] {
        void* data = nullptr;
        unsigned int length = 0;
        started = true;
        code = vl_receive_packetv(port, nullptr, &data, &length, 0xFFFFFFFF, "S", nullptr);
    });
    ASSERT_TRUE(eventually([&] { return started.load(); }));
    velmod.kill();
    receiver.join();
    EXPECT_EQ(code, 123);
}

} // namespace
