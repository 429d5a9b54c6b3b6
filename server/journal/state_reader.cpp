#include "server/journal/state_reader.h"

#include <unordered_map>

#include "server/journal/state_tables.h"

namespace velmo::journal {

namespace {

using model::Handle;

template <class Take>
void read_table(store::Database& database, const Table& table, RealmKey realm, Take take)
{
    TableReader reader(database, table, realm);
    while (reader.next())
        take(reader.row());
}

std::optional<std::uint64_t> size_in(const store::Statement& row, int column)
{
    return row.is_null(column) ? std::nullopt
                               : std::optional(row.number<std::uint64_t>(column));
}

model::TemplateDefinition template_in(const store::Statement& row)
{
    model::TemplateDefinition definition;
    definition.name = row.text(2);
    definition.kind = row.text(3);
    definition.size = size_in(row, 4);
    definition.max_size = size_in(row, 5);
    if (!row.is_null(6))
        definition.initial = row.text(6);
    definition.description = row.text(7);
    return definition;
}

void put_in_queue(model::PortImage& port, const store::Statement& row)
{
    const auto number = row.number<std::int64_t>(3);
    const auto sender = row.number<Handle>(4);
    switch (static_cast<model::Queue>(row.number<int>(2))) {
    case model::Queue::packets:
        port.packets.push_back({row.data(5), sender, number});
        break;
    case model::Queue::replies:
        port.replies.push_back({row.data(5), sender, number});
        break;
    case model::Queue::unanswered:
        if (port.unanswered.empty())
            port.questions_before = number;
        port.unanswered.push_back(sender);
        break;
    }
}

model::PortsImage read_ports(store::Database& database, RealmKey realm)
{
    model::PortsImage image;
    std::unordered_map<Handle, std::size_t> places;
    read_table(database, ports_table, realm, [&](const store::Statement& row) {
        model::PortImage port;
        port.handle = row.number<Handle>(1);
        port.name = row.text(2);
        port.capacity = row.number<std::uint32_t>(3);
        port.host = row.text(4);
        port.copies = row.number<int>(5) != 0;
        port.turn = row.number<std::uint64_t>(6);
        places.emplace(port.handle, image.ports.size());
        image.ports.push_back(std::move(port));
    });
    read_table(database, queued_table, realm, [&](const store::Statement& row) {
        const auto place = places.find(row.number<Handle>(1));
        if (place == places.end())
            database.fail("a packet at a port that is not there");
        put_in_queue(image.ports[place->second], row);
    });
    read_table(database, connections_table, realm, [&](const store::Statement& row) {
        image.connections.push_back(
            {row.number<Handle>(1), row.number<Handle>(2), row.number<std::uint32_t>(3)});
    });
    return image;
}

} // namespace

RealmState read_state(store::Database& database, RealmKey realm)
{
    RealmState state;
    store::Statement begun(database, "SELECT begun FROM realms WHERE id = ?");
    begun.bind(realm);
    state.begun = begun.step() && begun.number<int>(0) != 0;

    read_table(database, templates_table, realm, [&](const store::Statement& row) {
        state.templates.push_back(template_in(row));
    });
    read_table(database, points_table, realm, [&](const store::Statement& row) {
        state.points.push_back({row.text(1), row.text(2), row.text(3), row.data(4)});
    });
    state.ports = read_ports(database, realm);
    read_table(database, declarations_table, realm, [&](const store::Statement& row) {
        state.events.declarations.push_back({row.number<std::uint32_t>(1), row.data(2)});
    });
    read_table(database, events_table, realm, [&](const store::Statement& row) {
        state.events.events.push_back({row.text(1), row.number<std::uint32_t>(2),
                                       row.data(3), row.number<std::uint64_t>(4)});
    });
    read_table(database, groups_table, realm, [&](const store::Statement& row) {
        state.contention.groups.push_back({row.text(1), row.number<std::uint64_t>(2)});
    });
    read_table(database, contenders_table, realm, [&](const store::Statement& row) {
        state.contention.contenders.push_back(
            {row.text(1), row.text(2), row.number<std::int32_t>(3),
             row.number<std::uint64_t>(4), row.text(5), row.data(6)});
    });
    return state;
}

} // namespace velmo::journal
