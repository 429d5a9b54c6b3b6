// Reading a state file.
#ifndef VELMO_SERVER_JOURNAL_STATE_READER_H
#define VELMO_SERVER_JOURNAL_STATE_READER_H

#include "server/journal/state_file.h"

namespace velmo::journal {

// Within a transaction. Throws store::StoreError, also for what velmod never wrote.
RealmState read_state(store::Database& database, RealmKey realm);

} // namespace velmo::journal

#endif
