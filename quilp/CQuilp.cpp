#include "CQuilp.h"

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "quilp/line_text.h"
#include "quilp/log_queue.h"
#include "quilp/output.h"

namespace {

using velmo::quilp::Destination;
using velmo::quilp::destination_from;
using velmo::quilp::Line;
using velmo::quilp::LogQueue;
using velmo::quilp::Output;

// The log of one process. A child made by fork() leaves its parent's alone, whose
// thread it lacks and whose locks may be held for ever, and makes its own.
struct ProcessLog {
    explicit ProcessLog(const ProcessLog* of_parent);

    const ProcessLog* const parent; // or null; keeps it reachable, for leak checkers
    const Destination destination;
    Output output{destination};
    LogQueue queue;
};

// Never destroyed: others log until the process is gone.
std::atomic<ProcessLog*> current{nullptr};
std::atomic<ProcessLog*> of_parent_process{nullptr};

// The parent's choice. But a child made in the middle of a syslog() finds its lock
// held for ever.
Destination destination_of_child(const ProcessLog& parent)
{
    const bool locked = parent.destination.kind == Destination::Kind::system_log &&
                        parent.queue.is_writing();
    return locked ? Destination{} : parent.destination;
}

// A child writes its lines itself: it often ends by _exit(), which would not wait for a
// thread.
ProcessLog::ProcessLog(const ProcessLog* of_parent)
    : parent(of_parent),
      // secure_getenv(): who starts a set-user-ID program has no say in where it writes.
      destination(parent ? destination_of_child(*parent)
                         : destination_from(secure_getenv("VELMO_LOG"))),
      queue([this](const Line& line) { output.write(line); },
            parent ? LogQueue::Writer::caller : LogQueue::Writer::own_thread)
{
}

// Made without a lock, which a fork() might find taken.
ProcessLog& process_log()
{
    ProcessLog* log = current.load();
    if (log)
        return *log;
    auto made = std::make_unique<ProcessLog>(of_parent_process.load());
    return current.compare_exchange_strong(log, made.get()) ? *made.release() : *log;
}

void finish_at_exit()
{
    if (ProcessLog* const log = current.load())
        log->queue.finish();
}

thread_local ProcessLog* paused_by_fork = nullptr;

// A fork() waits for the line that is being written, so that the child does not find
// the locks taken that the C library holds meanwhile: of syslog() and the time zone.
void before_fork()
{
    constexpr LogQueue::Duration limit{200};
    paused_by_fork = current.load();
    if (paused_by_fork)
        paused_by_fork->queue.pause(limit);
}

void after_fork_in_parent()
{
    if (paused_by_fork)
        paused_by_fork->queue.resume();
}

void after_fork_in_child()
{
    if (ProcessLog* const log = current.exchange(nullptr))
        of_parent_process = log;
}

// Installed when the library is loaded, hence before any log line and before most
// other exit handlers, which run first.
const struct Hooks {
    Hooks()
    {
        std::atexit(finish_at_exit);
        pthread_atfork(before_fork, after_fork_in_parent, after_fork_in_child);
    }
} hooks; // NOLINT(cert-err58-cpp): C functions throw nothing

} // namespace

CQuilp* CQuilp::instance()
{
    static CQuilp log; // holds nothing: see ProcessLog
    return &log;
}

void CQuilp::vl_log(const char* format, ...)
{
    const int error = errno;
    std::va_list arguments;
    va_start(arguments, format);
    try {
        std::string text = velmo::quilp::line_text(format, arguments); // may print errno
        process_log().queue.add(Line::now(std::move(text)));
    } catch (...) {
        // Memory ran out, most likely. An application must not fail over its log.
        if (ProcessLog* const log = current.load())
            log->queue.count_lost();
    }
    va_end(arguments);
    errno = error;
}

void CQuilp::flush()
{
    if (ProcessLog* const log = current.load())
        log->queue.flush();
}
