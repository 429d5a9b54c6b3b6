#include "server/metrics/families.h"

namespace velmo::metrics {

namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

MetricFamily counter(const char* name, const char* help, double value)
{
    ClientMetric metric;
    metric.counter.value = value;
    return {name, help, MetricType::Counter, {metric}};
}

} // namespace

void add_journal_families(Families& families, const journal::Status& status)
{
    families.push_back(counter("velmod_journal_changes_total", "Changes on the disk.",
                               static_cast<double>(status.changes)));
    families.push_back(counter("velmod_journal_groups_total",
                               "Writes for that, each with all changes that had come.",
                               static_cast<double>(status.groups)));
    families.push_back(counter("velmod_journal_writing_seconds_total",
                               "Time that these writes have taken.",
                               std::chrono::duration<double>(status.writing).count()));
    families.push_back(counter("velmod_journal_failures_total", "Writes that have failed.",
                               static_cast<double>(status.failures)));
    ClientMetric failing;
    failing.gauge.value = status.failing.empty() ? 0 : 1;
    families.push_back({"velmod_journal_failing",
                        "1 while the disk takes no changes, and velmod none either.",
                        MetricType::Gauge,
                        {failing}});
}

} // namespace velmo::metrics
