// A server with as many clients as it may have, and with more.
#include <sys/resource.h>

#include <iostream>

#include <gtest/gtest.h>

#include "orb/server.h"
#include "tests/e2e/calls.h"
#include "tests/load/crowd.h"
#include "tests/load/figures.h"
#include "tests/support/loopback.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

// The thread sanitizer cannot watch more threads than a few thousand.
constexpr std::size_t many = sanitized ? 1000 : 10000;
constexpr std::size_t for_everything_else = 200; // descriptors, of either process
constexpr std::size_t sample = 100;
constexpr std::size_t room_for_others = 10;
constexpr int waves_to_warm_up = 4;
constexpr int waves = 30;
constexpr long long most_kib_left_behind = 256; // 130 bytes of each of 2000

// A soft limit of this process, as long as the object lives; children that begin
// meanwhile take it over.
class SoftLimit {
public:
    explicit SoftLimit(rlim_t most)
    {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit wanted{most, before.rlim_max};
        check_system_call(setrlimit(RLIMIT_NOFILE, &wanted) == 0, "setrlimit");
    }
    ~SoftLimit() { setrlimit(RLIMIT_NOFILE, &before); }
    SoftLimit(const SoftLimit&) = delete;
    SoftLimit& operator=(const SoftLimit&) = delete;

private:
    rlimit before{};
};

rlim_t hard_limit()
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_max;
}

class CrowdTest : public ::testing::Test {
protected:
    Figures figures() { return figures_of(velmod.process().pid()); }

    // But for the few connections of the library.
    bool crowd_has_left(const Figures& before)
    {
        return figures().descriptors < before.descriptors + 8;
    }

    // Whether the processes and objects around the crowd find the server as it should be.
    void expect_service_for_others()
    {
        EXPECT_EQ(create_point("p"), VL_OK);
        EXPECT_EQ(set_point("p", "value"), VL_OK);
        EXPECT_EQ(get_point("p"), "value");
        EXPECT_EQ(vl_remove_template_point("p", nullptr, nullptr), VL_OK);
        for (int i = 0; i < 3; ++i) {
            // The server is busy with the crowd: it may take its time.
            Process another({VELMO_PATH, "point", "types"},
                            {{"VELMO_NAMING_TIMEOUT_MS", "20000"},
                             {"VELMO_CONNECT_TIMEOUT_MS", "20000"},
                             {"VELMO_CALL_TIMEOUT_MS", "20000"}});
            EXPECT_EQ(another.wait(), 0) << another.err();
        }
    }

    void expect_service_for_crowd()
    {
        const std::size_t step = std::max<std::size_t>(1, crowd.size() / sample);
        for (std::size_t i = 0; i < crowd.size(); i += step)
            ASSERT_TRUE(crowd.is_served(i)) << i;
    }

    TemporaryFolder folder;
    const std::string socket = (folder.path() / "s").string();
    SoftLimit usual{1024}; // a server has to see to more itself
    // Without caches of free memory for each thread, which would grow for some more waves.
    Velmod velmod{
        {"--unix-socket", socket},
        {{"GLIBC_TUNABLES", "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1"}}};
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};
    Crowd crowd{{velmod.port(), orb::abilities().unix_sockets ? socket : ""}};
};

TEST_F(CrowdTest, TenThousandAreServedAtOnce)
{
    if (hard_limit() < many + for_everything_else)
        GTEST_SKIP() << "a process may open " << hard_limit() << " descriptors only";
    const SoftLimit raised(hard_limit());
    const Figures before = figures();
    while (crowd.size() < many)
        ASSERT_TRUE(crowd.join()) << crowd.size();
    const Figures together = figures();
    EXPECT_GE(together.descriptors, many);
    expect_service_for_crowd();
    expect_service_for_others();
    crowd.leave(many);
    EXPECT_TRUE(eventually([&] { return crowd_has_left(before); }));
    expect_service_for_others();

    const auto kib = static_cast<double>(together.memory_kib - before.memory_kib) / many;
    std::cout << "crowd: "
              << nlohmann::json{{"connections", many},
                                {"kib_of_a_connection", kib},
                                {"threads", together.threads},
                                {"memory_kib", together.memory_kib},
                                {"memory_kib_afterwards", figures().memory_kib}}
              << std::endl;
    RecordProperty("kib_of_a_connection", std::to_string(kib));
    if (!sanitized) {
        EXPECT_LT(kib, orb::abilities().connection_kib);
    }
    EXPECT_EQ(velmod.stop(), 0);
}

TEST_F(CrowdTest, ThoseThatHaveLeftLeaveNothingBehind)
{
    const Figures before = figures();
    Series memory;
    for (int wave = 0; wave < waves_to_warm_up + waves; ++wave) {
        while (crowd.size() < sample)
            ASSERT_TRUE(crowd.join()) << crowd.size();
        crowd.leave(sample);
        ASSERT_TRUE(eventually([&] { return crowd_has_left(before); }));
        if (wave >= waves_to_warm_up)
            memory.push_back(figures().memory_kib);
    }
    RecordProperty("growth_kib", std::to_string(growth(memory)));
    if (!sanitized) {
        EXPECT_LE(growth(memory), most_kib_left_behind);
    }
    EXPECT_LE(figures().threads, before.threads + 2 * sample);
}

TEST_F(CrowdTest, BeyondTheLimitClientsAreRefusedAtOnceAndOthersServed)
{
    if (!orb::abilities().refuses_connections)
        GTEST_SKIP() << "this broker keeps clients waiting for a descriptor";
    constexpr rlim_t limit = 200;
    const rlimit few{limit, limit};
    check_system_call(prlimit(velmod.process().pid(), RLIMIT_NOFILE, &few, nullptr) == 0,
                      "prlimit");
    while (crowd.join())
        ASSERT_LT(crowd.size(), limit);
    EXPECT_GT(crowd.size(), limit / 2);
    for (std::size_t i = 0; i < limit; ++i)
        EXPECT_FALSE(crowd.join());
    EXPECT_NE(create_point("p"), VL_OK) << "the library's client is one too many as well";
    expect_service_for_crowd();
    EXPECT_LT(figures().descriptors, limit);
    EXPECT_TRUE(eventually([&] {
        return velmod.process().err().find("event=refused connections=1 ") !=
               std::string::npos;
    }));

    const std::size_t at_most = figures().descriptors;
    crowd.leave(room_for_others);
    EXPECT_TRUE(
        eventually([&] { return figures().descriptors <= at_most - room_for_others; }));
    expect_service_for_others();
    EXPECT_EQ(velmod.stop(), 0);
}

TEST_F(CrowdTest, ClientsOfTheUnixSocketThatComeAllAtOnceAreLetIn)
{
    if (!orb::abilities().unix_sockets)
        GTEST_SKIP() << "this broker has no unix sockets";
    velmod.process().suspend();
    std::vector<Descriptor> burst;
    for (std::size_t i = 0; i < sample; ++i) {
        burst.push_back(connected_at_once(socket));
        EXPECT_GE(burst.back().get(), 0) << i;
    }
    velmod.process().signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return figures().descriptors > sample; }));
    EXPECT_TRUE(crowd.join());
}

} // namespace
