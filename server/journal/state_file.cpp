#include "server/journal/state_file.h"

#include "server/journal/log_check.h"
#include "server/journal/state_reader.h"
#include "server/journal/state_tables.h"
#include "server/store/data_folder.h"

namespace velmo::journal {

namespace {

namespace fs = std::filesystem;

constexpr const char* kind = "state file";

// Nobody else has the file, so that its log needs no memory to share. A transaction is
// safe when its part of the log is. Where the log has become long by loading a snapshot,
// it is cut once its content is in the file. To check the keys of realms, which are always
// there, would take half of a transaction's time: SQLite copies each page before, to undo
// the one statement that might fail.
constexpr const char* settings = R"(
    PRAGMA locking_mode = EXCLUSIVE;
    PRAGMA journal_mode = WAL;
    PRAGMA journal_size_limit = 67108864;
    PRAGMA foreign_keys = OFF;
)";

fs::path beside(const fs::path& file, const char* suffix)
{
    return file.string() + suffix;
}

} // namespace

fs::path state_file(const fs::path& folder, const std::string& server)
{
    return folder / (store::file_name(server) + ".state");
}

// A statement for each kind of change.
class StateFile::Writer {
public:
    explicit Writer(store::Database& its_database) : database(its_database) {}

    void write(const Entry& entry)
    {
        realm = entry.realm;
        std::visit(*this, entry.change);
    }

    void operator()(const model::PointImage& point)
    {
        points.put(realm, point.name, point.template_name, point.description, point.value);
    }
    void operator()(const model::PointRemoved& point) { points.remove(realm, point.name); }
    void operator()(const model::AllPointsRemoved&) { points.clear(realm); }

    void operator()(const model::PortChanged& port)
    {
        ports.put(realm, port.handle, port.name, port.capacity, port.host, port.copies,
                  port.turn);
    }
    void operator()(const model::ConnectionImage& connection)
    {
        connections.put(realm, connection.from, connection.to, connection.mode);
    }
    void operator()(const model::ConnectionRemoved& connection)
    {
        connections.remove(realm, connection.from, connection.to);
    }
    void operator()(const model::Queued& entry)
    {
        queued.put(realm, entry.port, static_cast<int>(entry.queue), entry.number,
                   entry.sender, entry.data);
    }
    void operator()(const model::Dequeued& entry)
    {
        queued.remove(realm, entry.port, static_cast<int>(entry.queue), entry.number);
    }
    void operator()(const model::AllPortsRemoved&)
    {
        for (TableWriter* table : {&ports, &connections, &queued})
            table->clear(realm);
    }

    void operator()(const model::EventDeclarationImage& declaration)
    {
        declarations.put(realm, declaration.id, declaration.data);
    }
    void operator()(const model::EventImage& event)
    {
        events.put(realm, event.name, event.id, event.data, event.count);
    }
    void operator()(const model::AllEventsRemoved&)
    {
        for (TableWriter* table : {&declarations, &events})
            table->clear(realm);
    }

    void operator()(const model::ContenderImage& contender)
    {
        contenders.put(realm, contender.group, contender.name, contender.priority,
                       contender.arrival, contender.role, contender.data);
    }
    void operator()(const model::ContenderRemoved& contender)
    {
        contenders.remove(realm, contender.group, contender.name);
    }
    void operator()(const model::GroupImage& group)
    {
        groups.put(realm, group.name, group.epoch);
    }
    void operator()(const model::GroupRemoved& group) { groups.remove(realm, group.name); }

    void operator()(const model::TemplatesChanged& changed)
    {
        templates.clear(realm);
        std::int64_t position = 0;
        for (const model::TemplateDefinition& each : changed.all)
            templates.put(realm, position++, each.name, each.kind, each.size, each.max_size,
                          each.initial, each.description);
        begun.bind(realm).run();
    }

private:
    store::Database& database;
    RealmKey realm = 0;
    TableWriter templates{database, templates_table};
    TableWriter points{database, points_table};
    TableWriter ports{database, ports_table};
    TableWriter connections{database, connections_table};
    TableWriter queued{database, queued_table};
    TableWriter declarations{database, declarations_table};
    TableWriter events{database, events_table};
    TableWriter groups{database, groups_table};
    TableWriter contenders{database, contenders_table};
    store::Statement begun{database, "UPDATE realms SET begun = 1 WHERE id = ?"};
};

StateFile::StateFile(const fs::path& folder, const std::string& server)
    : lock(store::in_folder(beside(state_file(folder, server), ".lock"))),
      database((check_log(beside(state_file(folder, server), "-wal")),
                state_file(folder, server)),
               kind)
{
    add_checksum(database);
    database.execute(settings);
    store::open_schema(database, state_schema);
    // A log of our own from here on: what an interruption left behind is gone with it.
    database.execute("PRAGMA wal_checkpoint(TRUNCATE)");
    store::sync_folder(folder);
}

StateFile::~StateFile() = default;

RealmKey StateFile::realm(const std::string& name)
{
    store::Transaction transaction(database, store::Transaction::Kind::write);
    store::Statement(database, "INSERT OR IGNORE INTO realms (name) VALUES (?)")
        .bind(name)
        .run();
    RealmKey key = 0;
    {
        store::Statement found(database, "SELECT id FROM realms WHERE name = ?");
        found.bind(name);
        found.step();
        key = found.number<RealmKey>(0);
    }
    transaction.commit();
    return key;
}

RealmState StateFile::load(RealmKey realm)
{
    const store::Transaction transaction(database, store::Transaction::Kind::read);
    return read_state(database, realm);
}

void StateFile::write(const Entries& entries)
{
    try {
        if (!writer)
            writer = std::make_unique<Writer>(database);
        store::Transaction transaction(database, store::Transaction::Kind::write);
        for (const Entry& entry : entries)
            writer->write(entry);
        transaction.commit();
    } catch (const std::exception&) { // with statements that are half bound, perhaps
        writer.reset();
        throw;
    }
}

} // namespace velmo::journal
