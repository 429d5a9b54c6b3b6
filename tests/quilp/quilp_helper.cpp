// A program that logs in the ways that are hard on a log. The first argument says
// which; the tests look at what comes out and at its exit status.
#include <CQuilp.h>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vl_export.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

CQuilp& quilp()
{
    return *CQuilp::instance();
}

// ------------------------------------------------------------------- syslog

// Stands in for the system's log, which serves one thread at a time, slowly. The text
// "block" keeps its writer inside.
std::mutex syslog_mutex;
std::mutex blocked_mutex;
std::condition_variable blocked_changed;
bool blocked = false;
bool released = false;

void write_to_syslog(int priority, const char* format, std::va_list arguments)
{
    const std::lock_guard lock(syslog_mutex);
    char text[10000];
    std::vsnprintf(text, sizeof text, format, arguments);
    std::printf("syslog %d %s\n", priority, text);
    std::fflush(stdout);
    if (std::string(text).find(" block") == std::string::npos) {
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        return;
    }
    std::unique_lock waiting(blocked_mutex);
    blocked = true;
    blocked_changed.notify_all();
    blocked_changed.wait(waiting, [] { return released; });
}

} // namespace

extern "C" {

VL_EXPORT void openlog(const char*, int, int) {}

VL_EXPORT void closelog() {}

VL_EXPORT void syslog(int priority, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    write_to_syslog(priority, format, arguments);
    va_end(arguments);
}

// What the C library's headers make of syslog() when told to be careful.
VL_EXPORT void __syslog_chk(int priority, int, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    write_to_syslog(priority, format, arguments);
    va_end(arguments);
}
}

namespace {

// --------------------------------------------------------------------- exit

bool log_at_exit = false;

void log_in_the_last_handler()
{
    for (int i = 0; log_at_exit && i < 100; ++i)
        quilp().vl_log("after the log's own handler");
}

// Registered before any library is initialised, hence run after all their handlers.
void register_last_handler()
{
    std::atexit(log_in_the_last_handler);
}
[[gnu::section(".preinit_array"),
  gnu::used]] void (*before_libraries)() = register_last_handler;

struct LogsWhenDestroyed {
    ~LogsWhenDestroyed()
    {
        if (log_at_exit)
            quilp().vl_log("from a static destructor");
    }
} logs_when_destroyed;

int log_until_the_end()
{
    log_at_exit = true;
    std::atexit([] { quilp().vl_log("from a handler"); });
    quilp().vl_log("from main");
    return 0;
}

// --------------------------------------------------------------------- fork

int exit_status(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

pid_t log_in_child(const char* text)
{
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // should it hang, the test ends its parent
        quilp().vl_log("%s", text);
        _exit(0); // runs no exit handler
    }
    return child;
}

int fork_between_lines()
{
    quilp().vl_log("parent before");
    quilp().flush();
    if (exit_status(log_in_child("child")) != 0)
        return 1;
    quilp().vl_log("parent after");
    return 0;
}

int fork_grandchild()
{
    quilp().vl_log("parent");
    quilp().flush();
    const pid_t child = fork();
    if (child == 0) {
        quilp().vl_log("child");
        _exit(exit_status(log_in_child("grandchild")));
    }
    return exit_status(child);
}

int fork_while_threads_log()
{
    quilp().vl_log("parent");
    std::atomic<bool> stop{false};
    std::vector<std::thread> loggers;
    for (int t = 0; t < 3; ++t)
        loggers.emplace_back([&stop] {
            while (!stop) {
                quilp().vl_log("noise");
                std::this_thread::sleep_for(std::chrono::microseconds(200)); // no flood
            }
        });
    int failures = 0;
    for (int i = 0; i < 30; ++i)
        failures += exit_status(log_in_child(("child " + std::to_string(i)).c_str())) != 0;
    stop = true;
    for (std::thread& logger : loggers)
        logger.join();
    return failures;
}

int fork_inside_syslog()
{
    quilp().vl_log("block");
    {
        std::unique_lock waiting(blocked_mutex);
        blocked_changed.wait(waiting, [] { return blocked; });
    }
    const int status = exit_status(log_in_child("child"));
    const std::lock_guard lock(blocked_mutex);
    released = true;
    blocked_changed.notify_all();
    return status;
}

// ------------------------------------------------------------------- the rest

int log_one_of_each()
{
    errno = E2BIG;
    quilp().vl_log("hostile: %s", "%s%n%x\n\x1b[31m");
    // Out of the compiler's sight, which would not have them.
    const char* volatile error_number = "error: %m";
    quilp().vl_log(error_number);
    const char* volatile none = nullptr;
    quilp().vl_log(none);
    return errno == E2BIG ? 0 : 1;
}

int log_from_many_threads()
{
    std::vector<std::thread> loggers;
    for (int t = 0; t < 8; ++t)
        loggers.emplace_back([t] {
            for (int i = 0; i < 250; ++i)
                quilp().vl_log("thread %d line %d", t, i);
        });
    for (std::thread& logger : loggers)
        logger.join();
    return 0;
}

int log_more_than_one_file()
{
    const std::string filling(8000, 'x');
    for (int i = 0; i < 1600; ++i) {
        quilp().vl_log("%s %d", filling.c_str(), i);
        if (i % 100 == 0)
            quilp().flush();
    }
    return 0;
}

// More than the queue holds, to a log that nobody reads until SIGTERM.
int log_too_much()
{
    sigset_t term;
    sigemptyset(&term);
    sigaddset(&term, SIGTERM);
    sigprocmask(SIG_BLOCK, &term, nullptr);
    const std::string filling(8000, 'x');
    for (int i = 0; i < 1500; ++i)
        quilp().vl_log("%s %d", filling.c_str(), i);
    dprintf(3, "logged\n");
    int received;
    sigwait(&term, &received);
    return 0;
}

int log_to_nobody()
{
    quilp().vl_log("to a log that nobody reads");
    return 0;
}

int log_to_a_broken_pipe()
{
    int ends[2];
    if (pipe(ends) != 0)
        return 1;
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    quilp().vl_log("to a reader that is gone");
    quilp().flush();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, std::function<int()>> ways{
        {"one-of-each", log_one_of_each},
        {"until-the-end", log_until_the_end},
        {"fork", fork_between_lines},
        {"fork-grandchild", fork_grandchild},
        {"fork-while-threads-log", fork_while_threads_log},
        {"fork-inside-syslog", fork_inside_syslog},
        {"many-threads", log_from_many_threads},
        {"more-than-one-file", log_more_than_one_file},
        {"too-much", log_too_much},
        {"to-nobody", log_to_nobody},
        {"to-a-broken-pipe", log_to_a_broken_pipe},
    };
    const auto way = argc == 2 ? ways.find(argv[1]) : ways.end();
    if (way == ways.end())
        return 2;
    return way->second();
}
