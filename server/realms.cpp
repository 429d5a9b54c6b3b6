#include "server/realms.h"

#include <algorithm>
#include <set>

namespace velmo::server {

namespace {

model::RealmLimits realm_limits(const Limits& limits)
{
    model::RealmLimits realm;
    realm.points.max_points = limits.max_points;
    realm.points.max_value_bytes = limits.max_message;
    realm.ports.queue_bytes = limits.max_queue_bytes;
    realm.ports.packet_bytes = limits.max_message;
    realm.ports.max_wait = limits.max_wait;
    realm.events.data_bytes = std::min(realm.events.data_bytes, limits.max_message);
    realm.contention.data_bytes = std::min(realm.contention.data_bytes, limits.max_message);
    realm.contention.lease = limits.lease;
    return realm;
}

} // namespace

services::Realms make_realms(const Options& options)
{
    const model::RealmLimits limits = realm_limits(options.limits);
    services::Realms realms;
    realms.push_back(std::make_unique<model::Realm>("", limits));
    for (const std::string& name : options.realms)
        realms.push_back(std::make_unique<model::Realm>(name, limits));
    for (const auto& realm : realms)
        for (const model::TemplateDefinition& definition : options.templates)
            realm->templates.add(definition);
    return realms;
}

std::vector<std::string> reconfigure(const services::Realms& realms, const Options& wanted)
{
    const model::RealmLimits limits = realm_limits(wanted.limits);
    std::set<std::string> in_use;
    for (const auto& realm : realms) // this may throw, for the first one if at all
        for (std::string& name : realm->templates.reconfigure(wanted.templates))
            in_use.insert(std::move(name));
    for (const auto& realm : realms) {
        realm->points.set_max_points(limits.points.max_points);
        realm->ports.set_max_wait(limits.ports.max_wait);
        realm->contention.set_lease(limits.contention.lease);
    }
    return {in_use.begin(), in_use.end()};
}

} // namespace velmo::server
