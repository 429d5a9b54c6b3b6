// velmod as a program: its options, start and end.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "orb/server.h"
#include "tests/server/client.h"
#include "tests/support/loopback.h"
#include "tests/support/velmod.h"
#include "vl_result.h"

using namespace velmo;
using namespace velmo::tests;
namespace fs = std::filesystem;

namespace {

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

Process::Command velmod_command(const std::vector<std::string>& arguments)
{
    Process::Command command{velmod_path()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

// Sockets go to a folder of the test's.
class VelmodProcess : public ::testing::Test {
protected:
    Process run(const std::vector<std::string>& arguments)
    {
        return Process(velmod_command(arguments), environment());
    }

    Process::Environment environment() const
    {
        return {{"XDG_RUNTIME_DIR", runtime.path().string()}};
    }

    std::size_t sockets() const
    {
        const fs::path folder = runtime.path() / "velmo";
        return fs::exists(folder)
                   ? static_cast<std::size_t>(std::distance(fs::directory_iterator(folder),
                                                            fs::directory_iterator()))
                   : 0;
    }

    TemporaryFolder runtime;
};

TEST_F(VelmodProcess, HelpAndVersionGoToStandardOutput)
{
    Process help = run({"--help"});
    EXPECT_EQ(help.wait(), 0);
    for (const char* option :
         {"--server", "--realm", "--listen", "--no-unix", "--unix-socket", "--naming",
          "--ready-fd", "--max-wait", "--config", "--data-dir", "--load", "--metrics",
          "--max-points", "--max-queue-bytes", "--max-message", "--lease", "--version"})
        EXPECT_TRUE(contains(help.out(), option)) << option;
    Process version = run({"--version"});
    EXPECT_EQ(version.wait(), 0);
    EXPECT_EQ(version.out(), "velmod " VELMO_VERSION "\n");
    EXPECT_EQ(version.err(), "");
}

using Arguments = std::vector<std::string>;

class Misuse : public VelmodProcess, public ::testing::WithParamInterface<Arguments> {};

TEST_P(Misuse, EndsWithStatusTwoAndAMessage)
{
    Process velmod = run(GetParam());
    EXPECT_EQ(velmod.wait(), 2);
    EXPECT_EQ(velmod.out(), "");
    EXPECT_TRUE(contains(velmod.err(), "--help")) << velmod.err();
}

INSTANTIATE_TEST_SUITE_P(
    Velmod, Misuse,
    ::testing::Values(
        Arguments{"--unknown"}, Arguments{"word"}, Arguments{"--listen"},
        Arguments{"--listen", "::1"}, Arguments{"--listen", "[::1"},
        Arguments{"--listen", "127.0.0.1:0", "word"}, Arguments{"--listen", ""},
        Arguments{"--listen", "[]:1"}, Arguments{"--listen", "[::1]x:1"},
        Arguments{"--listen", "1::2"}, Arguments{"--listen", ":2809"},
        Arguments{"--listen", "127.0.0.1:"}, Arguments{"--listen", "127.0.0.1:65536"},
        Arguments{"--listen", "127.0.0.1:x"}, Arguments{"--realm", ""},
        Arguments{"--realm", "ROOT"}, Arguments{"--realm", "/a"},
        Arguments{"--realm", "a//b"}, Arguments{"--realm", "a/"},
        Arguments{"--realm", "a", "--realm", "a"},
        Arguments{"--realm", std::string("a/") + keys::port_service},
        Arguments{"--server", ""}, Arguments{"--server", std::string(33, 's')},
        Arguments{"--server", "a", "--server", "b"},
        Arguments{"--no-unix", "--unix-socket", "/tmp/s"}, Arguments{"--max-wait", "-1"},
        Arguments{"--max-wait", "x"}, Arguments{"--lease", "0"},
        Arguments{"--max-points", "-1"}, Arguments{"--max-points", "1.5"},
        Arguments{"--max-message", "0"}, Arguments{"--max-message", "1Q"},
        Arguments{"--max-queue-bytes", ""}, Arguments{"--metrics", "127.0.0.1"},
        Arguments{"--metrics", "127.0.0.1:x"}, Arguments{"--ready-fd", "1"},
        Arguments{"--ready-fd", "x"}, Arguments{"--ready-fd", "999"}));

TEST_F(VelmodProcess, ReadyIsToldInOneLineAndOnTheDescriptor)
{
    Process velmod =
        run({"--server", "alpha", "--listen", "127.0.0.1:0", "--ready-fd", "3"});
    const std::optional<std::string> url = velmod.wait_ready();
    ASSERT_TRUE(url) << velmod.err();
    EXPECT_EQ(velmod.out(), "velmod: server alpha ready, naming " + *url + "\n");
    EXPECT_EQ(velmod.wait_ready(), std::nullopt) << "it is closed";
    EXPECT_TRUE(velmod.running());
    EXPECT_TRUE(is_bound(*url, keys::port_service));
}

// velmod, started by a shell that first does something to its descriptors.
Process::Command after(const std::string& redirections, const std::string& options)
{
    return {"/bin/sh", "-c",
            "exec \"$0\" --listen 127.0.0.1:0 " + options + " " + redirections,
            velmod_path()};
}

TEST_F(VelmodProcess, ADescriptorThatCannotBeWrittenToIsMisuse)
{
    for (const char* redirections :
         {"3>&-", "3</dev/null", "<&- 3>&-", "<&- >&- 3>&-", "<&- >&- 2>&- 3>&-"}) {
        Process velmod(after(redirections, "--ready-fd 3"), environment());
        EXPECT_EQ(velmod.wait(), 2) << redirections;
    }
    Process velmod(after("<&- 3>&-", "--ready-fd 4"), environment());
    EXPECT_EQ(velmod.wait(), 2);
}

TEST_F(VelmodProcess, ClosedStreamsAreNotTakenForFilesOfItsOwn)
{
    Process velmod(after("<&- >&- 2>&-", "--ready-fd 3"), environment());
    const std::optional<std::string> url = velmod.wait_ready();
    ASSERT_TRUE(url);
    for (const char* stream : {"0", "1", "2"})
        EXPECT_EQ(
            fs::read_symlink("/proc/" + std::to_string(velmod.pid()) + "/fd/" + stream),
            "/dev/null");
    EXPECT_TRUE(is_bound(*url, keys::port_service));
}

TEST_F(VelmodProcess, TheLogHasALineForEachEvent)
{
    Velmod velmod({"--server", "a b", "--realm", "alpha"}, environment());
    EXPECT_EQ(velmod.stop(), 0);
    const std::string log = velmod.process().err();
    const std::string place =
        "address=127.0.0.1:" + std::to_string(velmod.port()) +
        " unix=" + (orb::abilities().unix_sockets ? runtime.path() : "").string();
    std::size_t at = 0;
    for (const std::string& event :
         {std::string("velmod event=started server=\"a b\" version=" VELMO_VERSION),
          std::string("velmod event=limits max-points="),
          std::string("velmod event=realm name=ROOT"),
          std::string("velmod event=realm name=alpha"), "velmod event=listening " + place,
          std::string("velmod event=ready"), std::string("velmod event=stopping"),
          std::string("velmod event=stopped")}) {
        at = log.find(event, at);
        EXPECT_NE(at, std::string::npos) << event << "\n" << log;
    }
}

TEST_F(VelmodProcess, AMessageOverTheLimitGivesAResultCode)
{
    Velmod velmod({"--max-message", "1M"}, environment());
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports->send_packet(1, buffer(std::string(1u << 20, 'x')), 0), VL_OK);
    for (const std::size_t size : {(1u << 20) + 1, 64u << 20, 200u << 20})
        EXPECT_EQ(ports->send_packet(1, buffer(std::string(size, 'x')), 0),
                  SIZE_IS_NOT_MATCH);
    EXPECT_EQ(ports->send_packet(1, buffer("x"), 0), VL_OK);
}

TEST_F(VelmodProcess, QueuesAndPointsAreLimited)
{
    Velmod velmod({"--max-queue-bytes", "10", "--max-points", "0"}, environment());
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("p", 1, 0), VL_OK);
    EXPECT_EQ(ports->send_packet(1, buffer("1234567890"), 0), VL_OK);
    EXPECT_EQ(ports->send_packet(1, buffer("1"), 0), WOULD_BLOCK);
    EXPECT_EQ(ports->send_packet(1, buffer("12345678901"), 0), SIZE_IS_NOT_MATCH);
    CORBA::Object_var object =
        resolve(velmod.naming_url(), keys::data_template_point_service);
    Velmo::DT_POINT_SVC::DT_Point_Factory_var points =
        Velmo::DT_POINT_SVC::DT_Point_Factory::_narrow(object.in());
    EXPECT_EQ(points->create_DTP("p", "int8"), CREATE_DATAPOINT_FAI);
}

TEST_F(VelmodProcess, AFaultInTheConfigurationIsToldWithItsPlace)
{
    const std::string file = (runtime.path() / "c.xml").string();
    std::ofstream(file) << "<velmo>\n<velmod lease='x'/></velmo>";
    for (const Arguments& arguments : {Arguments{"--config", file}, Arguments{}}) {
        Process::Environment with_settings = environment();
        with_settings["VELMO_SETTINGS"] = file;
        Process velmod(velmod_command(arguments), with_settings);
        EXPECT_EQ(velmod.wait(), 1);
        EXPECT_TRUE(contains(velmod.err(), "velmod: " + file + ":2: lease"))
            << velmod.err();
        EXPECT_EQ(velmod.out(), "");
    }
}

TEST_F(VelmodProcess, ItListensWhereItIsTold)
{
    const std::uint16_t port = free_port();
    Velmod velmod(
        {"--listen", "127.0.0.1:" + std::to_string(port), "--listen", "127.0.0.1:0"});
    EXPECT_EQ(velmod.naming_url(), naming_url(port));
    EXPECT_TRUE(is_bound(velmod.naming_url(), keys::port_service));
}

TEST_F(VelmodProcess, ItListensOnIpVersion6)
{
    if (!fs::exists("/proc/net/if_inet6"))
        GTEST_SKIP() << "this machine has none";
    if (!orb::abilities().ipv6)
        GTEST_SKIP() << "this broker has none";
    Velmod velmod({"--listen", "[::1]:0"});
    EXPECT_TRUE(contains(velmod.naming_url(), "@[::1]:")) << velmod.naming_url();
    EXPECT_TRUE(is_bound(velmod.naming_url(), keys::port_service));
}

TEST_F(VelmodProcess, ATakenPortIsReportedWithWhatToDo)
{
    const SilentListener taken;
    const std::string address = "127.0.0.1:" + std::to_string(taken.port());
    Process velmod = run({"--listen", address});
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_EQ(velmod.out(), "");
    const std::string message = velmod.err();
    EXPECT_TRUE(contains(message, "cannot listen on " + address)) << message;
    EXPECT_TRUE(contains(message, "--naming corbaloc::1.2@" + address + "/NameService"));
    EXPECT_TRUE(contains(message, "--listen"));
    EXPECT_EQ(sockets(), 0u);
}

TEST_F(VelmodProcess, OneOfSeveralPortsTakenIsEnoughToFail)
{
    const SilentListener taken;
    Process velmod = run({"--listen", "127.0.0.1:0", "--listen",
                          "127.0.0.1:" + std::to_string(taken.port())});
    EXPECT_EQ(velmod.wait(), 1);
}

class VelmodUnixSocket : public VelmodProcess {
protected:
    void SetUp() override
    {
        if (!orb::abilities().unix_sockets)
            GTEST_SKIP() << "this broker has none";
    }
};

TEST_F(VelmodUnixSocket, IsThereWhileItRuns)
{
    Velmod velmod({}, environment());
    EXPECT_EQ(sockets(), 1u);
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_EQ(sockets(), 0u);
}

TEST_F(VelmodUnixSocket, CanBeElsewhereOrNowhere)
{
    const fs::path path = runtime.path() / "s";
    Velmod elsewhere({"--unix-socket", path.string()}, environment());
    EXPECT_TRUE(fs::is_socket(path));
    EXPECT_EQ(elsewhere.stop(), 0);
    EXPECT_FALSE(fs::exists(path));
    Velmod nowhere({"--no-unix"}, environment());
    EXPECT_EQ(sockets(), 0u);
}

TEST_F(VelmodUnixSocket, OfALiveServerIsNotTaken)
{
    const std::string path = (runtime.path() / "s").string();
    Velmod first({"--unix-socket", path}, environment());
    Process second = run({"--listen", "127.0.0.1:0", "--unix-socket", path});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_TRUE(contains(second.err(), path)) << second.err();
    EXPECT_TRUE(fs::is_socket(path));
    EXPECT_TRUE(is_bound(first.naming_url(), keys::port_service));
}

TEST_F(VelmodUnixSocket, ThatAKilledServerLeftIsRemovedByTheNextOne)
{
    Velmod killed({}, environment());
    killed.kill();
    EXPECT_EQ(sockets(), 1u);
    Velmod next({}, environment());
    EXPECT_EQ(sockets(), 1u);
    EXPECT_EQ(next.stop(), 0);
    EXPECT_EQ(sockets(), 0u);
}

TEST_F(VelmodUnixSocket, IsNotThereAfterAFailedStart)
{
    Process velmod = run({"--naming", naming_url(free_port())});
    EXPECT_EQ(velmod.wait(), 1);
    EXPECT_EQ(sockets(), 0u);
}

TEST_F(VelmodProcess, WhereTheBrokerHasNoUnixSocketsItSaysSoAndStarts)
{
    if (orb::abilities().unix_sockets)
        GTEST_SKIP() << "this broker has them";
    const fs::path path = runtime.path() / "s";
    Velmod velmod({"--unix-socket", path.string()}, environment());
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_TRUE(contains(velmod.process().err(), "velmod event=no-unix-socket reason="));
    EXPECT_FALSE(fs::exists(path));
}

// A client that receives without end, on its own thread.
class WaitingClient {
public:
    explicit WaitingClient(const std::string& url) : ports(port_service(url))
    {
        EXPECT_EQ(ports->create_port("full", 1, 1), VL_OK);
        EXPECT_EQ(ports->create_port("sender", 2, 0), VL_OK);
        EXPECT_EQ(ports->send_packet(1, buffer("x"), 0), VL_OK);
        EXPECT_EQ(ports->connect_port("sender", "full", 30001, 0, ""), VL_OK);
        thread = std::thread([this] {
            try {
                Velmo::DATA_BUFFER_var data;
                while (ports->receive_packet(1, 2, data.out(), 0xFFFFFFFF) == VL_OK) {
                }
            } catch (const CORBA::SystemException&) {
                // The server has gone.
            }
        });
        // The queue is full: a packet is only accepted when somebody waits for it.
        EXPECT_TRUE(
            eventually([this] { return ports->send_packet(2, buffer("y"), 0) == VL_OK; }));
    }
    ~WaitingClient() { thread.join(); }

private:
    Port_Factory_var ports;
    std::thread thread;
};

class EndSignal : public VelmodProcess, public ::testing::WithParamInterface<int> {};

TEST_P(EndSignal, EndsItCleanlyDespiteAWaitingClient)
{
    Velmod velmod({}, environment());
    const WaitingClient client(velmod.naming_url());
    velmod.process().signal(GetParam());
    EXPECT_EQ(velmod.process().wait(std::chrono::seconds(10)), 0);
    EXPECT_EQ(sockets(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Velmod, EndSignal, ::testing::Values(SIGTERM, SIGINT));

TEST_F(VelmodProcess, AClientThatTakesNoAnswerCannotHoldUpItsEnd)
{
    Velmod velmod({}, environment());
    Port_Factory_var ports = port_service(velmod.naming_url());
    ASSERT_EQ(ports->create_port("full", 1, 1), VL_OK);
    ASSERT_EQ(ports->create_port("sender", 2, 0), VL_OK);
    ASSERT_EQ(ports->send_packet(1, buffer("x"), 0), VL_OK);
    ASSERT_EQ(ports->connect_port("sender", "full", 30001, 0, ""), VL_OK);

    // Stopped while it waits, it is sent more than lies ready in any socket.
    Process client({RECEIVING_CLIENT_PATH, velmod.naming_url(), "1", "2"});
    const Velmo::DATA_BUFFER large = buffer(std::string(32u << 20, 'x'));
    ASSERT_TRUE(eventually([&] {
        client.signal(SIGSTOP);
        if (ports->send_packet(2, large, 0) == VL_OK)
            return true;
        client.signal(SIGCONT);
        return false;
    }));
    EXPECT_EQ(velmod.stop(), 0);
    EXPECT_TRUE(contains(velmod.process().err(), "a client does not take its answer"));
    EXPECT_EQ(sockets(), 0u);
}

} // namespace
