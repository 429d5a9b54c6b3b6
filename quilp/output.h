// Where log lines go: standard error, the system's log, a file.
#ifndef VELMO_QUILP_OUTPUT_H
#define VELMO_QUILP_OUTPUT_H

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "quilp/line.h"

namespace spdlog::sinks {
class sink;
}

namespace velmo::quilp {

struct Destination {
    enum class Kind { standard_error, system_log, file };

    Kind kind = Kind::standard_error;
    std::string path;      // of a file, absolute
    std::string complaint; // what was wrong with the choice, or empty
};

// What a value of VELMO_LOG means: "stderr", "syslog" or "file:PATH". Null and ""
// mean standard error; so does anything else, with a complaint.
Destination destination_from(const char* value);

// A file is renamed to NAME.1.EXT, and so on, before it grows beyond `bytes`; the
// oldest of `files` renamed ones goes.
struct Rotation {
    std::size_t bytes = 10u << 20;
    std::size_t files = 5;
};

// Writes lines to a destination, which is opened at the first one. When it cannot be
// opened or written to, lines go to standard error, after one that tells why, and
// the destination is tried again after a while. Not for several threads at once.
class Output {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds retry_interval{10};

    explicit Output(Destination destination, Rotation rotation = {});
    ~Output();

    // Returns when the line has been handed to the operating system. Never throws: a
    // line that cannot go to standard error either is lost.
    void write(const Line& line, Clock::time_point now = Clock::now()) noexcept;

private:
    bool write_to_destination(const Line& line, Clock::time_point now);
    void write_to_standard_error(const Line& line);

    Destination destination;
    Rotation rotation;
    std::unique_ptr<spdlog::sinks::sink> sink; // null until opened, and after a failure
    std::unique_ptr<spdlog::sinks::sink> standard_error; // stands in for it
    Clock::time_point retry_at{};
    bool failing = false;
};

} // namespace velmo::quilp

#endif
