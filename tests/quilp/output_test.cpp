#include "quilp/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

using velmo::quilp::Destination;
using velmo::quilp::destination_from;
using velmo::quilp::Line;
using velmo::quilp::Output;
using velmo::quilp::Rotation;
using velmo::tests::TemporaryFolder;

// What is written to standard error during its life.
class CapturedErrors {
public:
    CapturedErrors()
        : saved(dup(STDERR_FILENO)), memory(memfd_create("stderr", MFD_CLOEXEC))
    {
        dup2(memory, STDERR_FILENO);
    }
    ~CapturedErrors()
    {
        dup2(saved, STDERR_FILENO);
        close(saved);
        close(memory);
    }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    std::string text() const
    {
        std::string result(1 << 16, '\0');
        const ssize_t size = pread(memory, result.data(), result.size(), 0);
        result.resize(static_cast<std::size_t>(size));
        return result;
    }

private:
    const int saved;
    const int memory;
};

std::string contents(const fs::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

Destination file(const fs::path& path)
{
    return destination_from(("file:" + path.string()).c_str());
}

// As an extended regular expression, of the whole text. (Not std::regex, which warns
// under sanitizers.)
bool matches(const std::string& text, const std::string& expression)
{
    return testing::Matcher<const std::string&>(testing::MatchesRegex(expression))
        .Matches(text);
}

const std::string line_start = "[0-9T:.+-]+ [0-9]+ [0-9]+ ";

bool holds(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

TEST(Destination, IsStandardErrorUnlessChosen)
{
    for (const char* value : {static_cast<const char*>(nullptr), "", "stderr"}) {
        EXPECT_EQ(destination_from(value).kind, Destination::Kind::standard_error);
        EXPECT_EQ(destination_from(value).complaint, "");
    }
}

TEST(Destination, CanBeTheSystemsLogOrAFile)
{
    EXPECT_EQ(destination_from("syslog").kind, Destination::Kind::system_log);
    EXPECT_EQ(destination_from("file:/var/log/x").kind, Destination::Kind::file);
    EXPECT_EQ(destination_from("file:/var/log/x").path, "/var/log/x");
}

TEST(Destination, APathIsMadeAbsoluteAtOnce)
{
    EXPECT_EQ(destination_from("file:x.log").path, fs::current_path() / "x.log");
}

TEST(Destination, AnUnknownValueMeansStandardErrorWithAComplaint)
{
    for (const char* value : {"file:", "file", "Syslog", "/var/log/x", "bad\nvalue"}) {
        const Destination destination = destination_from(value);
        EXPECT_EQ(destination.kind, Destination::Kind::standard_error);
        EXPECT_NE(destination.complaint, "") << value;
        EXPECT_FALSE(holds(destination.complaint, "\n"));
    }
}

TEST(Output, ALineHasTimeWithZoneProcessThreadAndText)
{
    const TemporaryFolder folder;
    Output output(file(folder.path() / "log"));
    output.write(Line::now("what happened %s {}"));
    const std::string date = "[0-9]{4}-[0-9]{2}-[0-9]{2}";
    const std::string time = "[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}[+-][0-9]{2}:[0-9]{2}";
    const std::string numbers = std::to_string(getpid()) + " " + std::to_string(gettid());
    const std::string text = contents(folder.path() / "log");
    EXPECT_TRUE(
        matches(text, date + "T" + time + " " + numbers + " what happened %s \\{\\}\n"))
        << text;
}

TEST(Output, WritesToStandardError)
{
    const CapturedErrors errors;
    Output(Destination{}).write(Line::now("to the terminal"));
    EXPECT_TRUE(holds(errors.text(), " to the terminal\n"));
}

TEST(Output, TellsOnceThatTheChoiceIsUnknown)
{
    const CapturedErrors errors;
    Output output(destination_from("nowhere"));
    output.write(Line::now("one"));
    output.write(Line::now("two"));
    const std::string text = errors.text();
    EXPECT_EQ(text.find("nowhere"), text.rfind("nowhere"));
    EXPECT_LT(text.find("nowhere"), text.find(" one\n"));
    EXPECT_TRUE(holds(text, " two\n"));
}

TEST(Output, AppendsToAFileAndMakesItsFolder)
{
    const TemporaryFolder folder;
    const fs::path path = folder.path() / "deeper" / "log";
    Output(file(path)).write(Line::now("one"));
    Output(file(path)).write(Line::now("two"));
    EXPECT_TRUE(matches(contents(path), line_start + "one\n" + line_start + "two\n"));
}

TEST(Output, AFileIsNotPassedOnToPrograms)
{
    const TemporaryFolder folder;
    const fs::path path = folder.path() / "log";
    Output output(file(path));
    output.write(Line::now("opens it"));
    int found = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code closed_by_now;
        if (fs::read_symlink(entry.path(), closed_by_now) != path)
            continue;
        ++found;
        const int descriptor = std::stoi(entry.path().filename());
        EXPECT_TRUE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC);
    }
    EXPECT_EQ(found, 1);
}

