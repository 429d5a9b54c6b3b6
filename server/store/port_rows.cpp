#include "server/store/port_rows.h"

#include <unordered_map>

namespace velmo::store {

namespace {

using model::Handle;

// What is queued at ports is in tables of its own, by the handle of the port.
class PortRows {
public:
    PortRows(Database& its_database, std::vector<model::PortImage>& ports)
        : database(its_database)
    {
        for (model::PortImage& port : ports)
            by_handle.emplace(port.handle, &port);
    }

    void read_packets(const char* query, std::int64_t snapshot,
                      std::vector<model::PacketImage> model::PortImage::*queue)
    {
        Statement rows(database, query);
        rows.bind(snapshot);
        while (rows.step())
            (port(rows.number<Handle>(0)).*queue)
                .push_back({packet_data(rows), rows.number<Handle>(1)});
    }

    void read_unanswered(std::int64_t snapshot)
    {
        Statement rows(
            database,
            "SELECT handle, sender FROM unanswered WHERE snapshot = ? ORDER BY id");
        rows.bind(snapshot);
        while (rows.step())
            port(rows.number<Handle>(0)).unanswered.push_back(rows.number<Handle>(1));
    }

private:
    model::Data packet_data(const Statement& rows) const
    {
        model::Data data = rows.data(2);
        if (!data)
            database.fail("a packet without data");
        return data;
    }

    model::PortImage& port(Handle handle) const
    {
        const auto found = by_handle.find(handle);
        if (found == by_handle.end())
            database.fail("a packet at a port that is not there");
        return *found->second;
    }

    Database& database;
    std::unordered_map<Handle, model::PortImage*> by_handle;
};

void write_packets(Statement& insert, std::int64_t snapshot, Handle handle,
                   const std::vector<model::PacketImage>& queue)
{
    for (const model::PacketImage& packet : queue)
        insert.bind(snapshot, handle, packet.sender, packet.data).run();
}

void write_events(Database& database, std::int64_t snapshot,
                  const model::EventsImage& image)
{
    Statement declaration(
        database,
        "INSERT INTO event_declarations (snapshot, event_id, data) VALUES (?, ?, ?)");
    for (const model::EventDeclarationImage& declared : image.declarations)
        declaration.bind(snapshot, declared.id, declared.data).run();
    Statement event(database, "INSERT INTO events (snapshot, name, event_id, count, data) "
                              "VALUES (?, ?, ?, ?, ?)");
    for (const model::EventImage& added : image.events)
        event.bind(snapshot, added.name, added.id, added.count, added.data).run();
}

model::EventsImage read_events(Database& database, std::int64_t snapshot)
{
    model::EventsImage image;
    Statement declarations(
        database,
        "SELECT event_id, data FROM event_declarations WHERE snapshot = ? ORDER BY id");
    declarations.bind(snapshot);
    while (declarations.step())
        image.declarations.push_back(
            {declarations.number<std::uint32_t>(0), declarations.data(1)});
    Statement events(database, "SELECT name, event_id, data, count FROM events "
                               "WHERE snapshot = ? ORDER BY id");
    events.bind(snapshot);
    while (events.step())
        image.events.push_back({events.text(0), events.number<std::uint32_t>(1),
                                events.data(2), events.number<std::uint64_t>(3)});
    return image;
}

} // namespace

void write_ports(Database& database, std::int64_t snapshot, const PortsSnapshot& image)
{
    Statement port(database, "INSERT INTO ports (snapshot, handle, name, capacity, host, "
                             "copies, turn) VALUES (?, ?, ?, ?, ?, ?, ?)");
    Statement packet(
        database,
        "INSERT INTO packets (snapshot, handle, sender, data) VALUES (?, ?, ?, ?)");
    Statement reply(
        database,
        "INSERT INTO replies (snapshot, handle, sender, data) VALUES (?, ?, ?, ?)");
    Statement unanswered(
        database, "INSERT INTO unanswered (snapshot, handle, sender) VALUES (?, ?, ?)");
    for (const model::PortImage& each : image.ports.ports) {
        port.bind(snapshot, each.handle, each.name, each.capacity, each.host, each.copies,
                  each.turn)
            .run();
        write_packets(packet, snapshot, each.handle, each.packets);
        write_packets(reply, snapshot, each.handle, each.replies);
        for (const Handle sender : each.unanswered)
            unanswered.bind(snapshot, each.handle, sender).run();
    }
    Statement connection(database, "INSERT INTO connections (snapshot, from_handle, "
                                   "to_handle, mode) VALUES (?, ?, ?, ?)");
    for (const model::ConnectionImage& each : image.ports.connections)
        connection.bind(snapshot, each.from, each.to, each.mode).run();
    write_events(database, snapshot, image.events);
}

PortsSnapshot read_ports(Database& database, std::int64_t snapshot)
{
    PortsSnapshot image;
    Statement ports(database, "SELECT name, handle, capacity, host, copies, turn "
                              "FROM ports WHERE snapshot = ? ORDER BY id");
    ports.bind(snapshot);
    while (ports.step()) {
        model::PortImage port;
        port.name = ports.text(0);
        port.handle = ports.number<Handle>(1);
        port.capacity = ports.number<std::uint32_t>(2);
        port.host = ports.text(3);
        port.copies = ports.number<std::uint32_t>(4) != 0;
        port.turn = ports.number<std::uint64_t>(5);
        image.ports.ports.push_back(std::move(port));
    }
    PortRows rows(database, image.ports.ports);
    rows.read_packets(
        "SELECT handle, sender, data FROM packets WHERE snapshot = ? ORDER BY id", snapshot,
        &model::PortImage::packets);
    rows.read_packets(
        "SELECT handle, sender, data FROM replies WHERE snapshot = ? ORDER BY id", snapshot,
        &model::PortImage::replies);
    rows.read_unanswered(snapshot);

    Statement connections(database, "SELECT from_handle, to_handle, mode FROM connections "
                                    "WHERE snapshot = ? ORDER BY id");
    connections.bind(snapshot);
    while (connections.step())
        image.ports.connections.push_back({connections.number<Handle>(0),
                                           connections.number<Handle>(1),
                                           connections.number<std::uint32_t>(2)});
    image.events = read_events(database, snapshot);
    return image;
}

} // namespace velmo::store
