#include "tests/support/log_stand_in.h"

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>

#include "CQuilp.h"

namespace {

struct Lines {
    std::mutex mutex;
    std::vector<std::string> lines;
};

// Logging goes on while static objects are being destroyed.
Lines& recorded()
{
    static Lines& only = *std::make_unique<Lines>().release();
    return only;
}

} // namespace

CQuilp* CQuilp::instance()
{
    static CQuilp only;
    return &only;
}

void CQuilp::vl_log(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string line(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    std::vsnprintf(line.data(), line.size() + 1, format, again);
    va_end(again);

    Lines& own = recorded();
    const std::lock_guard<std::mutex> hold(own.mutex);
    own.lines.push_back(line);
}

void CQuilp::flush() {}

namespace velmo::tests {

std::vector<std::string> logged_lines()
{
    Lines& own = recorded();
    const std::lock_guard<std::mutex> hold(own.mutex);
    return own.lines;
}

void clear_logged_lines()
{
    Lines& own = recorded();
    const std::lock_guard<std::mutex> hold(own.mutex);
    own.lines.clear();
}

} // namespace velmo::tests
