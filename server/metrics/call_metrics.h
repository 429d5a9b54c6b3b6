// Calls, counted and timed.
#ifndef VELMO_SERVER_METRICS_CALL_METRICS_H
#define VELMO_SERVER_METRICS_CALL_METRICS_H

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>

#include "server/metrics/operations.h"

namespace velmo::metrics {

enum class Outcome {
    success,
    code,     // a result code other than VL_OK
    exception // which the client sees as a failed call
};

// Upper bounds of the histogram of durations; above them there is one more bucket.
constexpr std::array<std::chrono::microseconds, 14> duration_bounds{
    std::chrono::microseconds(10),       std::chrono::microseconds(30),
    std::chrono::microseconds(100),      std::chrono::microseconds(300),
    std::chrono::microseconds(1000),     std::chrono::microseconds(3000),
    std::chrono::microseconds(10000),    std::chrono::microseconds(30000),
    std::chrono::microseconds(100000),   std::chrono::microseconds(300000),
    std::chrono::microseconds(1000000),  std::chrono::microseconds(3000000),
    std::chrono::microseconds(10000000), std::chrono::microseconds(30000000)};

// What there is to know about the calls of one operation, since the start.
struct CallCounts {
    std::array<std::uint64_t, duration_bounds.size() + 1> by_duration{}; // not cumulative
    std::uint64_t codes = 0;      // calls that gave one
    std::uint64_t exceptions = 0; // calls that ended in one
    std::chrono::nanoseconds total{0};

    std::uint64_t calls() const;
};

// Any function from any thread, without a lock: a call costs two or three additions
// to atomic counters.
class CallMetrics {
public:
    void record(Operation operation, std::chrono::nanoseconds duration, Outcome outcome);

    // Counters that change meanwhile may be a call ahead of each other.
    CallCounts counts(Operation operation) const;

private:
    using Counter = std::atomic<std::uint64_t>;
    struct alignas(64) Counters { // operations do not disturb each other's
        std::array<Counter, duration_bounds.size() + 1> by_duration{};
        Counter codes{0}, exceptions{0}, nanoseconds{0};
    };

    std::array<Counters, operation_count> operations;
};

// Times a call from its construction to its destruction. metrics: null for none,
// in which case it does nothing at all.
class Measurement {
public:
    Measurement(CallMetrics* its_metrics, Operation its_operation)
        : metrics(its_metrics), operation(its_operation)
    {
        if (metrics)
            begin = Clock::now();
    }
    ~Measurement()
    {
        if (metrics)
            metrics->record(operation, Clock::now() - begin, outcome);
    }
    Measurement(const Measurement&) = delete;
    Measurement& operator=(const Measurement&) = delete;

    void ended(Outcome how) { outcome = how; }

private:
    using Clock = std::chrono::steady_clock;

    CallMetrics* const metrics;
    const Operation operation;
    Clock::time_point begin;
    Outcome outcome = Outcome::exception; // unless it is told otherwise
};

} // namespace velmo::metrics

#endif