TEST(Output, AFullFileIsRenamedAndTheOldestGoes)
{
    const TemporaryFolder folder;
    const Rotation rotation{1000, 2};
    Output output(file(folder.path() / "velmo.log"), rotation);
    for (int i = 0; i < 100; ++i)
        output.write(Line::now("line " + std::to_string(i)));

    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path())) {
        ++files;
        EXPECT_LE(entry.file_size(), rotation.bytes) << entry.path();
    }
    EXPECT_EQ(files, 3);
    const std::string newest = contents(folder.path() / "velmo.log");
    const std::string older = contents(folder.path() / "velmo.1.log");
    EXPECT_TRUE(holds(newest, " line 99\n"));
    EXPECT_FALSE(holds(older, " line 99\n"));
    EXPECT_FALSE(holds(contents(folder.path() / "velmo.2.log"), " line 0\n"));
}

TEST(Output, LinksDevicesAndPipesAreNotRenamed)
{
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "link.log";
    fs::create_symlink(folder.path() / "target.log", link);
    Output output(file(link), Rotation{100, 2});
    for (int i = 0; i < 20; ++i)
        output.write(Line::now("line " + std::to_string(i)));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_FALSE(fs::exists(folder.path() / "link.1.log"));
    EXPECT_TRUE(holds(contents(folder.path() / "target.log"), " line 0\n"));
    EXPECT_TRUE(holds(contents(folder.path() / "target.log"), " line 19\n"));
}

TEST(Output, AFileThatCannotBeOpenedIsReportedOnceAndLinesGoToStandardError)
{
    const CapturedErrors errors;
    Output output(file("/dev/null/log"));
    output.write(Line::now("one"));
    output.write(Line::now("two"));
    const std::string text = errors.text();
    EXPECT_TRUE(matches(
        text, line_start + "the log goes to stderr: .*/dev/null/log.*: Not a directory\n" +
                  line_start + "one\n" + line_start + "two\n"))
        << text;
}

TEST(Output, AFileThatCannotBeOpenedIsTriedAgain)
{
    const TemporaryFolder folder;
    const fs::path obstacle = folder.path() / "folder";
    std::ofstream(obstacle).put('x');
    const CapturedErrors errors;
    Output output(file(obstacle / "log"));
    const auto now = Output::Clock::now();
    output.write(Line::now("one"), now);
    fs::remove(obstacle);
    output.write(Line::now("two"), now + Output::retry_interval / 2);
    EXPECT_FALSE(fs::exists(obstacle));
    output.write(Line::now("three"), now + Output::retry_interval);
    output.write(Line::now("four"), now + Output::retry_interval);

    EXPECT_TRUE(matches(contents(obstacle / "log"),
                        line_start + "three\n" + line_start + "four\n"));
    EXPECT_TRUE(holds(errors.text(), " two\n"));
    EXPECT_FALSE(holds(errors.text(), " three\n"));
}

TEST(Output, ALineThatAFullDiskRefusesGoesToStandardError)
{
    const CapturedErrors errors;
    Output output(file("/dev/full"));
    output.write(Line::now("one"));
    EXPECT_TRUE(holds(errors.text(), "No space left on device\n"));
    EXPECT_TRUE(holds(errors.text(), " one\n"));
}

TEST(Output, SurvivesARotationThatFails)
{
    const TemporaryFolder folder;
    const fs::path inner = folder.path() / "inner";
    const CapturedErrors errors;
    Output output(file(inner / "log"), Rotation{200, 2});
    output.write(Line::now(std::string(100, 'a')));
    fs::remove_all(inner);
    std::ofstream(inner).put('x'); // nothing can be opened below it now
    for (int i = 0; i < 10; ++i)
        output.write(Line::now("line " + std::to_string(i)));
    EXPECT_TRUE(holds(errors.text(), "the log goes to stderr: "));
    EXPECT_TRUE(holds(errors.text(), " line 9\n"));
}

} // namespace
