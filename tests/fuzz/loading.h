// What has to come of loading whatever a snapshot file holds.
#ifndef VELMO_TESTS_FUZZ_LOADING_H
#define VELMO_TESTS_FUZZ_LOADING_H

#include "server/store/snapshot_store.h"

namespace velmo::tests {

// Its realm's snapshots are refused, or taken.
void check_loading(store::SnapshotStore& store);

// What is taken can be saved and loaded again, and is the same then. The file's tables
// must be sound: whether they are is not checked when a file is opened.
void check_saving(store::SnapshotStore& store);

} // namespace velmo::tests

#endif
