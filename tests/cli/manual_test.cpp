// The manual pages, against the programs' own help.
#include <filesystem>
#include <sstream>

#include "tests/cli/velmo.h"

using namespace velmo::tests;

namespace {

// The words of a text that begin with "--" or, with commands, stand for subcommands.
std::vector<std::string> option_names(const std::string& help)
{
    std::vector<std::string> names;
    std::istringstream words(help);
    for (std::string word; words >> word;) {
        const std::size_t dashes = word.find("--");
        const std::string name =
            dashes == std::string::npos
                ? ""
                : word.substr(dashes, word.find_first_not_of("abcdefghijklmnopqrstuvwxyz-",
                                                             dashes) -
                                          dashes);
        if (name.size() > 2)
            names.push_back(name);
    }
    return names;
}

std::string page(const std::string& name)
{
    std::ifstream file(std::string(PAGES_FOLDER) + "/" + name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// As it stands in a page.
std::string in_roff(const std::string& text)
{
    std::string result;
    for (const char c : text)
        result += c == '-' ? "\\-" : std::string(1, c);
    return result;
}

TEST(Manual, HasEveryCommandAndOptionOfTheHelp)
{
    const std::string manual = page("man1/velmo.1");
    for (const char* group : {"server", "settings", "point", "port", "event", "contend",
                              "snapshot", "error", "bench", "shell", "completion"}) {
        EXPECT_TRUE(contains(manual, std::string(".SS ") + group)) << group;
        for (const char* verb :
             {"", "run", "call", "receive", "ls", "get", "watch", "make"}) {
            const Result help = run_velmo(std::string(group) + " " + verb + " --help");
            if (help.status != 0)
                continue; // none of this group's
            for (const std::string& name : option_names(help.out))
                EXPECT_TRUE(name == "--help" || contains(manual, in_roff(name)))
                    << group << " " << name;
        }
    }
    EXPECT_FALSE(contains(manual, ".SS complete\n")) << "hidden";
}

TEST(Manual, OfTheServerHasEveryOptionOfItsHelp)
{
    const std::string manual = page("man8/velmod.8");
    Process help({velmod_path(), "--help"}, plain_environment());
    ASSERT_EQ(help.wait(), 0);
    const std::vector<std::string> names = option_names(help.out());
    EXPECT_GT(names.size(), 5u);
    for (const std::string& name : names)
        EXPECT_TRUE(contains(manual, in_roff(name))) << name;
    EXPECT_FALSE(contains(manual, "@OPTIONS@"));
}

class Pages : public ::testing::TestWithParam<const char*> {};

TEST_P(Pages, HaveNoFault)
{
    if (!std::filesystem::exists("/usr/bin/man"))
        GTEST_SKIP() << "man is not installed";
    const std::string file = std::string(PAGES_FOLDER) + "/" + GetParam();
    Process::Environment environment = plain_environment();
    environment["LC_ALL"] = "C.UTF-8";
    environment["MANROFFSEQ"] = "";
    Process man({"/usr/bin/man", "--warnings", "-l", file}, environment);
    EXPECT_EQ(man.wait(), 0) << man.err();
    EXPECT_EQ(man.err(), "");
    EXPECT_TRUE(contains(man.out(), "DESCRIPTION"));
    if (!std::filesystem::exists("/usr/bin/mandoc"))
        return;
    Process lint({"/usr/bin/mandoc", "-T", "lint", "-W", "error", file}, environment);
    EXPECT_EQ(lint.wait(), 0) << lint.out();
}

INSTANTIATE_TEST_SUITE_P(Each, Pages,
                         ::testing::Values("man1/velmo.1", "man5/velmo-settings.5",
                                           "man8/velmod.8"));

} // namespace
