// What velmod counts, as Prometheus takes it.
#ifndef VELMO_SERVER_METRICS_FAMILIES_H
#define VELMO_SERVER_METRICS_FAMILIES_H

#include <vector>

#include <prometheus/metric_family.h>

#include "server/journal/group_commit.h"
#include "server/metrics/call_metrics.h"
#include "server/model/realm.h"

namespace velmo::metrics {

using Families = std::vector<prometheus::MetricFamily>;

// Of all calls, by service and operation.
void add_call_families(Families& families, const CallMetrics& calls);

// Of what the realms hold at this moment, by realm. Of the queues, the fullest ones of
// each realm are given one by one. Names that are not UTF-8 have "?" in their place.
void add_realm_families(Families& families, const std::vector<const model::Realm*>& realms);

// Of the journal, of all realms together.
void add_journal_families(Families& families, const journal::Status& status);

constexpr std::size_t queues_shown = 100; // of a realm, at most

} // namespace velmo::metrics

#endif
