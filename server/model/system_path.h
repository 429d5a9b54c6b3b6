// The names of system points that belong to one thing: FOLDER NAME "/" PROPERTY.
//
// A name stands in them as it is, "/" included: the property is what comes after the last
// "/", so that there is one way to read them. Only what stands between two names cannot
// be told in that way; there the inner name is escaped.
#ifndef VELMO_SERVER_MODEL_SYSTEM_PATH_H
#define VELMO_SERVER_MODEL_SYSTEM_PATH_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmo::model {

struct SystemPath {
    std::string_view name; // refers to the text that was split
    std::string_view property;
};

// Splits at the last "/"; none without one.
inline std::optional<SystemPath> split_last(std::string_view path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return std::nullopt;
    return SystemPath{path.substr(0, slash), path.substr(slash + 1)};
}

// What a point's name says below a folder; none when it is not there.
inline std::optional<SystemPath> split_below(std::string_view folder, std::string_view name)
{
    if (name.substr(0, folder.size()) != folder)
        return std::nullopt;
    return split_last(name.substr(folder.size()));
}

// A property of things of a kind: its name, and how a thing's status tells its value.
template <class Status>
struct SystemProperty {
    std::string_view name;
    std::string (*value)(const Status& status);
};

// Adds the points of all properties of the things so named.
template <class Properties>
void list_properties(std::vector<std::string>& points, std::string_view folder,
                     const std::vector<std::string>& things, const Properties& properties)
{
    for (const std::string& thing : things)
        for (const auto& property : properties)
            points.push_back(std::string(folder) + thing + "/" +
                             std::string(property.name));
}

// The value of a property of a thing's status; none without the one or the other.
template <class Status, class Properties>
std::optional<std::string> read_property(const std::optional<Status>& status,
                                         std::string_view name,
                                         const Properties& properties)
{
    if (status)
        for (const auto& property : properties)
            if (property.name == name)
                return property.value(*status);
    return std::nullopt;
}

// With "%2F" for "/", "%25" for "%" and likewise for control characters, as in URLs.
std::string escaped(std::string_view name);

// The name that is escaped so; none when it is not what escaped() gives.
std::optional<std::string> unescaped(std::string_view text);

} // namespace velmo::model

#endif
