// velmo shell, as a person and as a script use it.
#include <csignal>

#include "tests/cli/velmo.h"
#include "tests/support/terminal.h"

using namespace velmo::tests;

namespace {

class Shell : public CommandTest {
protected:
    // With a home, where its history is kept.
    Process::Environment at_home() const
    {
        Process::Environment environment = plain_environment();
        environment["HOME"] = folder.path().string();
        environment["XDG_STATE_HOME"] = "";
        environment["TERM"] = "xterm";
        return environment;
    }

    Terminal start() const { return Terminal(velmo_command({"shell"}), at_home()); }
};

const std::string prompt = "velmo> ";

TEST_F(Shell, CarriesOutWhatIsTyped)
{
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt)) << shell.shown();
    shell.type("point create level int8\n");
    ASSERT_TRUE(shell.wait_for("created point \"level\"")) << shell.shown();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point set 'level' 42\n");
    ASSERT_TRUE(shell.wait_for("wrote 1 byte"));
    shell.type("point info level\n");
    ASSERT_TRUE(shell.wait_for("42"));
    shell.type("point get nothing\n");
    ASSERT_TRUE(shell.wait_for("VARIABLE_IS_NOT_EXIST"));
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("help port call\n");
    ASSERT_TRUE(shell.wait_for("Usage: velmo port call"));
    shell.type("exit\n");
    EXPECT_EQ(shell.wait(), 0);
}

TEST_F(Shell, EndsWithTheStatusOfTheLastCommand)
{
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point get nothing\n");
    ASSERT_TRUE(shell.wait_for("VARIABLE_IS_NOT_EXIST"));
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("\x04");
    EXPECT_EQ(shell.wait(), 1);
}

TEST_F(Shell, CompletesCommandsOptionsAndNames)
{
    good({"point", "create", "pressure", "int8"});
    good({"point", "create", "two words", "int8"});
    good({"point", "set", "two words", "17"});
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("poi\tinf\tpre\t\n");
    ASSERT_TRUE(shell.wait_for("no data")) << shell.shown();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point get tw\t\n");
    ASSERT_TRUE(shell.wait_for("\n17\r\n")) << shell.shown();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point ls --em\t\n");
    ASSERT_TRUE(shell.wait_for("\npressure\r\n")) << shell.shown();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("snapshot \t");
    ASSERT_TRUE(shell.wait_for("make  Saves templates, points and ports")) << shell.shown();
    shell.type("ma\tpo\t\n"); // nothing is known of the last word
    ASSERT_TRUE(shell.wait_for("po not in")) << shell.shown();
}

TEST_F(Shell, CompletionDoesNotHangWithTheServer)
{
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    velmod.process().suspend();
    shell.type("point get x\t\x15"
               "error 99\n");
    ASSERT_TRUE(shell.wait_for("SERVER_NOT_ONLINE", std::chrono::seconds(15)))
        << shell.shown();
}

TEST_F(Shell, KeepsItsHistory)
{
    {
        Terminal shell = start();
        ASSERT_TRUE(shell.wait_for(prompt));
        shell.type("error 2007\n");
        ASSERT_TRUE(shell.wait_for("INVAILD_PORT_HANDLE"));
        ASSERT_TRUE(shell.wait_for(prompt));
        shell.type("\x10\n"); // Ctrl-P, as the arrow upwards
        ASSERT_TRUE(shell.wait_for("INVAILD_PORT_HANDLE"));
        shell.type("exit\n");
        EXPECT_EQ(shell.wait(), 0);
    }
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("\x10\x10\n"); // "exit" was the last
    ASSERT_TRUE(shell.wait_for("INVAILD_PORT_HANDLE"));
}

TEST_F(Shell, InterruptTakesTheLineAndNothingElse)
{
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point rm everything");
    ASSERT_TRUE(shell.wait_for("everything"));
    shell.type("\x03");
    ASSERT_TRUE(shell.wait_for("^C"));
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("error 99\n");
    ASSERT_TRUE(shell.wait_for("SERVER_NOT_ONLINE"));
    EXPECT_FALSE(contains(shell.shown(), "VARIABLE_IS_NOT_EXIST"));
}

TEST_F(Shell, InterruptEndsTheCommandAndNothingElse)
{
    good("point create level int8");
    Terminal shell = start();
    ASSERT_TRUE(shell.wait_for(prompt));
    shell.type("point watch level\n");
    ASSERT_TRUE(shell.wait_for("(no data)"));
    shell.type("\x03");
    ASSERT_TRUE(shell.wait_for(prompt)) << shell.shown();
    velmod.process().suspend();
    shell.type("point ls\n");
    ASSERT_TRUE(shell.wait_for("point ls\r\n"));
    // One that comes before the command has begun ends nothing.
    ASSERT_TRUE(eventually([&shell] {
        shell.type("\x03");
        return shell.wait_for(prompt, std::chrono::milliseconds(500));
    })) << shell.shown();
    shell.type("exit\n");
    EXPECT_EQ(shell.wait(), 130);
}

TEST_F(Shell, PassesItsOptionsOn)
{
    Terminal shell(velmo_command({"--realm", "plant", "shell"}), at_home());
    ASSERT_TRUE(shell.wait_for("velmo /plant> "));
    shell.type("point create there int8\n");
    ASSERT_TRUE(shell.wait_for("created point"));
    EXPECT_EQ(good("--realm plant point ls"), "there\n");
    EXPECT_EQ(good("point ls"), "");
}

TEST_F(Shell, FollowsAScript)
{
    const Result result = run_velmo({"shell"}, "point create a int8\n"
                                               "# a comment\n\n"
                                               "point set a 5\n"
                                               "point get a\n"
                                               "point get 'b c'\n"
                                               "\"open\n"
                                               "point get a");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "5\n5\n");
    EXPECT_TRUE(contains(result.err, "cannot read point \"b c\"")) << result.err;
    EXPECT_TRUE(contains(result.err, "a quote is not closed")) << result.err;
}

TEST_F(Shell, OfAScriptEndsWithTheStatusOfTheLastCommand)
{
    EXPECT_EQ(run_velmo({"shell"}, "point get x\n").status, 1);
    EXPECT_EQ(run_velmo({"shell"}, "point gat x\n").status, 2);
    EXPECT_EQ(run_velmo({"shell"}, "point get x\nexit\npoint ls\n").status, 1);
    EXPECT_EQ(run_velmo({"shell"}, "").status, 0);
}

TEST_F(Shell, OfAScriptStopsAtAFailureWhenAskedTo)
{
    const Result result = run_velmo({"shell", "--stop"}, "point get x\nerror list\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
}

TEST_F(Shell, OfAScriptGivesJson)
{
    const Result result = run_velmo({"--json", "shell"}, "point create a int8\npoint ls\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "{\"point\":\"a\",\"type\":\"int8\"}\n{\"points\":[\"a\"]}\n");
}

} // namespace
