// A command that runs only while its contender is master.
#include <csignal>
#include <sstream>

#include "tests/cli/velmo.h"

using namespace velmo::tests;
using nlohmann::json;

namespace {

class Guarded : public ::testing::Test {
protected:
    // The rest are options of "contend run", the last of them what sh runs.
    static Process::Command guard(const std::string& contender, Words options)
    {
        Words words = {"contend", "run", "g", "--as", contender, "--interval", "20"};
        const std::string script = options.back();
        options.pop_back();
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), {"--", "/bin/sh", "-c", script});
        return velmo_command(words);
    }

    static bool wait_for(const Process& process, const std::string& text)
    {
        return eventually([&] { return contains(process.out(), text); });
    }

    static json status() { return run_json("contend status g")["groups"][0]; }

    // Says so and stays until it is asked to end.
    const std::string stay = "trap 'echo asked; exit 3' TERM; echo up $VELMO_EPOCH; "
                             "while :; do sleep 0.05; done";

    Velmod velmod{{"--server", "S", "--lease", "3000"}};
    SettingsFile settings{"local=\"S\"", {{"S", velmod.naming_url()}}};
};

TEST_F(Guarded, CommandKnowsWhatItRunsForAndGivesTheStatus)
{
    Process run(guard("one", {"echo $VELMO_GROUP $VELMO_CONTENDER $VELMO_EPOCH; exit 7"}),
                plain_environment());
    EXPECT_EQ(run.wait(), 7) << run.err();
    const json group = status();
    EXPECT_EQ(run.out(),
              "g one " + std::to_string(group["epoch"].get<unsigned long>()) + "\n");
    EXPECT_EQ(group["contenders"], json::array()) << "it has withdrawn";
}

TEST_F(Guarded, CommandHasTheEnvironmentThatVelmoWasGiven)
{
    Process run(guard("one", {"--once", "env"}), plain_environment());
    EXPECT_EQ(run.wait(), 0) << run.err();
    EXPECT_FALSE(contains(run.out(), "TIMEOUT_MS")) << run.out();
    EXPECT_FALSE(contains(run.out(), "VELMO_LOG")) << run.out();
}

TEST_F(Guarded, CommandEndsWithMastershipAndStartsAgainWithAHigherEpoch)
{
    Process run(guard("one", {stay}), plain_environment());
    ASSERT_TRUE(wait_for(run, "up ")) << run.err();
    run_json("contend join g --as other --priority 9");
    ASSERT_TRUE(wait_for(run, "asked\n")) << run.err();
    EXPECT_EQ(status()["master"], "other");
    run_json("contend leave g --as other");
    ASSERT_TRUE(eventually([&] {
        const std::string out = run.out();
        return out.rfind("up ") != out.find("up ") && out.back() == '\n';
    }));
    std::istringstream words(run.out());
    std::string up, asked;
    unsigned long first = 0, second = 0;
    words >> up >> first >> asked >> up >> second;
    EXPECT_GT(second, first + 1) << "the other one's is between them";
    run.signal(SIGTERM);
    EXPECT_EQ(run.wait(), 3);
}

TEST_F(Guarded, OnceEndsWithMastership)
{
    Process run(guard("one", {"--once", stay}), plain_environment());
    ASSERT_TRUE(wait_for(run, "up ")) << run.err();
    run_json("contend join g --as other --priority 9");
    EXPECT_EQ(run.wait(), 3) << run.err();
}

TEST_F(Guarded, CommandThatDoesNotEndIsKilledWithAllThatItStarted)
{
    Process run(
        guard("one", {"--once", "--grace", "100",
                      "trap '' TERM; sleep 1000 & echo $!; wait; wait; sleep 1000"}),
        plain_environment());
    ASSERT_TRUE(wait_for(run, "\n")) << run.err();
    const pid_t grandchild = std::stoi(run.out());
    run_json("contend join g --as other --priority 9");
    EXPECT_EQ(run.wait(), 128 + SIGKILL) << run.err();
    EXPECT_TRUE(eventually([&] { return kill(grandchild, 0) != 0; }));
}

TEST_F(Guarded, CommandEndsWhenTheLeaseCannotBeRenewed)
{
    Process run(guard("one", {stay}), plain_environment());
    ASSERT_TRUE(wait_for(run, "up ")) << run.err();
    velmod.process().suspend();
    EXPECT_TRUE(wait_for(run, "asked\n")) << run.err();
    velmod.process().signal(SIGCONT);
    EXPECT_TRUE(eventually([&] { return run.out().rfind("up ") > 0; }));
    EXPECT_TRUE(run.running());
    run.signal(SIGTERM);
    EXPECT_EQ(run.wait(), 3);
}

TEST_F(Guarded, AnotherOneTakesOverFromOneThatWasKilled)
{
    Process one(guard("one", {"--priority", "1", stay}), plain_environment());
    ASSERT_TRUE(wait_for(one, "up ")) << one.err();
    Process two(guard("two", {stay}), plain_environment());
    ASSERT_TRUE(eventually([&] { return contains(two.err(), "waits to be master"); }));
    EXPECT_EQ(two.out(), "");
    one.signal(SIGKILL);
    ASSERT_TRUE(wait_for(two, "up ")) << two.err();
    EXPECT_EQ(status()["master"], "two");
    two.signal(SIGTERM);
    EXPECT_EQ(two.wait(), 3);
    EXPECT_EQ(status()["master"], nullptr);
}

TEST_F(Guarded, SignalsGoToTheCommand)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        Process run(guard("one", {"trap 'exit 41' INT; trap 'exit 42' TERM; echo up; "
                                  "while :; do sleep 0.05; done"}),
                    plain_environment());
        ASSERT_TRUE(wait_for(run, "up")) << run.err();
        run.signal(signal);
        EXPECT_EQ(run.wait(), signal == SIGINT ? 41 : 42) << run.err();
    }
}

TEST_F(Guarded, InterruptWhileWaitingWithdraws)
{
    run_json("contend join g --as other --priority 9");
    Process run(guard("one", {stay}), plain_environment());
    ASSERT_TRUE(eventually([&] { return contains(run.err(), "waits to be master"); }));
    run.signal(SIGINT);
    EXPECT_EQ(run.wait(), 130);
    EXPECT_EQ(run.out(), "");
    EXPECT_EQ(status()["contenders"].size(), 1u);
}

TEST_F(Guarded, StatesAreTellableToPrograms)
{
    std::string states;
    for (const json& document :
         run_json_lines({"contend", "run", "g", "--", "/bin/sh", "-c", "exit 0"})) {
        states += document["state"].get<std::string>() + " ";
        EXPECT_EQ(document["epoch"].is_null(), document["state"] == "waiting");
    }
    EXPECT_EQ(states, "waiting master ended ");
}

TEST_F(Guarded, CommandThatIsNotThereIsTold)
{
    const Result result = run_velmo("contend run g -- /nonexistent/command");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.err, "cannot run \"/nonexistent/command\": No such file"))
        << result.err;
    EXPECT_EQ(status()["contenders"], json::array());
}

} // namespace
