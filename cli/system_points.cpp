#include "cli/system_points.h"

#include <cstdlib>

#include "cli/points.h"

namespace velmo::cli {

namespace {

bool begins_with(const std::string& text, const std::string& beginning)
{
    return text.compare(0, beginning.size(), beginning) == 0;
}

bool ends_with(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

std::vector<std::string> system_names(const Session& session, const std::string& folder,
                                      const std::string& property)
{
    Names points;
    session.check(vl_get_all_point_by_typename(points.out(), "$SYS", session.server(),
                                               session.realm()),
                  "list what the server tells about itself");
    const std::string end = "/" + property;
    std::vector<std::string> names;
    for (const std::string& point : points.all())
        if (point.size() > folder.size() + end.size() && begins_with(point, folder) &&
            ends_with(point, end))
            names.push_back(
                point.substr(folder.size(), point.size() - folder.size() - end.size()));
    return names;
}

std::optional<std::string> system_value(const Session& session, const std::string& name)
{
    Point point;
    const int code = read_point(session, name, point);
    if (code == VARIABLE_IS_NOT_EXIST)
        return std::nullopt;
    session.check(code, "read point " + in_quotes(name));
    return point.value;
}

unsigned long long system_number(const Session& session, const std::string& point)
{
    return std::strtoull(system_value(session, point).value_or("").c_str(), nullptr, 10);
}

} // namespace velmo::cli
