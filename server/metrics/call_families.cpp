#include <limits>

#include "server/metrics/families.h"

namespace velmo::metrics {

namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

constexpr double seconds(std::chrono::nanoseconds duration)
{
    return std::chrono::duration<double>(duration).count();
}

ClientMetric metric_of(const OperationName& name)
{
    ClientMetric metric;
    metric.label = {{"service", name.service}, {"operation", name.operation}};
    return metric;
}

ClientMetric counter(const OperationName& name, std::uint64_t value)
{
    ClientMetric metric = metric_of(name);
    metric.counter.value = static_cast<double>(value);
    return metric;
}

ClientMetric failures(const OperationName& name, const char* kind, std::uint64_t value)
{
    ClientMetric metric = counter(name, value);
    metric.label.push_back({"kind", kind});
    return metric;
}

ClientMetric histogram(const OperationName& name, const CallCounts& counts)
{
    ClientMetric metric = metric_of(name);
    std::uint64_t so_far = 0;
    for (std::size_t i = 0; i < counts.by_duration.size(); ++i) {
        const bool last = i == duration_bounds.size();
        so_far += counts.by_duration[i];
        metric.histogram.bucket.push_back(
            {so_far,
             last ? std::numeric_limits<double>::infinity() : seconds(duration_bounds[i])});
    }
    metric.histogram.sample_count = so_far;
    metric.histogram.sample_sum = seconds(counts.total);
    return metric;
}

} // namespace

void add_call_families(Families& families, const CallMetrics& calls)
{
    MetricFamily total{
        "velmod_calls_total", "Calls of clients that have ended.", MetricType::Counter, {}};
    MetricFamily errors{"velmod_call_errors_total",
                        "Calls that gave a result code other than 0, or ended in an "
                        "exception.",
                        MetricType::Counter,
                        {}};
    MetricFamily durations{"velmod_call_duration_seconds",
                           "How long calls took in the server, waiting included.",
                           MetricType::Histogram,
                           {}};
    for (std::size_t i = 0; i < operation_count; ++i) {
        const OperationName& name = operation_names[i];
        const CallCounts counts = calls.counts(static_cast<Operation>(i));
        total.metric.push_back(counter(name, counts.calls()));
        errors.metric.push_back(failures(name, "code", counts.codes));
        errors.metric.push_back(failures(name, "exception", counts.exceptions));
        durations.metric.push_back(histogram(name, counts));
    }
    families.push_back(std::move(total));
    families.push_back(std::move(errors));
    families.push_back(std::move(durations));
}

} // namespace velmo::metrics
