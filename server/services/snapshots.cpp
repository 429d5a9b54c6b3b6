#include "server/services/snapshots.h"

#include "server/log.h"
#include "server/services/services.h"
#include "server/store/snapshot_store.h"

namespace velmo::services {

namespace {

constexpr const char* templates_part = "templates";
constexpr const char* points_part = "points";
constexpr const char* ports_part = "ports";

} // namespace

std::string Snapshots::named(const char* part) const
{
    return std::string("the ") + part + " of realm " + shown_name(*realm);
}

// ------------------------------------------------------------------ make

template <class Step>
vl_result Snapshots::make(const char* part, Step step) const
{
    if (!store)
        return OBJECT_PATCH_FAI;
    try {
        step();
        server::log_event("snapshot-saved",
                          {{"realm", shown_name(*realm)}, {"part", part}});
        return VL_OK;
    } catch (const std::exception& error) {
        server::log_event(
            "snapshot-failed",
            {{"realm", shown_name(*realm)}, {"part", part}, {"reason", error.what()}});
        return OBJECT_PATCH_FAI;
    }
}

vl_result Snapshots::make_templates() const
{
    return make(templates_part, [&] {
        store->save_templates(realm->name, [&] { return realm->templates.image(); });
    });
}

vl_result Snapshots::make_points() const
{
    return make(points_part, [&] {
        store->save_points(realm->name, [&](const store::SnapshotStore::VisitPoint& visit) {
            realm->points.visit_moment(visit);
        });
    });
}

vl_result Snapshots::make_ports() const
{
    return make(ports_part, [&] {
        store->save_ports(realm->name, [&] {
            return store::PortsSnapshot{realm->ports.image(), realm->events.image()};
        });
    });
}

// ------------------------------------------------------------------ load

void Snapshots::check(vl_result restored, const char* part,
                      const std::string& problem) const
{
    if (restored != VL_OK)
        throw store::StoreError(store->file(),
                                named(part) + " in it cannot be used: " + problem);
}

bool Snapshots::restore_templates() const
{
    const auto image = store->load_templates(realm->name);
    if (!image)
        return false;
    std::string problem;
    const vl_result result = realm->templates.restore(*image, problem);
    check(result, templates_part, problem);
    return true;
}

bool Snapshots::restore_points() const
{
    auto images = store->load_points(realm->name);
    if (!images)
        return false;
    std::string problem;
    const vl_result result = realm->points.restore(std::move(*images), problem);
    check(result, points_part, problem);
    return true;
}

bool Snapshots::restore_ports() const
{
    const auto snapshot = store->load_ports(realm->name);
    if (!snapshot)
        return false;
    const model::Together whole(realm->journal);
    vl_result result = realm->events.check(snapshot->events); // before ports are replaced
    if (result == VL_OK)
        result = realm->ports.restore(snapshot->ports);
    if (result == VL_OK)
        result = realm->events.restore(snapshot->events);
    check(result, ports_part, "result " + std::to_string(result));
    return true;
}

vl_result Snapshots::load(bool (Snapshots::*restore)() const) const
{
    if (!store)
        return OBJECT_PATCH_FAI;
    try {
        if (!(this->*restore)())
            return NON_EXIST_DATA;
        server::log_event("snapshot-loaded", {{"realm", shown_name(*realm)}});
        return VL_OK;
    } catch (const std::exception& error) {
        server::log_event("snapshot-not-loaded",
                          {{"realm", shown_name(*realm)}, {"reason", error.what()}});
        return OBJECT_PATCH_FAI;
    }
}

vl_result Snapshots::load_points() const
{
    return load(&Snapshots::restore_points);
}

vl_result Snapshots::load_ports() const
{
    return load(&Snapshots::restore_ports);
}

void Snapshots::load_all() const
{
    const auto report = [this](const char* part, bool loaded) {
        server::log_event(loaded ? "snapshot-loaded" : "snapshot-missing",
                          {{"realm", shown_name(*realm)}, {"part", part}});
    };
    report(templates_part, restore_templates());
    report(points_part, restore_points()); // they refer to templates
    report(ports_part, restore_ports());
}

} // namespace velmo::services
