#include "tests/faults/fault.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>

#include "tests/support/intended_leak.h"

namespace velmo::tests {

namespace {

// Of this process, made before its first log line; children leave it alone.
class OwnLogFile {
public:
    ~OwnLogFile()
    {
        if (getpid() != process)
            static_cast<void>(file.release());
    }
    std::string text() const { return file->text(); }

private:
    static std::unique_ptr<LogFile> make()
    {
        const IntendedLeak of_children;
        return std::make_unique<LogFile>();
    }

    const pid_t process = getpid();
    std::unique_ptr<LogFile> file = make();
};

const OwnLogFile log_file;

std::string attribute(const char* name, Milliseconds value)
{
    return std::string(name) + "=\"" + std::to_string(value.count()) + "\" ";
}

std::string joined(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : separator) + part;
    return text;
}

} // namespace

FaultSettings::FaultSettings(const std::string& naming_url)
    : SettingsFile("local=\"S\" " + attribute("call_timeout_ms", call_timeout) +
                       attribute("naming_timeout_ms", naming_timeout) +
                       attribute("connect_timeout_ms", connect_timeout),
                   {{"S", naming_url}})
{
}

bool long_form()
{
    const char* wanted = std::getenv("VELMO_FAULTS_LONG");
    return wanted && *wanted && *wanted != '0';
}

Fault::Fault(std::string text, Milliseconds most)
    : what(std::move(text)), limit(most), log_before(log_file.text().size())
{
}

std::string Fault::log() const
{
    return log_file.text().substr(log_before);
}

void Fault::note(int code, Milliseconds taken)
{
    EXPECT_LE(taken.count(), (limit + slack).count()) << what << ": code " << code;
    const std::lock_guard<std::mutex> guard(mutex);
    longest = std::max(longest, taken);
    for (Code& seen : codes)
        if (seen.code == code) {
            ++seen.times;
            return;
        }
    codes.push_back({code, 1});
}

void Fault::note_recovery(bool mended, int failed, Milliseconds taken)
{
    EXPECT_TRUE(mended) << what << ": calls do not succeed again";
    const std::lock_guard<std::mutex> guard(mutex);
    recovery = std::max(recovery, taken);
    failed_on_the_way = std::max(failed_on_the_way, failed);
}

std::string Fault::codes_seen() const
{
    std::vector<std::string> parts;
    for (const Code& seen : codes)
        parts.push_back(std::to_string(seen.code) +
                        (seen.times > 1 ? " × " + std::to_string(seen.times) : ""));
    return parts.empty() ? "none" : joined(parts, ", ");
}

// The system exceptions of the log lines, each with its number of lines.
std::string Fault::exceptions_logged() const
{
    const std::string before = "IDL:omg.org/CORBA/", text = log();
    std::map<std::string, int> lines;
    for (std::size_t at = 0; (at = text.find(before, at)) != std::string::npos;) {
        at += before.size();
        ++lines[text.substr(at, text.find(':', at) - at)];
    }
    std::vector<std::string> parts;
    for (const auto& [name, times] : lines)
        parts.push_back(name + (times > 1 ? " × " + std::to_string(times) : ""));
    return parts.empty() ? "none" : joined(parts, ", ");
}

std::string Fault::remarks_made() const
{
    return joined(remarks, "; ");
}

Fault::~Fault()
{
    const std::string recovered =
        recovery.count() < 0
            ? "–"
            : std::to_string(recovery.count()) +
                  (failed_on_the_way ? " (" + std::to_string(failed_on_the_way) + " failed)"
                                     : "");
    ::testing::Test::RecordProperty("longest_ms", static_cast<int>(longest.count()));
    ::testing::Test::RecordProperty("limit_ms", static_cast<int>(limit.count()));
    ::testing::Test::RecordProperty("codes", codes_seen());
    ::testing::Test::RecordProperty("logged", exceptions_logged());
    ::testing::Test::RecordProperty("recovery", recovered);
    const char* file = std::getenv("VELMO_FAULTS_TABLE");
    if (!file || ::testing::Test::HasFailure())
        return;
    std::ofstream(file, std::ios::app)
        << "| " << what << " | " << longest.count() << " | " << limit.count() << " | "
        << codes_seen() << " | " << exceptions_logged() << " | " << recovered << " | "
        << remarks_made() << " |\n";
}

} // namespace velmo::tests
