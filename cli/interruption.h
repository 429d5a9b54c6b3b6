// Ctrl-C, and a polite request to end.
#ifndef VELMO_CLI_INTERRUPTION_H
#define VELMO_CLI_INTERRUPTION_H

#include <chrono>

namespace velmo::cli {

// From now on SIGINT ends the program at once, with the exit status for it, whatever it
// is doing. For main().
void end_when_interrupted();

// While it lives, a first SIGINT or SIGTERM is only noted; a second one ends the program
// at once. For commands that have to leave things in order, and those that a person ends.
// One at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool happened() const;

    // Waits, and throws Interrupted when it happens or has happened.
    void wait(std::chrono::milliseconds time) const;

    // Readable from when it happens, for poll().
    int descriptor() const;
};

} // namespace velmo::cli

#endif
