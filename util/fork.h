// Children that fork() makes of a process that uses the library.
#ifndef VELMO_UTIL_FORK_H
#define VELMO_UTIL_FORK_H

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace velmo::util {

// Such a child has none of the broker's threads, shares the connections with its parent,
// where the two would read each other's answers, and finds every lock held for ever that
// another thread held at that moment. It is cut off: nobody is called in it, and nothing
// released. It may execute another program, or exit.
class Fork {
public:
    // Children made from now on are cut off.
    static void cut_off_children() noexcept
    {
        if (!in_use.load(std::memory_order_relaxed) && !in_use.exchange(true))
            on_exit(note_status, nullptr);
    }

    // Whether this process is one. As cheap as reading a variable.
    static bool is_cut_off() noexcept { return cut_off.load(std::memory_order_relaxed); }

private:
    static void in_child() { cut_off = in_use.load(); }

    static void note_status(int its_status, void*) { status = its_status; }

    // Ends such a child when its own exit handlers have run, and before those of the
    // libraries that this one stands on: the broker's take locks that may be held.
    struct End {
        ~End()
        {
            if (!is_cut_off())
                return;
            std::fflush(nullptr);
            _exit(status);
        }
    };

    static inline std::atomic<bool> in_use{false};
    static inline std::atomic<bool> cut_off{false};
    static inline std::atomic<int> status{EXIT_SUCCESS}; // given to exit()
    static inline const End end{};
    static inline const int registered = pthread_atfork(nullptr, nullptr, in_child);
};

} // namespace velmo::util

#endif
