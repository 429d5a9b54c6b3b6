#include "server/model/contention_points.h"

#include <algorithm>

#include "server/model/system_path.h"

namespace velmo::model {

namespace {

constexpr std::string_view folder = "$SYS/contention/";
constexpr std::string_view contenders = "contenders";
constexpr std::string_view token = "token";

std::string master_of(const GroupStatus& group)
{
    return group.contenders.empty() ? "" : group.contenders.front().name;
}

std::string list_of(const GroupStatus& group)
{
    std::string lines;
    for (const ContenderStatus& contender : group.contenders)
        lines += escaped(contender.name) + "\n";
    return lines;
}

constexpr SystemProperty<GroupStatus> of_groups[] = {
    {"master", master_of},
    {"epoch", [](const GroupStatus& group) { return std::to_string(group.epoch); }},
    {"state",
     [](const GroupStatus& group) {
         return std::to_string(group.epoch) + " " + master_of(group);
     }},
    {contenders, list_of},
};

constexpr SystemProperty<ContenderStatus> of_contenders[] = {
    {"priority",
     [](const ContenderStatus& contender) { return std::to_string(contender.priority); }},
    {"role", [](const ContenderStatus& contender) { return contender.role; }},
    {"data", [](const ContenderStatus& contender) { return as_text(contender.data); }},
    {"lease",
     [](const ContenderStatus& contender) {
         return std::to_string(contender.lease_left.count());
     }},
};

std::optional<std::string> read_contender(const GroupStatus& group, std::string_view name,
                                          std::string_view property)
{
    const std::optional<std::string> plain = unescaped(name);
    const auto found = std::find_if(
        group.contenders.begin(), group.contenders.end(),
        [&](const ContenderStatus& contender) { return contender.name == plain; });
    if (found == group.contenders.end())
        return std::nullopt;
    if (property == token && found == group.contenders.begin())
        return std::to_string(group.epoch);
    return read_property(std::optional(*found), property, of_contenders);
}

} // namespace

void ContentionPoints::list(std::vector<std::string>& names) const
{
    const std::vector<std::string> groups = contention.groups();
    list_properties(names, folder, groups, of_groups);
    for (const std::string& name : groups) {
        const std::optional<GroupStatus> group = contention.status(name);
        if (!group || group->contenders.empty())
            continue;
        const std::string inner =
            std::string(folder) + name + "/" + std::string(contenders) + "/";
        std::vector<std::string> inside;
        for (const ContenderStatus& contender : group->contenders)
            inside.push_back(escaped(contender.name));
        list_properties(names, inner, inside, of_contenders);
        names.push_back(inner + inside.front() + "/" + std::string(token));
    }
}

std::optional<std::string> ContentionPoints::read(std::string_view name) const
{
    const std::optional<SystemPath> path = split_below(folder, name);
    if (!path)
        return std::nullopt;
    // The property tells whose it is, also below a group named "a/contenders/b": groups
    // and contenders have none in common, and an escaped name has no "/".
    const std::optional<SystemPath> contender = split_last(path->name);
    const std::optional<SystemPath> group =
        contender ? split_last(contender->name) : std::nullopt;
    if (group && group->property == contenders)
        if (const auto status = contention.status(group->name))
            if (auto value = read_contender(*status, contender->property, path->property))
                return value;
    return read_property(contention.status(path->name), path->property, of_groups);
}

} // namespace velmo::model
