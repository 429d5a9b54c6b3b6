// All ports of a realm and the connections between them: what a PortService works on,
// under its lock, and what a snapshot replaces as a whole.
#ifndef VELMO_SERVER_MODEL_PORT_TABLE_H
#define VELMO_SERVER_MODEL_PORT_TABLE_H

#include <memory>
#include <string_view>
#include <unordered_map>

#include "server/model/images.h"
#include "server/model/port.h"

namespace velmo::model {

// The mode of that number, if there is one.
std::optional<ConnectionMode> known_mode(std::uint32_t number);

class PortTable {
public:
    // The ports' queues hold up to queue_bytes of data each.
    explicit PortTable(std::size_t queue_bytes) : max_queue_bytes(queue_bytes) {}

    // Null when there is none.
    Port* find(Handle handle) const;
    Port* find(std::string_view name) const;

    // Adds a port; null when the name or the handle is in use.
    Port* add(std::string_view name, Handle handle, std::uint32_t capacity);

    // VL_OK, or ALREADY_CONNECTED: the two are connected, one of them is by an exclusive
    // connection, or is at all and this one is to be exclusive.
    vl_result connect(Port& from, Port& to, ConnectionMode mode);

    void disconnect(Connections::iterator connection);

    const std::unordered_map<Handle, std::unique_ptr<Port>>& all() const { return ports; }

    // In the order of connecting.
    const Connections& connections() const { return all_connections; }

    // Wakes everybody who waits at one of the ports.
    void wake_all();

    PortsImage image() const; // in the order of handles

    // Makes an empty table what an image says. False when the image cannot be one of a
    // table; then the table is of no use.
    bool fill(const PortsImage& image);

private:
    Port* restore(const PortImage& image);
    bool restore_queues(Port& port, const PortImage& image);

    const std::size_t max_queue_bytes;
    std::unordered_map<Handle, std::unique_ptr<Port>> ports;
    std::unordered_map<std::string_view, Port*> names; // views of the ports' names
    Connections all_connections;
};

} // namespace velmo::model

#endif
