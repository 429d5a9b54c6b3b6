#include "tests/fuzz/loading.h"

#include "server/model/realm.h"
#include "server/services/snapshots.h"
#include "tests/fuzz/require.h"
#include "tests/server/points_of.h"
#include "tests/support/log_stand_in.h"

namespace velmo::tests {

namespace {

constexpr const char* realm_name = ""; // as a mutated file has it most easily

bool loads(store::SnapshotStore& store, model::Realm& realm)
{
    try {
        services::Snapshots(&store, realm).load_all();
        return true;
    } catch (const store::StoreError& error) {
        require(*error.what(), "a snapshot is refused for a reason");
        return false;
    }
}

bool is_result_of_loading(vl_result result)
{
    return result == VL_OK || result == NON_EXIST_DATA || result == OBJECT_PATCH_FAI;
}

} // namespace

void check_loading(store::SnapshotStore& store)
{
    clear_logged_lines();
    model::Realm other(realm_name);
    const services::Snapshots parts(&store, other);
    require(is_result_of_loading(parts.load_points()), "points are loaded or not");
    require(is_result_of_loading(parts.load_ports()), "ports are loaded or not");
    model::Realm realm(realm_name);
    loads(store, realm);
}

void check_saving(store::SnapshotStore& store)
{
    model::Realm realm(realm_name);
    if (!loads(store, realm))
        return;
    const services::Snapshots snapshots(&store, realm);
    require(snapshots.make_templates() == VL_OK && snapshots.make_points() == VL_OK &&
                snapshots.make_ports() == VL_OK,
            "what was loaded can be saved");
    model::Realm again(realm_name);
    require(loads(store, again), "what was saved can be loaded");
    require(again.templates.image() == realm.templates.image(), "templates are the same");
    require(points_of(again.points) == points_of(realm.points), "points are the same");
    require(again.ports.image() == realm.ports.image(), "ports are the same");
    require(again.events.image() == realm.events.image(), "events are the same");
}

} // namespace velmo::tests
