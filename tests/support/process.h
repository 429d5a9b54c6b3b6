// Child processes for tests.
#ifndef VELMO_TESTS_SUPPORT_PROCESS_H
#define VELMO_TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/eventually.h"

namespace velmo::tests {

// A file descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : fd(number) {}
    Descriptor(Descriptor&& other) noexcept : fd(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor() { reset(); }

    int get() const { return fd; }
    void reset();

private:
    int release();

    int fd;
};

// A child process with its output captured. It ends with this object, and with the
// thread that made it, at the latest.
class Process {
public:
    using Command = std::vector<std::string>; // the program's path, its arguments
    using Environment = std::map<std::string, std::string>;

    // The child's descriptor whose first line wait_ready() gives: for options
    // such as --ready-fd. No other descriptor is passed on.
    static constexpr int ready_fd = 3;

    // What the child reads and where it writes. Descriptors remain the caller's.
    struct Streams {
        std::string input; // all that there is to read, unless in is given
        int in = -1;       // -1: the input
        int out = -1;      // -1: captured
        int err = -1;      // -1: captured
        int terminal = -1; // made the child's controlling terminal; -1: none
    };

    // Starts the command with our environment and the additions to it. Throws
    // std::system_error. A program that cannot be executed exits with 127.
    explicit Process(const Command& command, const Environment& additions = {})
        : Process(command, additions, Streams())
    {
    }
    Process(const Command& command, const Environment& additions, const Streams& streams);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    pid_t pid() const { return child; }

    // The line, without its end, that the child writes to ready_fd; none when
    // it has closed that, or ended, before a whole line, or after the limit.
    std::optional<std::string> wait_ready(std::chrono::milliseconds limit = patience);

    // Sends a signal to the child, unless it is known to have ended.
    void signal(int number);

    // Stops the child (SIGSTOP) and waits until it stands still. SIGCONT wakes it.
    void suspend();

    // Waits for the child's end: its exit status, or 128 and the number of the
    // signal that ended it; none when it still runs after the limit.
    std::optional<int> wait(std::chrono::milliseconds limit = patience);
    bool running() { return !wait(std::chrono::milliseconds(0)); }

    // What the child has written so far, where it is captured.
    std::string out() const;
    std::string err() const;

private:
    pid_t child = -1;
    std::optional<int> status;
    Descriptor ready;
    Descriptor out_file;
    Descriptor err_file;
};

} // namespace velmo::tests

#endif
