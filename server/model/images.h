// What snapshots hold: plain values that describe one moment of a service.
#ifndef VELMO_SERVER_MODEL_IMAGES_H
#define VELMO_SERVER_MODEL_IMAGES_H

#include <string>
#include <vector>

#include "server/model/data.h"

namespace velmo::model {

struct PointImage {
    std::string name;
    std::string template_name;
    std::string description;
    Data value; // null: no data
};

struct PacketImage {
    Data data;
    Handle sender = 0;
    std::int64_t number = 0; // that its queue knows it by; rises from the oldest on
};

struct PortImage {
    std::string name;
    Handle handle = 0;
    std::uint32_t capacity = 0; // packets
    std::string host;
    bool copies = true;
    std::uint64_t turn = 0;           // the receiver to begin with when there are no copies
    std::vector<PacketImage> packets; // oldest first
    std::vector<PacketImage> replies;
    std::vector<Handle> unanswered;    // senders, oldest first
    std::int64_t questions_before = 0; // those unanswered were received after so many
};

struct ConnectionImage {
    Handle from = 0;
    Handle to = 0;
    std::uint32_t mode = 0;
};

// Everything that refers to a port does so by its handle.
struct PortsImage {
    std::vector<PortImage> ports;
    std::vector<ConnectionImage> connections; // in the order of connecting
};

struct EventDeclarationImage {
    std::uint32_t id = 0;
    Data data;
};

struct EventImage {
    std::string name;
    std::uint32_t id = 0;
    Data data; // that it was last raised with
    std::uint64_t count = 0;
};

struct EventsImage {
    std::vector<EventDeclarationImage> declarations;
    std::vector<EventImage> events;
};

struct ContenderImage {
    std::string group;
    std::string name;
    std::int32_t priority = 0;
    std::uint64_t arrival = 0; // rises from one that registers to the next
    std::string role;
    Data data;
};

struct GroupImage {
    std::string name; // empty: of groups that were forgotten, the highest epoch
    std::uint64_t epoch = 0;
};

struct ContentionImage {
    std::vector<GroupImage> groups;
    std::vector<ContenderImage> contenders;
};

} // namespace velmo::model

#endif
