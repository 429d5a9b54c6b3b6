// The tables of a snapshot file.
#ifndef VELMO_SERVER_STORE_SCHEMA_H
#define VELMO_SERVER_STORE_SCHEMA_H

#include "server/store/database.h"

namespace velmo::store {

// Creates the tables in an empty file; checks every page of another one. Throws
// StoreError, and leaves the file as it is, when it is damaged, another program's, or
// of a newer velmod.
void open_schema(Database& database);

} // namespace velmo::store

#endif
