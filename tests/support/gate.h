// Holding threads up at a point that a test chooses.
#ifndef VELMO_TESTS_SUPPORT_GATE_H
#define VELMO_TESTS_SUPPORT_GATE_H

#include <condition_variable>
#include <mutex>

#include "tests/support/eventually.h"

namespace velmo::tests {

class Gate {
public:
    // For the held-up thread: tells that it is here and waits until the gate opens.
    void pass()
    {
        std::unique_lock<std::mutex> guard(mutex);
        ++arrivals;
        changed.notify_all();
        changed.wait_for(guard, patience, [this] { return is_open; });
    }

    // For the test: waits until that many threads have come; false when they do not.
    bool reached_by(int threads)
    {
        std::unique_lock<std::mutex> guard(mutex);
        return changed.wait_for(guard, patience, [&] { return arrivals >= threads; });
    }

    void open()
    {
        std::lock_guard<std::mutex> guard(mutex);
        is_open = true;
        changed.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int arrivals = 0;
    bool is_open = false;
};

} // namespace velmo::tests

#endif
