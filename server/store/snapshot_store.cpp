#include "server/store/snapshot_store.h"

#include "server/store/data_folder.h"
#include "server/store/port_rows.h"
#include "server/store/schema.h"

namespace velmo::store {

namespace {

namespace fs = std::filesystem;

constexpr const char* templates_part = "templates";
constexpr const char* points_part = "points";
constexpr const char* ports_part = "ports";

} // namespace

fs::path snapshot_file(const fs::path& folder, const std::string& server)
{
    return folder / (file_name(server) + ".db");
}

SnapshotStore::SnapshotStore(const fs::path& folder, const std::string& server)
    : database(in_folder(snapshot_file(folder, server)))
{
    open_schema(database, snapshot_schema);
    sync_folder(folder);
}

template <class Write>
void SnapshotStore::save(const std::string& realm, const char* service, Write write)
{
    const std::lock_guard lock(mutex);
    Transaction transaction(database, Transaction::Kind::write);
    Statement(database, "DELETE FROM snapshots WHERE realm = ? AND service = ?")
        .bind(realm, service)
        .run();
    Statement(database, "INSERT INTO snapshots (realm, service) VALUES (?, ?)")
        .bind(realm, service)
        .run();
    write(database.number("SELECT last_insert_rowid()"));
    transaction.commit();
}

template <class Read>
auto SnapshotStore::load(const std::string& realm, const char* service, Read read)
{
    const std::lock_guard lock(mutex);
    const Transaction transaction(database, Transaction::Kind::read);
    Statement snapshot(database,
                       "SELECT id FROM snapshots WHERE realm = ? AND service = ?");
    snapshot.bind(realm, service);
    std::optional<decltype(read(Key()))> result;
    if (snapshot.step())
        result = read(snapshot.number<Key>(0));
    return result;
}

void SnapshotStore::save_templates(const std::string& realm,
                                   const std::function<Templates()>& source)
{
    save(realm, templates_part, [&](Key snapshot) {
        Statement row(database, "INSERT INTO templates (snapshot, name, kind, size, "
                                "max_size, initial, description) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?)");
        for (const model::TemplateDefinition& each : source())
            row.bind(snapshot, each.name, each.kind, each.size, each.max_size, each.initial,
                     each.description)
                .run();
    });
}

void SnapshotStore::save_points(const std::string& realm,
                                const std::function<void(const VisitPoint&)>& source)
{
    save(realm, points_part, [&](Key snapshot) {
        Statement row(database, "INSERT INTO points (snapshot, name, template, "
                                "description, value) VALUES (?, ?, ?, ?, ?)");
        source([&](const model::PointImage& point) {
            row.bind(snapshot, point.name, point.template_name, point.description,
                     point.value)
                .run();
        });
    });
}

void SnapshotStore::save_ports(const std::string& realm,
                               const std::function<PortsSnapshot()>& source)
{
    save(realm, ports_part,
         [&](Key snapshot) { write_ports(database, snapshot, source()); });
}

std::optional<SnapshotStore::Templates>
SnapshotStore::load_templates(const std::string& realm)
{
    return load(realm, templates_part, [&](Key snapshot) {
        Statement rows(database, "SELECT name, kind, size, max_size, initial, description "
                                 "FROM templates WHERE snapshot = ? ORDER BY id");
        rows.bind(snapshot);
        Templates templates;
        while (rows.step()) {
            model::TemplateDefinition each;
            each.name = rows.text(0);
            each.kind = rows.text(1);
            if (!rows.is_null(2))
                each.size = rows.number<std::uint64_t>(2);
            if (!rows.is_null(3))
                each.max_size = rows.number<std::uint64_t>(3);
            if (!rows.is_null(4))
                each.initial = rows.text(4);
            each.description = rows.text(5);
            templates.push_back(std::move(each));
        }
        return templates;
    });
}

std::optional<SnapshotStore::Points> SnapshotStore::load_points(const std::string& realm)
{
    return load(realm, points_part, [&](Key snapshot) {
        Statement rows(database, "SELECT name, template, description, value FROM points "
                                 "WHERE snapshot = ? ORDER BY id");
        rows.bind(snapshot);
        Points points;
        while (rows.step())
            points.push_back({rows.text(0), rows.text(1), rows.text(2), rows.data(3)});
        return points;
    });
}

std::optional<PortsSnapshot> SnapshotStore::load_ports(const std::string& realm)
{
    return load(realm, ports_part,
                [&](Key snapshot) { return read_ports(database, snapshot); });
}

} // namespace velmo::store
