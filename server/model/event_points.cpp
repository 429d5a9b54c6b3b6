#include "server/model/event_points.h"

#include "server/model/system_path.h"

namespace velmo::model {

namespace {

constexpr std::string_view folder = "$SYS/events/";

constexpr SystemProperty<EventStatus> properties[] = {
    {"id", [](const EventStatus& event) { return std::to_string(event.id); }},
    {"count", [](const EventStatus& event) { return std::to_string(event.count); }},
    {"data", [](const EventStatus& event) { return as_text(event.data); }},
};

} // namespace

void EventPoints::list(std::vector<std::string>& names) const
{
    list_properties(names, folder, events.names(), properties);
}

std::optional<std::string> EventPoints::read(std::string_view name) const
{
    const std::optional<SystemPath> path = split_below(folder, name);
    if (!path)
        return std::nullopt;
    return read_property(events.status(path->name), path->property, properties);
}

} // namespace velmo::model
