// The tables of a state file.
#ifndef VELMO_SERVER_JOURNAL_STATE_TABLES_H
#define VELMO_SERVER_JOURNAL_STATE_TABLES_H

#include <string>

#include "server/store/database.h"
#include "server/store/schema.h"

namespace velmo::journal {

extern const store::Schema state_schema;

// A table with a checksum in each row. The columns begin with the realm.
struct Table {
    const char* name;
    const char* columns; // but the checksum
    const char* key;     // those that tell a row from others
    const char* order;   // in which rows are read
};

constexpr Table templates_table{
    "templates", "realm, position, name, kind, size, max_size, initial, description",
    "realm, position", "position"};
constexpr Table points_table{"points", "realm, name, template, description, value",
                             "realm, name", "name"};
constexpr Table ports_table{"ports", "realm, handle, name, capacity, host, copies, turn",
                            "realm, handle", "handle"};
constexpr Table connections_table{"connections", "realm, from_handle, to_handle, mode",
                                  "realm, from_handle, to_handle", "id"};
constexpr Table queued_table{"queued", "realm, port, queue, number, sender, data",
                             "realm, port, queue, number", "port, queue, number"};
constexpr Table declarations_table{"event_declarations", "realm, event_id, data",
                                   "realm, event_id", "event_id"};
constexpr Table events_table{"events", "realm, name, event_id, data, count", "realm, name",
                             "name"};
constexpr Table groups_table{"contention_groups", "realm, name, epoch", "realm, name",
                             "name"};
constexpr Table contenders_table{"contenders",
                                 "realm, group_name, name, priority, arrival, role, data",
                                 "realm, group_name, name", "group_name, name"};

// Writes to one table.
class TableWriter {
public:
    // The database must outlive this.
    TableWriter(const store::Database& database, const Table& table);

    // Puts a row in place of the one of the same key, if there is one.
    template <class... Values>
    void put(const Values&... values)
    {
        insert.bind(values...).run();
    }

    template <class... Key>
    void remove(const Key&... key)
    {
        erase.bind(key...).run();
    }

    void clear(std::int64_t realm) { erase_all.bind(realm).run(); }

private:
    store::Statement insert;
    store::Statement erase;
    store::Statement erase_all;
};

// Reads a table's rows of one realm.
class TableReader {
public:
    TableReader(store::Database& database, const Table& table, std::int64_t realm);

    // Goes on to the next row; false when there is none. Throws store::StoreError when
    // it is not what was written.
    bool next();

    // Its columns, counted from 0.
    const store::Statement& row() const { return rows; }

private:
    store::Database& database;
    const Table& table;
    store::Statement rows;
    int checked; // the column that tells whether the row is whole
};

// Gives SQL the function checksum(...) of all its arguments.
void add_checksum(store::Database& database);

} // namespace velmo::journal

#endif
