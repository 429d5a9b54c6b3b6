#ifndef VELMO_UTIL_DEADLINE_H
#define VELMO_UTIL_DEADLINE_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velmo::util {

// The moment by which several steps together have to be done.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::milliseconds;

    explicit Deadline(Milliseconds limit) // 0: none
        : none(limit.count() == 0), moment(Clock::now() + limit)
    {
    }

    // As the limit of one step: 0 when there is none, else at least 1 ms, so that
    // a step begun too late gives up at once instead of waiting for ever.
    Milliseconds left() const
    {
        if (none)
            return Milliseconds(0);
        const auto remaining = std::chrono::ceil<Milliseconds>(moment - Clock::now());
        return std::max(remaining, Milliseconds(1));
    }

    // Waits until the condition holds; false when the time is up first.
    template <class Condition>
    bool wait(std::condition_variable& changed, std::unique_lock<std::mutex>& lock,
              Condition condition) const
    {
        if (!none)
            return changed.wait_until(lock, moment, condition);
        changed.wait(lock, condition);
        return true;
    }

private:
    bool none;
    Clock::time_point moment;
};

} // namespace velmo::util

#endif
