// CQuilp as a process sees it: each test runs a program that logs.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

using velmo::tests::Descriptor;
using velmo::tests::eventually;
using velmo::tests::Process;
using velmo::tests::TemporaryFolder;

struct LoggedLine {
    std::string process, thread, text;
};

std::vector<LoggedLine> lines_of(const std::string& log)
{
    std::vector<LoggedLine> result;
    std::istringstream stream(log);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream fields(line);
        std::string time;
        LoggedLine logged;
        fields >> time >> logged.process >> logged.thread;
        std::getline(fields.ignore(), logged.text);
        result.push_back(logged);
    }
    return result;
}

std::vector<std::string> texts_of(const std::string& log)
{
    std::vector<std::string> result;
    for (const LoggedLine& line : lines_of(log))
        result.push_back(line.text);
    return result;
}

// What came through the stand-in for syslog(), without "syslog PRIORITY ".
std::string without_priorities(const std::string& out)
{
    std::istringstream stream(out);
    std::string result;
    for (std::string word, priority, line; stream >> word >> priority;) {
        std::getline(stream.ignore(), line);
        result += line + "\n";
    }
    return result;
}

std::string contents(const fs::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

using Texts = std::vector<std::string>;

class CQuilpTest : public testing::Test {
protected:
    static Process::Command command(const std::string& way) { return {QUILP_HELPER, way}; }
    static Process::Environment log_to(const std::string& destination)
    {
        return {{"VELMO_LOG", destination}};
    }

    // Runs the program to its end, with its log in a file.
    std::string log_of(const std::string& way)
    {
        Process process(command(way), log_to("file:" + log.string()));
        EXPECT_EQ(process.wait(), 0) << process.err();
        EXPECT_EQ(process.err(), "");
        return contents(log);
    }

    const TemporaryFolder folder;
    const fs::path log = folder.path() / "velmo.log";
};

TEST_F(CQuilpTest, LogsToStandardErrorByDefault)
{
    Process process(command("one-of-each"), log_to(""));
    EXPECT_EQ(process.wait(), 0) << "the error number was not left alone";
    EXPECT_EQ(texts_of(process.err()),
              (Texts{"hostile: %s%n%x\\n\\x1b[31m", "error: Argument list too long",
                     "(no text: the format is a null pointer)"}));
}

TEST_F(CQuilpTest, LogsToAFile)
{
    EXPECT_EQ(texts_of(log_of("one-of-each")).size(), 3u);
}

TEST_F(CQuilpTest, LogsToTheSystemsLog)
{
    Process process(command("one-of-each"), log_to("syslog"));
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(process.err(), "");
    EXPECT_EQ(process.out().find("syslog "), 0u);
    const Texts texts = texts_of(without_priorities(process.out()));
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[1], "error: Argument list too long");
}

TEST_F(CQuilpTest, AnUnknownDestinationIsReported)
{
    Process process(command("one-of-each"), log_to("elsewhere"));
    EXPECT_EQ(process.wait(), 0);
    const Texts texts = texts_of(process.err());
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_NE(texts[0].find("\"elsewhere\""), std::string::npos);
}

TEST_F(CQuilpTest, AFileIsRotatedAtTenMebibytes)
{
    log_of("more-than-one-file");
    const fs::path older = folder.path() / "velmo.1.log";
    ASSERT_TRUE(fs::exists(older));
    EXPECT_FALSE(fs::exists(folder.path() / "velmo.2.log"));
    constexpr std::uintmax_t limit = 10 * 1024 * 1024;
    EXPECT_LE(fs::file_size(older), limit);
    EXPECT_GT(fs::file_size(older), limit - 10000);
    EXPECT_EQ(lines_of(contents(older)).size() + lines_of(contents(log)).size(), 1600u);
}

TEST_F(CQuilpTest, LinesOfManyThreadsStayWhole)
{
    std::set<std::string> texts;
    std::set<std::string> threads;
    for (const LoggedLine& line : lines_of(log_of("many-threads"))) {
        texts.insert(line.text);
        threads.insert(line.thread);
    }
    std::set<std::string> expected;
    for (int t = 0; t < 8; ++t)
        for (int i = 0; i < 250; ++i)
            expected.insert("thread " + std::to_string(t) + " line " + std::to_string(i));
    EXPECT_EQ(texts, expected);
    EXPECT_EQ(threads.size(), 8u);
}

TEST_F(CQuilpTest, LinesLoggedWhileTheProcessEndsAreWritten)
{
    Texts expected{"from main", "from a handler", "from a static destructor"};
    expected.resize(103, "after the log's own handler");
    EXPECT_EQ(texts_of(log_of("until-the-end")), expected);
}

