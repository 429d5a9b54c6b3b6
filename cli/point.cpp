// velmo point create, rm, ls, info, describe, type, types; get, set, watch, export and
// import are in files of their own.
#include <algorithm>

#include "cli/groups.h"
#include "cli/points.h"

namespace velmo::cli {

namespace {

void add_point_name(CLI::App& app, std::string& name)
{
    app.add_option("POINT", name, "Name of the point")->required();
}

struct Create {
    void declare(CLI::App& app)
    {
        add_point_name(app, name);
        app.add_option("TEMPLATE", type,
                       "Template of the point: int8 ... uint64, float32, float64, bool, "
                       "text, bytes, or one of the server's configuration")
            ->required();
    }

    void run(Session& session) const
    {
        session.check(vl_create_data_template_point(name.c_str(), type.c_str(),
                                                    session.server(), session.realm()),
                      "create point " + in_quotes(name) + " of template " +
                          in_quotes(type));
        session.out.done({{"point", json_text(name)}, {"type", json_text(type)}},
                         "created point " + in_quotes(name) + " of template " +
                             in_quotes(type));
    }

    std::string name, type;
};

struct Remove {
    void declare(CLI::App& app)
    {
        app.add_option("POINT", names, "Names of the points")->required();
    }

    void run(Session& session) const
    {
        Json removed = Json::array();
        for (const std::string& name : names) {
            session.check(
                vl_remove_template_point(name.c_str(), session.server(), session.realm()),
                "remove point " + in_quotes(name));
            removed.push_back(json_text(name));
        }
        session.out.done({{"removed", removed}},
                         "removed " + counted(names.size(), "point"));
    }

    std::vector<std::string> names;
};

// Names, one a line.
void show_names(Session& session, const char* key, const std::vector<std::string>& names)
{
    Json document = Json::array();
    Table table;
    for (const std::string& name : names) {
        document.push_back(json_text(name));
        table.add({name});
    }
    session.out.result({{key, document}}, table);
}

struct List {
    void declare(CLI::App& app)
    {
        app.add_option("--type", type,
                       "Only the points of this template; '$SYS' is for the server's own")
            ->type_name("TEMPLATE");
        app.add_flag("--empty", empty, "Only the points without data");
    }

    void run(Session& session) const
    {
        std::vector<std::string> names =
            type.empty() ? all_names(session) : names_of_type(session);
        if (empty && !type.empty()) {
            const std::vector<std::string> others = names_without_data(session);
            const auto has_data = [&](const std::string& name) {
                return !std::binary_search(others.begin(), others.end(), name);
            };
            names.erase(std::remove_if(names.begin(), names.end(), has_data), names.end());
        }
        show_names(session, "points", names);
    }

private:
    std::vector<std::string> all_names(const Session& session) const
    {
        if (empty)
            return names_without_data(session);
        Names names;
        session.check(vl_get_all_point_name(names.out(), session.server(), session.realm()),
                      "list the points");
        return names.all();
    }

    std::vector<std::string> names_of_type(const Session& session) const
    {
        Names names;
        session.check(vl_get_all_point_by_typename(names.out(), type.c_str(),
                                                   session.server(), session.realm()),
                      "list the points of template " + in_quotes(type));
        return names.all();
    }

    static std::vector<std::string> names_without_data(const Session& session)
    {
        Names names;
        session.check(vl_check_null_data(names.out(), session.server(), session.realm()),
                      "list the points without data");
        return names.all();
    }

    std::string type;
    bool empty = false;
};

struct Info {
    void declare(CLI::App& app) { add_point_name(app, name); }

    void run(Session& session) const
    {
        const Point point = read_point(session, name);
        const Kind kind = kind_of(point);
        const Json size = point.value ? Json(point.value->size()) : Json();
        Table table;
        table.add({{"point", Style::bold}, name});
        table.add({{"template", Style::bold}, point.type});
        table.add({{"description", Style::bold}, point.description});
        table.add({{"size", Style::bold},
                   point.value ? counted(point.value->size(), "byte") : "no data"});
        table.add({{"value", Style::bold}, point.value ? format(kind, *point.value) : ""});
        session.out.result({{"point", json_text(name)},
                            {"type", json_text(point.type)},
                            {"description", json_text(point.description)},
                            {"size", size},
                            {"value", value_json(point, kind)}},
                           table);
    }

    std::string name;
};

struct Describe {
    void declare(CLI::App& app)
    {
        add_point_name(app, name);
        app.add_option("TEXT", text,
                       "The description; \"\" brings the one of its template back")
            ->required();
    }

    void run(Session& session) const
    {
        session.check(vl_set_data_template_point_description(
                          name.c_str(), text.c_str(), session.server(), session.realm()),
                      "describe point " + in_quotes(name));
        session.out.done({{"point", json_text(name)}, {"description", json_text(text)}},
                         "described point " + in_quotes(name));
    }

    std::string name, text;
};

struct Type {
    void declare(CLI::App& app) { add_point_name(app, name); }

    void run(Session& session) const
    {
        // The function for the type alone tells no reason when it fails.
        const Point point = read_point(session, name);
        session.out.result({{"point", json_text(name)}, {"type", json_text(point.type)}},
                           point.type);
    }

    std::string name;
};

struct Types {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        show_names(session, "types", template_names(session));
    }
};

} // namespace

void add_point_group(Program& program)
{
    Group group(program, "point", "Points: named values that everybody reads and writes");
    group.verb<Create>("create", "Creates a point");
    add_point_values(group);
    group.verb<Remove>("rm", "Removes points");
    group.verb<List>("ls", "Lists the names of points");
    group.verb<Info>("info", "Shows all about a point");
    group.verb<Describe>("describe", "Gives a point a description");
    group.verb<Type>("type", "Shows the template of a point");
    group.verb<Types>("types", "Lists the templates");
    add_point_watch(group);
    add_point_transfer(group);
}

} // namespace velmo::cli
