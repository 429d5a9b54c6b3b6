// What a person sees: colours, aligned tables, confirmations, the progress bar.
#include "tests/cli/velmo.h"
#include "tests/support/terminal.h"

using namespace velmo::tests;

namespace {

using Shows = Terminal::Shows;

constexpr const char* escape = "\033[";

class AtTerminal : public CommandTest {
protected:
    // Everything that a command shows, given that it succeeds.
    std::string shown(const std::string& command,
                      const Process::Environment& additions = {},
                      Shows shows = Shows::everything)
    {
        Process::Environment environment = additions;
        environment.merge(plain_environment());
        Terminal terminal(velmo_command(words(command)), environment, shows);
        EXPECT_EQ(terminal.wait(), 0) << terminal.shown();
        return terminal.shown();
    }
};

TEST_F(AtTerminal, TablesHaveHeadsAndColours)
{
    const std::string list = shown("server list");
    EXPECT_TRUE(contains(list, "\033[1mSERVER\033[0m")) << list;
    EXPECT_TRUE(contains(list, "\033[32myes\033[0m")) << list;
    const std::string piped = good("server list");
    EXPECT_FALSE(contains(piped, "SERVER"));
    EXPECT_FALSE(contains(piped, escape));
}

TEST_F(AtTerminal, NoColorIsRespected)
{
    for (const Process::Environment& environment :
         {Process::Environment{{"NO_COLOR", "1"}},
          Process::Environment{{"TERM", "dumb"}}}) {
        const std::string list = shown("server list", environment);
        EXPECT_TRUE(contains(list, "SERVER"));
        EXPECT_FALSE(contains(list, escape)) << list;
    }
    EXPECT_FALSE(contains(shown("--color never server list"), escape));
    EXPECT_TRUE(contains(shown("--color always server list", {{"NO_COLOR", "1"}}), escape));
    EXPECT_FALSE(contains(good("--color always server list"), escape))
        << "rows for programs have no colours";
}

TEST_F(AtTerminal, ErrorsAreRed)
{
    Terminal terminal(velmo_command({"point", "get", "x"}), plain_environment());
    EXPECT_EQ(terminal.wait(), 1);
    EXPECT_TRUE(contains(terminal.shown(), "\033[31mvelmo:\033[0m cannot read point"))
        << terminal.shown();
}

TEST_F(AtTerminal, JsonHasNoColoursAndIsSpreadOverLines)
{
    good("point create a int8");
    EXPECT_EQ(shown("--json --color always point type a"),
              "{\r\n  \"point\": \"a\",\r\n  \"type\": \"int8\"\r\n}\r\n");
}

TEST_F(AtTerminal, WhatIsDoneIsConfirmedToAPersonOnly)
{
    EXPECT_TRUE(contains(shown("point create a int8"), "created point \"a\""));
    EXPECT_EQ(good("point create b int8"), "");
}

TEST_F(AtTerminal, BytesOfAPointDoNotReachTheTerminal)
{
    good("point create raw bytes");
    good("point set raw --hex 1b5b324a");
    EXPECT_EQ(shown("point get raw"), "1b5b324a\r\n");
    good("point create text text");
    good("point set text --hex 1b5b324a");
    EXPECT_EQ(shown("point get text"), "\\x1b[2J\r\n");
}

TEST_F(AtTerminal, ProgressIsShownOnTheTerminalAlone)
{
    std::string lines;
    for (int i = 0; i < 20; ++i)
        lines +=
            "{\"point\":\"p" + std::to_string(i) + "\",\"type\":\"int8\",\"value\":1}\n";
    const std::string file = (folder.path() / "points").string();
    std::ofstream(file) << lines;

    const std::string import = shown("point import " + file);
    EXPECT_TRUE(contains(import, "importing [")) << import;
    EXPECT_TRUE(contains(import, "20/20")) << import;
    EXPECT_TRUE(contains(import, "\r\033[K20 points created, 0 updated\r\n")) << import;

    const std::string messages = shown("point export", {}, Shows::messages);
    EXPECT_TRUE(contains(messages, "exporting [")) << messages;
    EXPECT_FALSE(contains(shown("point export"), "exporting"))
        << "it would stand among the results";
    EXPECT_EQ(good({"point", "import", file}), "0 points created, 20 updated\n");
}

TEST_F(AtTerminal, SetWithoutAValueDoesNotWaitForKeys)
{
    good("point create a int8");
    Terminal terminal(velmo_command({"point", "set", "a"}), plain_environment());
    EXPECT_EQ(terminal.wait(), 2);
    EXPECT_TRUE(contains(terminal.shown(), "nothing is given")) << terminal.shown();
}

TEST_F(AtTerminal, ControlCEndsAWatch)
{
    good("point create a int8");
    good("point set a 1");
    Terminal terminal(velmo_command({"point", "watch", "a"}), plain_environment());
    ASSERT_TRUE(terminal.wait_for("1\r\n"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.wait(), 130);
}

} // namespace
