#include <algorithm>
#include <functional>

#include "idl/service_keys.h"
#include "quilp/utf8.h"
#include "server/metrics/families.h"

namespace velmo::metrics {

namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

// A label must be UTF-8, or the whole text is of no use.
std::string label(std::string_view name)
{
    std::string result;
    while (!name.empty()) {
        const quilp::Utf8Character character = quilp::first_character(name);
        if (character.well_formed)
            result.append(name.substr(0, character.length));
        else
            result += '?';
        name.remove_prefix(character.length);
    }
    return result;
}

std::string realm_label(const model::Realm& realm)
{
    return realm.name.empty() ? keys::root_realm : label(realm.name);
}

ClientMetric gauge(const model::Realm& realm, std::size_t value)
{
    ClientMetric metric;
    metric.label = {{"realm", realm_label(realm)}};
    metric.gauge.value = static_cast<double>(value);
    return metric;
}

struct Queue {
    std::string port;
    model::PortStatus status;
};

std::vector<Queue> fullest_queues(const model::PortService& ports)
{
    std::vector<Queue> queues;
    for (std::string& name : ports.names()) {
        const std::optional<model::PortStatus> status = ports.status(name);
        if (status && status->depth > 0)
            queues.push_back({std::move(name), *status});
    }
    const auto shown = static_cast<std::ptrdiff_t>(std::min(queues.size(), queues_shown));
    std::partial_sort(queues.begin(), queues.begin() + shown, queues.end(),
                      [](const Queue& one, const Queue& other) {
                          return one.status.depth > other.status.depth;
                      });
    queues.resize(static_cast<std::size_t>(shown));
    return queues;
}

struct RealmGauge {
    const char* name;
    const char* help;
    std::function<std::size_t(const model::Realm&)> read;
};

} // namespace

void add_realm_families(Families& families, const std::vector<const model::Realm*>& realms)
{
    using model::Realm;
    const RealmGauge gauges[] = {
        {"velmod_points", "Points.",
         [](const Realm& realm) { return realm.points.size(); }},
        {"velmod_ports", "Ports.",
         [](const Realm& realm) { return realm.ports.totals().ports; }},
        {"velmod_port_connections", "Connections between ports.",
         [](const Realm& realm) { return realm.ports.connections().size(); }},
        {"velmod_queued_packets", "Packets in all queues.",
         [](const Realm& realm) { return realm.ports.totals().packets; }},
        {"velmod_queued_replies", "Replies that nobody has received yet.",
         [](const Realm& realm) { return realm.ports.totals().replies; }},
        {"velmod_queued_bytes", "Bytes in the queued packets and replies.",
         [](const Realm& realm) { return realm.ports.totals().bytes; }},
        {"velmod_waiting_calls", "Calls that wait for a packet, a reply or for room.",
         [](const Realm& realm) { return realm.ports.waiting(); }},
        {"velmod_events", "Events.",
         [](const Realm& realm) { return realm.events.names().size(); }},
        {"velmod_contention_groups", "Groups of contenders.",
         [](const Realm& realm) { return realm.contention.groups().size(); }},
        {"velmod_contention_leases", "Contenders whose lease runs.",
         [](const Realm& realm) { return realm.contention.leases(); }},
    };
    for (const RealmGauge& of_realm : gauges) {
        MetricFamily family{of_realm.name, of_realm.help, MetricType::Gauge, {}};
        for (const Realm* realm : realms)
            family.metric.push_back(gauge(*realm, of_realm.read(*realm)));
        families.push_back(std::move(family));
    }

    MetricFamily depths{"velmod_queue_packets",
                        "Packets in a port's queue; the fullest queues only.",
                        MetricType::Gauge,
                        {}};
    for (const Realm* realm : realms) {
        for (const Queue& queue : fullest_queues(realm->ports)) {
            ClientMetric metric = gauge(*realm, queue.status.depth);
            metric.label.push_back({"port", label(queue.port)});
            depths.metric.push_back(std::move(metric));
        }
    }
    families.push_back(std::move(depths));
}

} // namespace velmo::metrics
