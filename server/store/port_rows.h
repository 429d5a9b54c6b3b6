// The rows of ports, connections, packets and events.
#ifndef VELMO_SERVER_STORE_PORT_ROWS_H
#define VELMO_SERVER_STORE_PORT_ROWS_H

#include "server/store/snapshot_store.h"

namespace velmo::store {

// Within a transaction; snapshot: the key of the snapshot that the rows belong to.
// Throw StoreError.
void write_ports(Database& database, std::int64_t snapshot, const PortsSnapshot& image);
PortsSnapshot read_ports(Database& database, std::int64_t snapshot);

} // namespace velmo::store

#endif
