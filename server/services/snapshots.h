// The snapshots of one realm, as its servants make and load them.
#ifndef VELMO_SERVER_SERVICES_SNAPSHOTS_H
#define VELMO_SERVER_SERVICES_SNAPSHOTS_H

#include <string>

#include "vl_result.h"

namespace velmo::model {
struct Realm;
}
namespace velmo::store {
class SnapshotStore;
}

namespace velmo::services {

// Two references, to be copied at will; what they refer to must outlive it. Any function
// from any thread. A call returns when the snapshot is safe on the disk, or loaded; all
// other traffic goes on meanwhile. Nothing is thrown but where it says so. An operation
// that fails has changed nothing: the last snapshot is still there, and so is what was
// to be replaced.
//   OBJECT_PATCH_FAI  the server keeps nothing, for it has no data folder; or the file
//                     cannot be written (the disk is full ...), or read, or the service
//                     does not take what it holds: the log tells
//   NON_EXIST_DATA    (load) this has never been saved
class Snapshots {
public:
    // store: null for a server without a data folder.
    Snapshots(store::SnapshotStore* snapshot_store, model::Realm& its_realm)
        : store(snapshot_store), realm(&its_realm)
    {
    }

    vl_result make_templates() const;
    vl_result make_points() const;
    vl_result make_ports() const; // and events

    vl_result load_points() const;
    vl_result load_ports() const; // and events

    // For the start of a server that has a data folder: everything that was saved of
    // the realm. Throws store::StoreError when it cannot be read, or is not taken.
    void load_all() const;

private:
    template <class Step>
    vl_result make(const char* part, Step step) const;

    // Give whether there was anything. Throw store::StoreError.
    bool restore_templates() const;
    bool restore_points() const;
    bool restore_ports() const;

    vl_result load(bool (Snapshots::*restore)() const) const;
    std::string named(const char* part) const;
    void check(vl_result restored, const char* part, const std::string& problem) const;

    store::SnapshotStore* store;
    model::Realm* realm;
};

} // namespace velmo::services

#endif