TEST_F(CQuilpTest, AChildOfForkLogsUnderItsOwnNumber)
{
    const auto lines = lines_of(log_of("fork"));
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[1].text, "child");
    EXPECT_EQ(lines[1].process, lines[1].thread);
    EXPECT_NE(lines[1].process, lines[0].process);
    EXPECT_EQ(lines[2].process, lines[0].process);
}

TEST_F(CQuilpTest, AChildOfAChildLogs)
{
    std::set<std::string> processes;
    for (const LoggedLine& line : lines_of(log_of("fork-grandchild")))
        processes.insert(line.process);
    EXPECT_EQ(processes.size(), 3u);
}

// How many lines of children there are.
std::ptrdiff_t children_in(const std::string& log)
{
    const Texts texts = texts_of(log);
    return std::count_if(texts.begin(), texts.end(),
                         [](const std::string& text) { return text.find("child") == 0; });
}

TEST_F(CQuilpTest, ForkWhileThreadsLogHangsNobody)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's allocator may be locked in a child";
#endif
    EXPECT_EQ(children_in(log_of("fork-while-threads-log")), 30);
}

TEST_F(CQuilpTest, ForkWaitsForTheLineThatIsBeingWritten)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's allocator may be locked in a child";
#endif
    Process process(command("fork-while-threads-log"), log_to("syslog"));
    EXPECT_EQ(process.wait(), 0);
    // Nearly always a line is being written to the system's log; only a child that
    // found it so would log elsewhere.
    const std::ptrdiff_t elsewhere = children_in(process.err());
    EXPECT_LE(elsewhere, 5);
    EXPECT_EQ(children_in(without_priorities(process.out())) + elsewhere, 30);
}

TEST_F(CQuilpTest, AChildMadeInTheMiddleOfASyslogCallLogsToStandardError)
{
    Process process(command("fork-inside-syslog"), log_to("syslog"));
    EXPECT_EQ(process.wait(), 0);
    EXPECT_EQ(texts_of(process.err()), Texts{"child"});
}

TEST_F(CQuilpTest, ALogThatNobodyReadsHoldsUpNeitherTheProcessNorItsEnd)
{
    ASSERT_EQ(mkfifo(log.c_str(), 0600), 0);
    Process process(command("to-nobody"), log_to("file:" + log.string()));
    EXPECT_EQ(process.wait(), 0);
}

TEST_F(CQuilpTest, WhenTheLogIsReadAtLastTheNewestLinesAreThereAndTheNumberOfTheLost)
{
    ASSERT_EQ(mkfifo(log.c_str(), 0600), 0);
    Process process(command("too-much"), log_to("file:" + log.string()));
    ASSERT_EQ(process.wait_ready(), "logged");
    const Descriptor reader(open(log.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    process.signal(SIGTERM);
    std::string text;
    const bool complete = eventually([&] {
        char block[1 << 16];
        ssize_t got;
        while ((got = read(reader.get(), block, sizeof block)) > 0)
            text.append(block, static_cast<std::size_t>(got));
        return text.find(" 1499\n") != std::string::npos;
    });
    EXPECT_TRUE(complete);
    EXPECT_EQ(process.wait(), 0);

    std::size_t lost = 0;
    const Texts texts = texts_of(text);
    for (const std::string& line : texts)
        if (line.find("lost ") == 0)
            lost += std::stoul(line.substr(5));
    EXPECT_GT(lost, 0u);
    const std::size_t told = 1; // the line that says so
    EXPECT_EQ(texts.size() - told + lost, 1500u);
}

TEST_F(CQuilpTest, AReaderThatIsGoneDoesNotEndTheProcess)
{
    Process process(command("to-a-broken-pipe"), log_to("stderr"));
    EXPECT_EQ(process.wait(), 0);
}

TEST_F(CQuilpTest, TheLibraryExportsNothingElse)
{
    Process nm({NM, "-DC", "--defined-only", QUILP_LIBRARY});
    ASSERT_EQ(nm.wait(), 0) << nm.err();
    std::istringstream symbols(nm.out());
    std::set<std::string> names;
    for (std::string address, type, name; symbols >> address >> type;) {
        std::getline(symbols.ignore(), name);
        names.insert(name);
    }
    EXPECT_EQ(names, (std::set<std::string>{"CQuilp::flush()", "CQuilp::instance()",
                                            "CQuilp::vl_log(char const*, ...)"}));
}

} // namespace
