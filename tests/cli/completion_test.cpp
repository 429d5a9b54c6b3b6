// What shells are told, and what they make of it.
#include <filesystem>

#include "tests/cli/velmo.h"

using namespace velmo::tests;

namespace {

class Completion : public CommandTest {
protected:
    // The words that the last one may become.
    std::string completed(Words typed)
    {
        typed.insert(typed.begin(), {"complete", "--"});
        std::istringstream lines(good(typed));
        std::string found;
        for (std::string line; std::getline(lines, line);)
            found += line.substr(0, line.find('\t')) + " ";
        return found;
    }
};

TEST_F(Completion, KnowsCommandsAndOptions)
{
    EXPECT_EQ(completed({"po"}), "point port ");
    EXPECT_EQ(completed({"--realm", "plant", "snap"}), "snapshot ");
    EXPECT_EQ(completed({"snapshot", ""}), "make load ");
    EXPECT_EQ(completed({"point", "ls", "--"}),
              "--help --type --empty --version --server --realm --json --timeout --color ");
    EXPECT_EQ(completed({"port", "send", "x", "--fr"}), "--front ");
    EXPECT_EQ(completed({"point", "get", "x", "--as", "int1"}), "int16 ");
    EXPECT_EQ(completed({"nothing", "of", ""}), completed({""}));
    EXPECT_EQ(completed({"complet"}), "completion ") << "complete itself is hidden";
}

TEST_F(Completion, KnowsWhatTheServerHas)
{
    good("point create level int8");
    good("--realm plant point create depth int8");
    good("port create box");
    good("event declare 7");
    good("event add pump 7");
    good("contend join group --as one");
    EXPECT_EQ(completed({"point", "get", ""}), "level ");
    EXPECT_EQ(completed({"--realm", "plant", "point", "get", ""}), "depth ");
    EXPECT_EQ(completed({"point", "rm", "level", "l"}), "level ");
    EXPECT_EQ(completed({"point", "create", "x", "float"}), "float32 float64 ");
    EXPECT_EQ(completed({"point", "ls", "--type", "floa"}), "float32 float64 ");
    EXPECT_EQ(completed({"port", "send", ""}), "box ");
    EXPECT_EQ(completed({"port", "connect", "box", "b"}), "box ");
    EXPECT_EQ(completed({"event", "count", ""}), "pump ");
    EXPECT_EQ(completed({"contend", "run", ""}), "group ");
    EXPECT_EQ(completed({"contend", "run", "group", "--", "ls", ""}), "");
    EXPECT_EQ(completed({"--server", ""}), "S ");
    EXPECT_EQ(completed({"server", "ping", ""}), "S ");
}

TEST_F(Completion, IsSilentWithoutAServer)
{
    velmod.stop();
    EXPECT_EQ(completed({"point", "get", ""}), "");
    EXPECT_EQ(completed({"port", "send", ""}), "");
}

TEST_F(Completion, WorksInBash)
{
    good({"point", "create", "two words", "int8"});
    const std::string script =
        "set -e; source <(\"$0\" completion bash)\n"
        "try() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _velmo \"$1\"; "
        "printf '%s,' \"${COMPREPLY[@]}\"; echo; }\n"
        "try \"$0\" poi; try \"$0\" point get t; try \"$0\" --ver; complete -p velmo\n";
    Process bash({"/bin/bash", "--norc", "-c", script, velmo_command({}).front()},
                 plain_environment());
    EXPECT_EQ(bash.wait(), 0) << bash.err();
    EXPECT_EQ(bash.out(), "point,\ntwo\\ words,\n--version,\n"
                          "complete -o default -o nosort -F _velmo velmo\n");
}

class OtherShells : public CommandTest,
                    public ::testing::WithParamInterface<const char*> {};

TEST_P(OtherShells, FindNoFaultInTheirScript)
{
    const std::string shell = std::string("/usr/bin/") + GetParam();
    if (!std::filesystem::exists(shell))
        GTEST_SKIP() << shell << " is not installed";
    const std::string file = (folder.path() / "script").string();
    std::ofstream(file) << good(std::string("completion ") + GetParam());
    Process process({shell, "-n", file}, plain_environment());
    EXPECT_EQ(process.wait(), 0) << process.err();
}

INSTANTIATE_TEST_SUITE_P(Each, OtherShells, ::testing::Values("zsh", "fish"));

TEST(OtherShells, ThatAreNotKnownAreMisuse)
{
    EXPECT_EQ(run_velmo("completion tcsh").status, 2);
}

} // namespace
