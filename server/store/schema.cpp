#include "server/store/schema.h"

namespace velmo::store {

namespace {

// A snapshot's rows are deleted with it. Their order is that of their ids.
constexpr const char* tables = R"(
CREATE TABLE snapshots (
    id       INTEGER PRIMARY KEY,
    realm    TEXT NOT NULL, -- empty: the unnamed one
    service  TEXT NOT NULL, -- templates, points or ports
    made     TEXT NOT NULL DEFAULT (strftime('%Y-%m-%dT%H:%M:%SZ', 'now')),
    UNIQUE (realm, service)
);

CREATE TABLE templates (
    id           INTEGER PRIMARY KEY,
    snapshot     INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    name         TEXT NOT NULL,
    kind         TEXT NOT NULL,
    size         INTEGER, -- bytes; NULL: not fixed
    max_size     INTEGER, -- bytes; NULL: no limit
    initial      TEXT,    -- as configuration files have it; NULL: no data
    description  TEXT NOT NULL
);
CREATE INDEX templates_of_snapshot ON templates (snapshot);

CREATE TABLE points (
    id           INTEGER PRIMARY KEY,
    snapshot     INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    name         TEXT NOT NULL,
    template     TEXT NOT NULL,
    description  TEXT NOT NULL,
    value        BLOB -- NULL: no data
);
CREATE INDEX points_of_snapshot ON points (snapshot);

CREATE TABLE ports (
    id        INTEGER PRIMARY KEY,
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    handle    INTEGER NOT NULL,
    name      TEXT NOT NULL,
    capacity  INTEGER NOT NULL, -- packets
    host      TEXT NOT NULL,    -- empty: none
    copies    INTEGER NOT NULL, -- 1: each receiver gets a copy; 0: they take turns
    turn      INTEGER NOT NULL  -- the receiver to begin with where they take turns
);
CREATE INDEX ports_of_snapshot ON ports (snapshot);

CREATE TABLE connections (
    id           INTEGER PRIMARY KEY,
    snapshot     INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    from_handle  INTEGER NOT NULL,
    to_handle    INTEGER NOT NULL,
    mode         INTEGER NOT NULL
);
CREATE INDEX connections_of_snapshot ON connections (snapshot);

CREATE TABLE packets (
    id        INTEGER PRIMARY KEY, -- the oldest first
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    handle    INTEGER NOT NULL, -- of the port where it is queued
    sender    INTEGER NOT NULL, -- handle
    data      BLOB NOT NULL
);
CREATE INDEX packets_of_snapshot ON packets (snapshot);

CREATE TABLE replies (
    id        INTEGER PRIMARY KEY, -- the oldest first
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    handle    INTEGER NOT NULL, -- of the port where it is queued
    sender    INTEGER NOT NULL, -- handle
    data      BLOB NOT NULL
);
CREATE INDEX replies_of_snapshot ON replies (snapshot);

CREATE TABLE unanswered ( -- packets that were received and may still be answered
    id        INTEGER PRIMARY KEY, -- the oldest first
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    handle    INTEGER NOT NULL, -- of the port where it was received
    sender    INTEGER NOT NULL  -- handle
);
CREATE INDEX unanswered_of_snapshot ON unanswered (snapshot);

CREATE TABLE event_declarations (
    id        INTEGER PRIMARY KEY,
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    event_id  INTEGER NOT NULL,
    data      BLOB
);
CREATE INDEX event_declarations_of_snapshot ON event_declarations (snapshot);

CREATE TABLE events (
    id        INTEGER PRIMARY KEY,
    snapshot  INTEGER NOT NULL REFERENCES snapshots ON DELETE CASCADE,
    name      TEXT NOT NULL,
    event_id  INTEGER NOT NULL,
    count     INTEGER NOT NULL, -- times raised since it was cleared
    data      BLOB              -- that it was last raised with
);
CREATE INDEX events_of_snapshot ON events (snapshot);
)";

bool is_empty(Database& database)
{
    return database.number("PRAGMA application_id") == 0 &&
           database.number("PRAGMA user_version") == 0 &&
           database.number("SELECT count(*) FROM sqlite_schema") == 0;
}

void set(Database& database, const char* pragma, std::int64_t value)
{
    database.execute(
        ("PRAGMA " + std::string(pragma) + " = " + std::to_string(value)).c_str());
}

void create(Database& database, const Schema& schema)
{
    Transaction transaction(database, Transaction::Kind::write);
    database.execute(schema.tables);
    set(database, "application_id", schema.application);
    set(database, "user_version", schema.version);
    transaction.commit();
}

void check(Database& database, const Schema& schema)
{
    if (database.number("PRAGMA application_id") != schema.application)
        database.fail("it belongs to another program");
    const std::int64_t found = database.number("PRAGMA user_version");
    if (found > schema.version)
        database.fail("a newer velmod wrote it (format " + std::to_string(found) +
                      "; this one reads up to " + std::to_string(schema.version) + ")");
    if (found < 1)
        database.fail("its format is unknown (" + std::to_string(found) + ")");
    Statement pages(database, "PRAGMA quick_check(1)");
    if (!pages.step() || pages.text(0) != "ok")
        database.fail("it is damaged: " + pages.text(0));
}

} // namespace

const Schema snapshot_schema{0x566C6D6F, 1, tables}; // "Vlmo"

void open_schema(Database& database, const Schema& schema)
{
    if (is_empty(database))
        create(database, schema);
    else
        check(database, schema);
}

} // namespace velmo::store
