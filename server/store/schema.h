// What tells a file of ours, and its tables.
#ifndef VELMO_SERVER_STORE_SCHEMA_H
#define VELMO_SERVER_STORE_SCHEMA_H

#include "server/store/database.h"

namespace velmo::store {

struct Schema {
    std::int64_t application; // for file(1) and for us
    std::int64_t version;
    const char* tables; // what creates them
};

// Creates the tables in an empty file; checks every page of another one. Throws
// StoreError, and leaves the file as it is, when it is damaged, another program's, or
// of a newer velmod.
void open_schema(Database& database, const Schema& schema);

// Of a snapshot file.
extern const Schema snapshot_schema;

} // namespace velmo::store

#endif
