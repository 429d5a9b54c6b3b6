#include "quilp/output.h"

#include <fcntl.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/sinks/syslog_sink.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "quilp/line_text.h"

namespace velmo::quilp {

namespace {

using Sink = std::unique_ptr<spdlog::sinks::sink>;

// Time with milliseconds and zone, process, thread, text.
constexpr const char* pattern = "%Y-%m-%dT%H:%M:%S.%e%z %P %t %v";

Sink formatted(Sink sink, const char* line_end = "\n")
{
    sink->set_formatter(std::make_unique<spdlog::pattern_formatter>(
        pattern, spdlog::pattern_time_type::local, line_end));
    return sink;
}

Sink open_standard_error()
{
    return formatted(std::make_unique<spdlog::sinks::stderr_sink_st>());
}

Sink open_system_log()
{
    constexpr const char* program_name = ""; // the C library's default
    return formatted(std::make_unique<spdlog::sinks::syslog_sink_st>(program_name, LOG_PID,
                                                                     LOG_USER, true),
                     "");
}

Sink open_file(const std::string& path, const Rotation& rotation)
{
    spdlog::file_event_handlers handlers;
    handlers.after_open = [](const std::string&, std::FILE* file) {
        // Each line is one write: it stays whole next to those of other processes,
        // and a fork() finds no half-written buffer to write a second time.
        std::setvbuf(file, nullptr, _IONBF, 0);
        fcntl(fileno(file), F_SETFD, FD_CLOEXEC);
    };
    // A device, a pipe or a link (as /dev/stdout is one) must not be renamed.
    std::error_code ignored;
    const std::filesystem::file_status status =
        std::filesystem::symlink_status(path, ignored);
    if (exists(status) && !is_regular_file(status))
        return formatted(
            std::make_unique<spdlog::sinks::basic_file_sink_st>(path, false, handlers));
    return formatted(std::make_unique<spdlog::sinks::rotating_file_sink_st>(
        path, rotation.bytes, rotation.files, false, handlers));
}

Sink open(const Destination& destination, const Rotation& rotation)
{
    switch (destination.kind) {
    case Destination::Kind::system_log:
        return open_system_log();
    case Destination::Kind::file:
        return open_file(destination.path, rotation);
    case Destination::Kind::standard_error:
        break;
    }
    return open_standard_error();
}

void write_to(spdlog::sinks::sink& sink, const Line& line)
{
    spdlog::details::log_msg message(line.time, {}, {}, spdlog::level::info, line.text);
    message.thread_id = line.thread;
    sink.log(message);
    sink.flush();
}

} // namespace

Destination destination_from(const char* value)
{
    constexpr std::string_view file_prefix = "file:";
    const std::string_view text = value ? value : "";
    Destination result;
    if (text == "syslog") {
        result.kind = Destination::Kind::system_log;
    } else if (text.size() > file_prefix.size() &&
               text.substr(0, file_prefix.size()) == file_prefix) {
        // Absolute, since the file is opened again and again, and the process may
        // change its folder in between.
        const std::filesystem::path path = text.substr(file_prefix.size());
        std::error_code no_current_folder;
        const std::filesystem::path absolute =
            std::filesystem::absolute(path, no_current_folder);
        result.kind = Destination::Kind::file;
        result.path = no_current_folder ? path : absolute;
    } else if (!text.empty() && text != "stderr") {
        result.complaint =
            printable("VELMO_LOG is \"" + std::string(text) +
                      "\", not stderr, syslog or file:PATH: logging to stderr");
    }
    return result;
}

Output::Output(Destination to, Rotation limits)
    : destination(std::move(to)), rotation(limits)
{
}

Output::~Output() = default;

void Output::write(const Line& line, Clock::time_point now) noexcept
try {
    if (!destination.complaint.empty())
        write_to_standard_error(Line::now(std::exchange(destination.complaint, {})));
    if (!write_to_destination(line, now))
        write_to_standard_error(line);
} catch (...) {
    // The end of the road: there is nobody left to tell, and the process is not to
    // fail for the lack of its log.
}

bool Output::write_to_destination(const Line& line, Clock::time_point now)
{
    if (!sink && now < retry_at)
        return false;
    try {
        if (!sink)
            sink = open(destination, rotation);
        write_to(*sink, line);
        failing = false;
        return true;
    } catch (const std::exception& error) {
        // spdlog does not recover a file that it failed to open again.
        sink.reset();
        retry_at = now + retry_interval;
        if (!std::exchange(failing, true))
            write_to_standard_error(Line::now(
                printable("the log goes to stderr: " + std::string(error.what()))));
        return false;
    }
}

void Output::write_to_standard_error(const Line& line)
{
    if (!standard_error)
        standard_error = open_standard_error();
    write_to(*standard_error, line);
}

} // namespace velmo::quilp
