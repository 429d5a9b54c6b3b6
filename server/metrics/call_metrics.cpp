#include "server/metrics/call_metrics.h"

#include <algorithm>
#include <numeric>

namespace velmo::metrics {

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

} // namespace

std::uint64_t CallCounts::calls() const
{
    return std::accumulate(by_duration.begin(), by_duration.end(), std::uint64_t{0});
}

void CallMetrics::record(Operation operation, std::chrono::nanoseconds duration,
                         Outcome outcome)
{
    Counters& counters = operations[static_cast<std::size_t>(operation)];
    const auto bound =
        std::lower_bound(duration_bounds.begin(), duration_bounds.end(), duration);
    const auto bucket = static_cast<std::size_t>(bound - duration_bounds.begin());
    counters.by_duration[bucket].fetch_add(1, relaxed);
    counters.nanoseconds.fetch_add(static_cast<std::uint64_t>(duration.count()), relaxed);
    if (outcome == Outcome::code)
        counters.codes.fetch_add(1, relaxed);
    else if (outcome == Outcome::exception)
        counters.exceptions.fetch_add(1, relaxed);
}

CallCounts CallMetrics::counts(Operation operation) const
{
    const Counters& counters = operations[static_cast<std::size_t>(operation)];
    CallCounts counts;
    for (std::size_t i = 0; i < counts.by_duration.size(); ++i)
        counts.by_duration[i] = counters.by_duration[i].load(relaxed);
    counts.codes = counters.codes.load(relaxed);
    counts.exceptions = counters.exceptions.load(relaxed);
    counts.total = std::chrono::nanoseconds(counters.nanoseconds.load(relaxed));
    return counts;
}

} // namespace velmo::metrics
