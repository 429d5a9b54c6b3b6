// Bytes as the services keep them.
#ifndef VELMO_SERVER_MODEL_DATA_H
#define VELMO_SERVER_MODEL_DATA_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmo::model {

using Bytes = std::vector<std::uint8_t>;

// Never changed once made: copies share their bytes.
using Data = std::shared_ptr<const Bytes>;

inline std::string as_text(const Data& data)
{
    return std::string(data->begin(), data->end());
}

// A port's number, chosen by the client that creates it.
using Handle = std::uint32_t;

constexpr std::size_t max_name_bytes = 255; // of ports, points, events, groups ...

} // namespace velmo::model

#endif
