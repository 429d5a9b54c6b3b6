// One line of the log.
#ifndef VELMO_QUILP_LINE_H
#define VELMO_QUILP_LINE_H

#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <string>
#include <utility>

namespace velmo::quilp {

struct Line {
    std::chrono::system_clock::time_point time;
    std::size_t thread; // the system's number of it
    std::string text;   // printable

    // A line of the calling thread, now. Not spdlog's idea of the thread: that is
    // the parent's in a child made by fork().
    static Line now(std::string text)
    {
        return {std::chrono::system_clock::now(), static_cast<std::size_t>(gettid()),
                std::move(text)};
    }
};

} // namespace velmo::quilp

#endif
