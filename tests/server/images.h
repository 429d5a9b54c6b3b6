// Comparing images, byte for byte, and making data.
#ifndef VELMO_TESTS_SERVER_IMAGES_H
#define VELMO_TESTS_SERVER_IMAGES_H

#include <string>
#include <tuple>

#include "server/model/images.h"
#include "server/model/name_table.h"

namespace velmo::model {

// Data is a shared pointer: the operator of the pointers would win.
inline bool same(const Data& a, const Data& b)
{
    return a && b ? *a == *b : a == b;
}

inline bool operator==(const PointImage& a, const PointImage& b)
{
    return std::tie(a.name, a.template_name, a.description) ==
               std::tie(b.name, b.template_name, b.description) &&
           same(a.value, b.value);
}

inline bool operator==(const PacketImage& a, const PacketImage& b)
{
    return a.sender == b.sender && same(a.data, b.data);
}

inline bool operator==(const PortImage& a, const PortImage& b)
{
    const auto fields = [](const PortImage& p) {
        return std::tie(p.name, p.handle, p.capacity, p.host, p.copies, p.turn, p.packets,
                        p.replies, p.unanswered);
    };
    return fields(a) == fields(b);
}

inline bool operator==(const ConnectionImage& a, const ConnectionImage& b)
{
    return std::tie(a.from, a.to, a.mode) == std::tie(b.from, b.to, b.mode);
}

inline bool operator==(const PortsImage& a, const PortsImage& b)
{
    return std::tie(a.ports, a.connections) == std::tie(b.ports, b.connections);
}

inline bool operator==(const EventDeclarationImage& a, const EventDeclarationImage& b)
{
    return a.id == b.id && same(a.data, b.data);
}

inline bool operator==(const EventImage& a, const EventImage& b)
{
    return std::tie(a.name, a.id, a.count) == std::tie(b.name, b.id, b.count) &&
           same(a.data, b.data);
}

inline bool operator==(const NameTable& a, const std::vector<std::string>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

inline bool operator==(const EventsImage& a, const EventsImage& b)
{
    return std::tie(a.declarations, a.events) == std::tie(b.declarations, b.events);
}

} // namespace velmo::model

namespace velmo::tests {

inline model::Data bytes_of(const std::string& text)
{
    return std::make_shared<const model::Bytes>(text.begin(), text.end());
}

// Every byte there is, and then some: of this length, different for each variant.
inline model::Data binary(std::size_t length, std::size_t variant = 0)
{
    std::vector<std::uint8_t> bytes(length);
    for (std::size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<std::uint8_t>((i + variant) * 2654435761u >> 13);
    return std::make_shared<const model::Bytes>(bytes.begin(), bytes.end());
}

} // namespace velmo::tests

#endif
