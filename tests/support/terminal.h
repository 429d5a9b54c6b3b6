// A terminal with a child process at it, for tests.
#ifndef VELMO_TESTS_SUPPORT_TERMINAL_H
#define VELMO_TESTS_SUPPORT_TERMINAL_H

#include <string>

#include "tests/support/process.h"

namespace velmo::tests {

// A pseudo-terminal of 100 columns and 30 lines, which a child process takes for the one
// that a person sits at. It ends with this object.
class Terminal {
public:
    // Which of the child's streams lead to the terminal; the others are captured, as
    // those of Process, and standard input is the terminal in any case.
    enum class Shows { everything, results, messages };

    // Throws std::system_error.
    explicit Terminal(const Process::Command& command,
                      const Process::Environment& additions = {},
                      Shows shows = Shows::everything);

    // What a person types: "\n" is the return key, "\t" the tabulator, "\x03" Ctrl-C,
    // "\x04" Ctrl-D.
    void type(const std::string& keys);

    // Everything that the terminal was sent so far, escape sequences included; lines end
    // in "\r\n".
    const std::string& shown();

    // Waits until the text was shown, after what an earlier call has found.
    bool wait_for(const std::string& text, std::chrono::milliseconds limit = patience);

    // As Process::wait().
    std::optional<int> wait(std::chrono::milliseconds limit = patience);

    Process& process() { return *child; }

private:
    Descriptor screen; // our end
    std::optional<Process> child;
    std::string received;
    std::size_t found = 0; // the end of what wait_for() has found
};

} // namespace velmo::tests

#endif
