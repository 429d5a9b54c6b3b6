// A point as the commands on points read it.
#ifndef VELMO_CLI_POINTS_H
#define VELMO_CLI_POINTS_H

#include <optional>
#include <string>
#include <vector>

#include "cli/memory.h"
#include "cli/session.h"
#include "cli/text.h"
#include "cli/value.h"

namespace velmo::cli {

struct Point {
    std::string type;
    std::string description;
    std::optional<std::string> value; // none: no data
};

// VL_OK, or the code of the call that failed. A point without data is no failure.
inline int read_point(const Session& session, const std::string& name, Point& point)
{
    Text type, description;
    Block value;
    int code = get_dtp_info2(name.c_str(), type.out(), description.out(), value.out(),
                             value.length_out(), session.server(), session.realm());
    if (code != VL_OK)
        return code;
    point = {type.str(), description.str(), std::string(value.bytes())};
    if (value.bytes().empty()) { // the one function that tells no data from no bytes
        char byte;
        code = vl_get_data_template_point(name.c_str(), &byte, sizeof byte,
                                          session.server(), session.realm());
        if (code == NON_EXIST_DATA)
            point.value.reset();
        else if (code != VL_OK)
            return code;
    }
    return VL_OK;
}

// Throws Failure.
inline Point read_point(const Session& session, const std::string& name)
{
    Point point;
    session.check(read_point(session, name, point), "read point " + in_quotes(name));
    return point;
}

// As the server lists them. Throws Failure.
inline std::vector<std::string> template_names(const Session& session)
{
    Names names;
    const int code = vl_get_query_data_type(names.out(), session.server(), session.realm());
    if (code != TYPE_LIST_IS_NUL) // there is none
        session.check(code, "list the templates");
    return names.all();
}

// How to take its value: as said, else as its template's name tells, else as bytes.
inline Kind kind_of(const Point& point, const std::string& said = "")
{
    // What the server itself tells are texts.
    if (said.empty() && point.type == "$SYS")
        return Kind::text;
    return kind_of(said.empty() ? point.type : said).value_or(Kind::bytes);
}

// null without data.
inline Json value_json(const Point& point, Kind kind)
{
    return point.value ? to_json(kind, *point.value) : Json();
}

} // namespace velmo::cli

#endif
