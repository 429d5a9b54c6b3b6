#include "server/model/port_points.h"

#include "server/model/system_path.h"

namespace velmo::model {

namespace {

constexpr std::string_view folder = "$SYS/ports/";

constexpr SystemProperty<PortStatus> properties[] = {
    {"handle", [](const PortStatus& port) { return std::to_string(port.handle); }},
    {"capacity", [](const PortStatus& port) { return std::to_string(port.capacity); }},
    {"depth", [](const PortStatus& port) { return std::to_string(port.depth); }},
    {"bytes", [](const PortStatus& port) { return std::to_string(port.bytes); }},
    {"replies", [](const PortStatus& port) { return std::to_string(port.replies); }},
    {"waiting", [](const PortStatus& port) { return std::to_string(port.waiting); }},
    {"host", [](const PortStatus& port) { return port.host; }},
};

} // namespace

void PortPoints::list(std::vector<std::string>& names) const
{
    list_properties(names, folder, ports.names(), properties);
}

std::optional<std::string> PortPoints::read(std::string_view name) const
{
    const std::optional<SystemPath> path = split_below(folder, name);
    if (!path)
        return std::nullopt;
    return read_property(ports.status(path->name), path->property, properties);
}

} // namespace velmo::model
