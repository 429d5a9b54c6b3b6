// Commands without a server that answers.
#include <csignal>

#include "tests/cli/velmo.h"
#include "tests/support/loopback.h"

using namespace velmo::tests;
using std::chrono::milliseconds;

namespace {

// Every command that needs a server.
const char* const commands[] = {"server ping",
                                "server realms",
                                "point create x int8",
                                "point get x",
                                "point set x 1",
                                "point rm x",
                                "point ls",
                                "point ls --empty",
                                "point ls --type t",
                                "point info x",
                                "point describe x y",
                                "point type x",
                                "point types",
                                "point watch x",
                                "point export",
                                "event declare 7 x",
                                "event add x 7",
                                "event send x",
                                "event count x",
                                "event clear x",
                                "snapshot make",
                                "snapshot load points",
                                "snapshot make templates",
                                "snapshot make points",
                                "snapshot make ports",
                                "port create x",
                                "port connect x y",
                                "port disconnect 1",
                                "port ls",
                                "port channels",
                                "port send 1 x",
                                "port send x x",
                                "port receive 1 --wait 60000",
                                "port receive 1 --follow",
                                "port reply 1 x",
                                "port call 1 x",
                                "port copy x on",
                                "contend join g --as x",
                                "contend leave g --as x",
                                "contend status",
                                "contend run g -- true",
                                "bench"};

TEST(NoServer, WithoutSettingsSaysWhereItLookedAndHowToStartOne)
{
    // Nobody else's server either: the time-out is all that is tested on a host with one.
    unsetenv("VELMO_SETTINGS");
    if (somebody_listens(2809))
        GTEST_SKIP() << "something listens on port 2809 of this host";
    const Result result = run_velmo("point ls");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "SERVER_NOT_ONLINE (99)")) << result.err;
    EXPECT_TRUE(contains(result.err, "no settings file found; using server 0000 at "
                                     "127.0.0.1:2809; start one with: velmod\n"))
        << result.err;
    const Result other = run_velmo("--server other point ls");
    EXPECT_TRUE(contains(other.err, "only server 0000 is known")) << other.err;
}

class NoServer : public ::testing::TestWithParam<const char*> {};

TEST_P(NoServer, FailsWithACodeAndWhatToDo)
{
    SettingsFile settings("local=\"S\"", {{"S", naming_url(free_port())}});
    const Result result = run_velmo(GetParam());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(contains(result.err, "SERVER_NOT_ONLINE (99)") ||
                contains(result.err, "NAMING_SERVER_NOT_ONLINE (3001)") ||
                contains(result.err, "NULL_SERVER_NAME (3000)"))
        << result.err;
    EXPECT_TRUE(contains(result.err, "\n    S should answer at corbaloc")) << result.err;
}

INSTANTIATE_TEST_SUITE_P(EachCommand, NoServer, ::testing::ValuesIn(commands));

TEST(WrongName, IsSaidWithTheOnesThereAre)
{
    SettingsFile settings("local=\"S\"",
                          {{"S", naming_url(free_port())}, {"T", naming_url(free_port())}});
    const Result result = run_velmo("--server U point ls");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        contains(result.err, "the settings do not list server \"U\"; they list S, T"))
        << result.err;
}

TEST(WrongName, NoOwnServerIsSaid)
{
    SettingsFile settings("", {{"S", naming_url(free_port())}});
    const Result result = run_velmo("point ls");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "name one with --server")) << result.err;
}

TEST(FaultySettings, AreNamedWithTheirLine)
{
    SettingsFile settings("<velmo>\n<server/>\n</velmo>");
    for (const char* command :
         {"point ls", "server list", "settings check", "settings show", "server ping"}) {
        const Result result = run_velmo(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_TRUE(contains(result.err, settings.path() + ":2: ")) << result.err;
    }
}

class WrongRealm : public CommandTest {};

TEST_F(WrongRealm, IsSaidWithHowToListThem)
{
    const Result result = run_velmo("--realm nowhere point ls");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "velmo server realms")) << result.err;
}

// A bound far below the library's own time-outs (30 s for a call), and far above the one
// that is asked for.
constexpr milliseconds margin{10000};
const Words in_time = {"--timeout", "400"};

class Hung : public ::testing::TestWithParam<const char*> {
protected:
    static void expect_in_time(const char* command)
    {
        Words all = in_time;
        for (const std::string& word : words(command))
            all.push_back(word);
        Process process(velmo_command(all), plain_environment());
        EXPECT_EQ(process.wait(margin), 1) << process.err();
        EXPECT_EQ(process.out(), "");
        EXPECT_TRUE(contains(process.err(), "velmo: cannot ")) << process.err();
    }
};

TEST_P(Hung, ServerIsGivenUpInTime)
{
    Velmod velmod({"--server", "S"});
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    velmod.process().suspend();
    expect_in_time(GetParam());
}

TEST_P(Hung, ListenerThatNeverAnswersIsGivenUpInTime)
{
    SilentListener listener;
    SettingsFile settings("local=\"S\"", {{"S", naming_url(listener.port())}});
    expect_in_time(GetParam());
}

INSTANTIATE_TEST_SUITE_P(EachCommand, Hung, ::testing::ValuesIn(commands));

class HungMeanwhile : public CommandTest {};

TEST_F(HungMeanwhile, CallIsGivenUpInTime)
{
    good("point create a int8");
    Process watch(velmo_command({"--timeout", "400", "point", "watch", "a"}),
                  plain_environment());
    ASSERT_TRUE(eventually([&] { return contains(watch.out(), "(no data)"); }));
    velmod.process().suspend();
    EXPECT_EQ(watch.wait(margin), 1);
    EXPECT_TRUE(contains(watch.err(), "SERVER_NOT_ONLINE (1")) << watch.err();
    EXPECT_TRUE(contains(watch.err(), "velmo server ping")) << watch.err();
}

TEST_F(HungMeanwhile, ListShowsItAsNotAnswering)
{
    velmod.process().suspend();
    Process list(velmo_command({"--timeout", "400", "server", "list", "--json"}),
                 plain_environment());
    EXPECT_EQ(list.wait(margin), 0) << list.err();
    EXPECT_TRUE(contains(list.out(), "\"reachable\":false")) << list.out();
}

TEST_F(HungMeanwhile, InterruptEndsACommandAtOnce)
{
    velmod.process().suspend();
    Process list(velmo_command({"point", "ls"}), plain_environment());
    list.signal(SIGINT); // which ends it with the same status if it comes very early
    EXPECT_EQ(list.wait(), 130);
}

} // namespace
