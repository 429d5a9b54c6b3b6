// What holds for every command: where options stand, help, misuse, exit statuses.
#include <fcntl.h>

#include "tests/cli/velmo.h"

using namespace velmo::tests;

namespace {

TEST(Help, GoesToStandardOutput)
{
    const Result all = run_velmo("--help");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.err, "");
    for (const char* word :
         {"server", "settings", "point", "event", "snapshot", "error", "completion",
          "--server", "--realm", "--json", "--timeout", "--color"})
        EXPECT_TRUE(contains(all.out, word)) << word;
    const Result one = run_velmo("point get --help");
    EXPECT_EQ(one.status, 0);
    EXPECT_TRUE(contains(one.out, "--hex")) << one.out;
}

TEST(Help, ShowsTheVersion)
{
    const Result result = run_velmo("--version");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.substr(0, 6), "velmo ");
}

struct Wrong {
    const char* words;
    const char* said; // among other things
    const char* next;
};

class Misuse : public ::testing::TestWithParam<Wrong> {};

TEST_P(Misuse, EndsWithStatusTwoAndSaysWhatToDo)
{
    const Result result = run_velmo(GetParam().words);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_TRUE(contains(result.err, GetParam().said)) << result.err;
    EXPECT_TRUE(contains(result.err, std::string("\n    ") + GetParam().next))
        << result.err;
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, Misuse,
    ::testing::Values(
        Wrong{"", "bench, shell, completion\n", "see: velmo --help"},
        Wrong{"pont get x", "there is no command \"pont\"; did you mean \"point\"?",
              "see: velmo --help"},
        Wrong{"--server S --json evnt", "did you mean \"event\"?", "see: velmo --help"},
        Wrong{"frobnicate", "there is no command \"frobnicate\"\n", "see: velmo --help"},
        Wrong{"point", "a command is missing after \"velmo point\"",
              "see: velmo point --help"},
        Wrong{"point gte x", "there is no point command \"gte\"; did you mean \"get\"?",
              "see: velmo point --help"},
        Wrong{"point get", "POINT is required", "see: velmo point get --help"},
        Wrong{"point get x y", "too many arguments: \"y\"", "see: velmo point get --help"},
        Wrong{"point get x --jsn", "there is no option \"--jsn\"; did you mean \"--json\"?",
              "see: velmo point get --help"},
        Wrong{"point get x --hx", "did you mean \"--hex\"?", "see: velmo point get --help"},
        Wrong{"point ls --timeout 0", "--timeout", "see: velmo point ls --help"},
        Wrong{"point ls --timeout soon", "--timeout", "see: velmo point ls --help"},
        Wrong{"--color maybe point ls", "--color", "see: velmo point ls --help"},
        Wrong{"point get x --as int7", "--as", "see: velmo point get --help"},
        Wrong{"error", "a result code is missing", "list the codes with: velmo error list"},
        Wrong{"error TIME_OTU", "did you mean \"TIME_OUT\"?", "list the codes"},
        Wrong{"error 77", "there is no result code 77", "list the codes"}));

class Frame : public CommandTest {};

TEST_F(Frame, CommonOptionsStandAnywhere)
{
    good("point create a int32");
    good("point set a 5");
    const std::string json = "{\"point\":\"a\",\"type\":\"int32\",\"value\":5}\n";
    for (const char* command :
         {"--json --server S point get a", "point --json --server S get a",
          "point get --json --server S a", "point get a --server S --json",
          "point get a --server=S --json --timeout 30000 --realm=ROOT"})
        EXPECT_EQ(good(command), json) << command;
}

TEST_F(Frame, WordsAfterTheVerbAreNames)
{
    for (const char* name : {"ls", "point", "server", "-5", "list"}) {
        good({"point", "create", name, "int32"});
        good({"point", "set", name, "-7"});
        EXPECT_EQ(good({"point", "get", name}), "-7\n") << name;
    }
    good({"point", "create", "--", "--json", "text"});
    good({"point", "set", "--", "--json", "--hex"});
    EXPECT_EQ(good({"point", "get", "--", "--json"}), "--hex\n");
}

TEST_F(Frame, RealmsAreSeparate)
{
    good("point create here int32");
    good("--realm plant point create there int32");
    EXPECT_EQ(good("point ls"), "here\n");
    EXPECT_EQ(good("point ls --realm plant"), "there\n");
    EXPECT_EQ(good("point ls --realm ROOT"), "here\n");
}

TEST_F(Frame, FailureIsAMessageAndNeverMixedWithResults)
{
    const Result result = run_velmo("--json point get nothing");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err.substr(0, result.err.find(" There")),
              "velmo: cannot read point \"nothing\": VARIABLE_IS_NOT_EXIST (4002):");
    EXPECT_TRUE(contains(result.err, "\n    list the points with: velmo point ls\n"));
}

TEST_F(Frame, NamesAreNotCutAtANulByte)
{
    good("point create b int8");
    const std::string script("point rm \"b\0x\"\n", 16);
    const Result result = run_velmo({"shell"}, script);
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.err, "NUL")) << result.err;
    EXPECT_EQ(good("point ls"), "b\n");
}

TEST_F(Frame, TextsAreInTheUsersLanguage)
{
    const Result result =
        run_velmo(words("point get nothing"), "", {{"VELMO_LANG", "de"}, {"LC_ALL", "C"}});
    EXPECT_TRUE(contains(result.err, "(4002): Die Variable gibt es nicht")) << result.err;
}

TEST_F(Frame, ResultsThatCannotBeWrittenAreAFailure)
{
    Process::Streams streams;
    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    streams.out = full.get();
    Process process(velmo_command({"point", "types"}), plain_environment(), streams);
    EXPECT_EQ(process.wait(), 1);
    EXPECT_TRUE(contains(process.err(), "cannot write the results")) << process.err();
}

} // namespace
