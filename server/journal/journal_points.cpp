#include "server/journal/journal_points.h"

#include "server/model/system_path.h"

namespace velmo::journal {

namespace {

constexpr std::string_view folder = "$SYS/";
constexpr const char* journal = "journal";

constexpr model::SystemProperty<Status> properties[] = {
    {"state",
     [](const Status& status) -> std::string {
         return status.failing.empty() ? "writing" : "failing";
     }},
    {"reason", [](const Status& status) { return status.failing; }},
    {"changes", [](const Status& status) { return std::to_string(status.changes); }},
    {"groups", [](const Status& status) { return std::to_string(status.groups); }},
    {"failures", [](const Status& status) { return std::to_string(status.failures); }},
};

} // namespace

void JournalPoints::list(std::vector<std::string>& names) const
{
    model::list_properties(names, folder, {journal}, properties);
}

std::optional<std::string> JournalPoints::read(std::string_view name) const
{
    const std::optional<model::SystemPath> path = model::split_below(folder, name);
    if (!path || path->name != journal)
        return std::nullopt;
    return model::read_property(std::optional(commit.status()), path->property, properties);
}

} // namespace velmo::journal
