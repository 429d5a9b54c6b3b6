#include "server/journal/state_tables.h"

#include <sqlite3.h>
#include <zlib.h>

#include <algorithm>
#include <string_view>

namespace velmo::journal {

namespace {

constexpr const char* tables = R"(
-- Every row but those of realms has a checksum of its other columns.
CREATE TABLE realms (
    id     INTEGER PRIMARY KEY,
    name   TEXT NOT NULL UNIQUE, -- empty: the unnamed one
    begun  INTEGER NOT NULL DEFAULT 0 -- 1: what it began with has been written
);

CREATE TABLE templates (
    realm        INTEGER NOT NULL REFERENCES realms,
    position     INTEGER NOT NULL,
    name         TEXT NOT NULL,
    kind         TEXT NOT NULL,
    size         INTEGER, -- bytes; NULL: not fixed
    max_size     INTEGER, -- bytes; NULL: no limit
    initial      TEXT,    -- as configuration files have it; NULL: no data
    description  TEXT NOT NULL,
    checksum     INTEGER NOT NULL,
    PRIMARY KEY (realm, position)
) WITHOUT ROWID;

CREATE TABLE points (
    realm        INTEGER NOT NULL REFERENCES realms,
    name         TEXT NOT NULL,
    template     TEXT NOT NULL,
    description  TEXT NOT NULL,
    value        BLOB, -- NULL: no data
    checksum     INTEGER NOT NULL,
    PRIMARY KEY (realm, name)
) WITHOUT ROWID;

CREATE TABLE ports (
    realm     INTEGER NOT NULL REFERENCES realms,
    handle    INTEGER NOT NULL,
    name      TEXT NOT NULL,
    capacity  INTEGER NOT NULL, -- packets
    host      TEXT NOT NULL,    -- empty: none
    copies    INTEGER NOT NULL, -- 1: each receiver gets a copy; 0: they take turns
    turn      INTEGER NOT NULL, -- the receiver to begin with where they take turns
    checksum  INTEGER NOT NULL,
    PRIMARY KEY (realm, handle)
) WITHOUT ROWID;

CREATE TABLE connections (
    id           INTEGER PRIMARY KEY, -- in the order of connecting
    realm        INTEGER NOT NULL REFERENCES realms,
    from_handle  INTEGER NOT NULL,
    to_handle    INTEGER NOT NULL,
    mode         INTEGER NOT NULL,
    checksum     INTEGER NOT NULL,
    UNIQUE (realm, from_handle, to_handle)
);

CREATE TABLE queued (
    realm     INTEGER NOT NULL REFERENCES realms,
    port      INTEGER NOT NULL, -- handle
    queue     INTEGER NOT NULL, -- 0: packets, 1: replies, 2: packets to be answered
    number    INTEGER NOT NULL, -- the oldest has the lowest
    sender    INTEGER NOT NULL, -- handle
    data      BLOB,             -- NULL for packets to be answered
    checksum  INTEGER NOT NULL,
    PRIMARY KEY (realm, port, queue, number)
) WITHOUT ROWID;

CREATE TABLE event_declarations (
    realm     INTEGER NOT NULL REFERENCES realms,
    event_id  INTEGER NOT NULL,
    data      BLOB NOT NULL,
    checksum  INTEGER NOT NULL,
    PRIMARY KEY (realm, event_id)
) WITHOUT ROWID;

CREATE TABLE events (
    realm     INTEGER NOT NULL REFERENCES realms,
    name      TEXT NOT NULL,
    event_id  INTEGER NOT NULL,
    data      BLOB NOT NULL,    -- that it was last raised with
    count     INTEGER NOT NULL, -- times raised since it was cleared
    checksum  INTEGER NOT NULL,
    PRIMARY KEY (realm, name)
) WITHOUT ROWID;

CREATE TABLE contention_groups (
    realm     INTEGER NOT NULL REFERENCES realms,
    name      TEXT NOT NULL, -- empty: of groups that were forgotten
    epoch     INTEGER NOT NULL,
    checksum  INTEGER NOT NULL,
    PRIMARY KEY (realm, name)
) WITHOUT ROWID;

CREATE TABLE contenders (
    realm       INTEGER NOT NULL REFERENCES realms,
    group_name  TEXT NOT NULL,
    name        TEXT NOT NULL,
    priority    INTEGER NOT NULL,
    arrival     INTEGER NOT NULL, -- the first that registered has the lowest
    role        TEXT NOT NULL,
    data        BLOB NOT NULL,
    checksum    INTEGER NOT NULL,
    PRIMARY KEY (realm, group_name, name)
) WITHOUT ROWID;
)";

using Text = std::string;

int count_of(const std::string_view names)
{
    return static_cast<int>(std::count(names.begin(), names.end(), ',')) + 1;
}

// "?1, ?2, ..."
Text parameters(int count)
{
    Text text;
    for (int i = 1; i <= count; ++i)
        text.append(i == 1 ? "?" : ", ?").append(std::to_string(i));
    return text;
}

Text insertion(const Table& table)
{
    const Text values = parameters(count_of(table.columns));
    return Text("INSERT OR REPLACE INTO ") + table.name + " (" + table.columns +
           ", checksum) VALUES (" + values + ", checksum(" + values + "))";
}

Text removal(const Table& table)
{
    return Text("DELETE FROM ") + table.name + " WHERE (" + table.key + ") = (" +
           parameters(count_of(table.key)) + ")";
}

Text selection(const Table& table)
{
    return Text("SELECT ") + table.columns + ", checksum = checksum(" + table.columns +
           ") FROM " + table.name + " WHERE realm = ? ORDER BY " + table.order;
}

// With the types and lengths, so that nothing can move from one value to the next.
void checksum(sqlite3_context* context, int count, sqlite3_value** values)
{
    uLong sum = crc32(0, nullptr, 0);
    const auto add = [&sum](const void* bytes, std::size_t size) {
        sum = crc32_z(sum, static_cast<const Bytef*>(bytes), size);
    };
    for (int i = 0; i < count; ++i) {
        const int type = sqlite3_value_type(values[i]);
        add(&type, sizeof type);
        if (type == SQLITE_INTEGER) {
            const sqlite3_int64 number = sqlite3_value_int64(values[i]);
            add(&number, sizeof number);
        } else if (type != SQLITE_NULL) {
            const void* bytes = sqlite3_value_blob(values[i]);
            const int size = sqlite3_value_bytes(values[i]);
            add(&size, sizeof size);
            add(bytes, static_cast<std::size_t>(size));
        }
    }
    sqlite3_result_int64(context, static_cast<sqlite3_int64>(sum));
}

} // namespace

const store::Schema state_schema{0x566C6D4A, 1, tables}; // "VlmJ"

TableWriter::TableWriter(const store::Database& database, const Table& table)
    : insert(database, insertion(table)), erase(database, removal(table)),
      erase_all(database, Text("DELETE FROM ") + table.name + " WHERE realm = ?")
{
}

TableReader::TableReader(store::Database& its_database, const Table& its_table,
                         std::int64_t realm)
    : database(its_database), table(its_table), rows(database, selection(table)),
      checked(count_of(table.columns))
{
    rows.bind(realm);
}

bool TableReader::next()
{
    if (!rows.step())
        return false;
    if (rows.number<std::int64_t>(checked) != 1)
        database.fail(Text("a row of table ") + table.name + " is damaged");
    return true;
}

void add_checksum(store::Database& database)
{
    constexpr int any_count = -1;
    const int code =
        sqlite3_create_function_v2(database.handle(), "checksum", any_count,
                                   SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                                   nullptr, checksum, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        database.fail();
}

} // namespace velmo::journal
