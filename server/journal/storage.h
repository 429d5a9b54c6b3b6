// Where a journal's changes end up.
#ifndef VELMO_SERVER_JOURNAL_STORAGE_H
#define VELMO_SERVER_JOURNAL_STORAGE_H

#include "server/model/journal.h"

namespace velmo::journal {

using RealmKey = std::int64_t;

struct Entry {
    RealmKey realm;
    model::Change change;
};
using Entries = std::vector<Entry>;

class Storage {
public:
    virtual ~Storage() = default;

    // Writes entries in their order, all or none; they are safe on the disk when it
    // returns. Throws std::exception when they are not known to be: then it will be asked
    // to write the same ones again, with more behind them. From one thread at a time.
    virtual void write(const Entries& entries) = 0;
};

} // namespace velmo::journal

#endif
