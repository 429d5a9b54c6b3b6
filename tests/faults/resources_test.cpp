// Processes that run out of descriptors, or of memory.
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <thread>

#include "tests/faults/servers.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;

namespace {

// A limit of a process, as long as this object lives.
class Limit {
public:
    Limit(pid_t its_process, __rlimit_resource what, rlim_t most)
        : process(its_process), resource(what)
    {
        check(prlimit(process, resource, nullptr, &before) == 0);
        const rlimit wanted{most, before.rlim_max};
        check(prlimit(process, resource, &wanted, nullptr) == 0);
    }
    ~Limit() { prlimit(process, resource, &before, nullptr); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    static void check(bool good) { check_system_call(good, "prlimit"); }

    const pid_t process;
    const __rlimit_resource resource;
    rlimit before{};
};

// The highest descriptor that a process has open.
rlim_t highest_descriptor(pid_t process)
{
    const std::string folder = "/proc/" + std::to_string(process) + "/fd";
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    rlim_t highest = 0;
    while (const dirent* entry = readdir(entries.get()))
        highest = std::max<rlim_t>(highest, std::strtoul(entry->d_name, nullptr, 10));
    return highest;
}

// As long as it lives, this process can open nothing, or a few files.
class NoDescriptors {
public:
    explicit NoDescriptors(rlim_t left = 0)
        : limit(0, RLIMIT_NOFILE, highest_descriptor(getpid()) + 1 + left)
    {
        for (int filler; (filler = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
            fillers.emplace_back(filler);
        for (; left > 0; --left)
            fillers.pop_back();
    }

private:
    std::vector<Descriptor> fillers;
    Limit limit;
};

TEST(Descriptors, OfAClientThatHasNoneLeftAreNotNeededForOpenConnections)
{
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault(
        "a client without descriptors calls, then the server restarts; they return");
    ASSERT_TRUE(port_is_there());
    velmod.kill();
    velmod.restart();
    EXPECT_EQ(make_port(), 112);
    EXPECT_EQ(make_port(), VL_OK);
    {
        const NoDescriptors none;
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(fault.call(make_port), VL_OK);
    }
    velmod.kill();
    velmod.restart();
    {
        const NoDescriptors none;
        EXPECT_EQ(fault.call(make_port), 112);
        for (int i = 0; i < 10; ++i) {
            const int code = fault.call(make_port);
            EXPECT_TRUE(code == VL_NO_REFERENCE || code == 112 || code == VL_OK) << code;
        }
    }
    fault.recovers(make_port);
}

// Some suffice for reading the settings, some for starting the broker, some for a
// connection, but no longer for two.
class FewDescriptors : public ::testing::TestWithParam<rlim_t> {};

TEST_P(FewDescriptors, OfAClientThatMakesItsFirstCallsAreMissed)
{
    if (sanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors itself";
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("a client makes its first calls with so many descriptors left: " +
                std::to_string(GetParam()) + "; others return");
    const auto make_named_port = [] {
        const int code = vl_create_port("p", 7, 0, "S", nullptr);
        return code == OBJECT_ALREADY_EXSIT ? VL_OK : code;
    };
    {
        const NoDescriptors few(GetParam());
        for (int i = 0; i < 5; ++i) {
            const int code = fault.call(make_named_port);
            EXPECT_TRUE(code == VL_NO_REFERENCE || code == 112 ||
                        (code == VL_OK && GetParam() > 0))
                << code;
        }
    }
    fault.recovers(make_named_port);
}

INSTANTIATE_TEST_SUITE_P(Left, FewDescriptors, ::testing::Values(0, 1, 3));

TEST(Descriptors, OfAServerThatHasNoneLeftAreMissedByNewClientsAlone)
{
    if (sanitized)
        GTEST_SKIP() << "a sanitizer needs descriptors itself";
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("a server without descriptors: calls of a client that is connected");
    ASSERT_TRUE(port_is_there());
    Fault other("a server without descriptors: 8 calls that need new connections; the "
                "descriptors return");
    const pid_t server = velmod.process().pid();
    {
        const Limit none(server, RLIMIT_NOFILE, highest_descriptor(server) + 1);
        std::vector<Descriptor> holders; // take what is free below
        for (int i = 0; i < 40; ++i)
            holders.push_back(connected_socket(velmod.port()));
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(fault.call(make_port), VL_OK);
        std::vector<std::thread> threads; // each call at a time has a connection
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                const int code =
                    other.call([] { return wait_for_packet(7, Milliseconds(200)); });
                EXPECT_TRUE(code == 123 || code == TIME_OUT || code == VL_NO_REFERENCE)
                    << code;
            });
        for (std::thread& thread : threads)
            thread.join();
    }
    other.recovers(make_port);
}

// -------------------------------------------------------------- memory

rlim_t address_space_in_use()
{
    std::ifstream pages("/proc/self/statm");
    rlim_t count = 0;
    pages >> count;
    return count * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

TEST(Memory, OfAClientThatHasLittleLeftIsMissedByLargePacketsAlone)
{
    if (sanitized)
        GTEST_SKIP() << "a sanitizer reserves the address space";
    constexpr std::size_t large = 8 << 20;
    Velmod velmod(over_tcp);
    FaultSettings settings(velmod.naming_url());
    Fault fault("a client with 4 MiB of memory left: packets of 8 MiB, and small ones");
    ASSERT_TRUE(port_is_there());
    const std::string packet(large, 'x');
    ASSERT_EQ(send(7, packet), VL_OK);
    ASSERT_EQ(create_port("small", 8), VL_OK);
    {
        const Limit little(0, RLIMIT_AS, address_space_in_use() + (4 << 20));
        EXPECT_EQ(fault.call([&] { return send(7, packet); }), 112);
        EXPECT_EQ(fault.call([] { return wait_for_packet(7, Milliseconds(0)); }), 123);
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(fault.call([] { return send(8, "small"); }), VL_OK);
            EXPECT_EQ(receive(8), "small");
        }
    }
    fault.recovers(make_port);
    EXPECT_EQ(receive(7), in_brackets(EMPTY_QUEUE))
        << "a packet that was handed to a client is not handed out again";
}

} // namespace
