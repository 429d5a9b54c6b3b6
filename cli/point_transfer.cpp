// velmo point export and import.
//
// Points travel as lines of JSON, one a point:
//     {"point": NAME, "type": TEMPLATE, "description": TEXT, "value": VALUE}
#include <algorithm>
#include <sstream>

#include "cli/groups.h"
#include "cli/payload.h"
#include "cli/points.h"
#include "cli/progress.h"
#include "cli/write_file.h"

namespace velmo::cli {

namespace {

struct Export {
    void declare(CLI::App& app)
    {
        app.add_option("FILE", file, "Where to write the points (standard output)");
        app.add_option("--type", type, "Only the points of this template")
            ->type_name("TEMPLATE");
    }

    void run(Session& session) const
    {
        Names list;
        const int code =
            type.empty()
                ? vl_get_all_point_name(list.out(), session.server(), session.realm())
                : vl_get_all_point_by_typename(list.out(), type.c_str(), session.server(),
                                               session.realm());
        session.check(code, "list the points");
        const std::vector<std::string> names = list.all();
        const bool to_output = file.empty() || file == "-";
        std::string lines; // for the file, which is written when nothing can fail any more
        std::size_t written = 0;
        {
            Progress progress(!to_output || !session.out.is_terminal(), "exporting",
                              names.size());
            for (const std::string& name : names) {
                const std::string line = line_of(session, name);
                if (to_output)
                    session.out.raw(line);
                else
                    lines += line;
                written += line.empty() ? 0 : 1;
                progress.step();
            }
        }
        if (to_output)
            return;
        write_file(file, lines);
        session.out.done({{"exported", written}}, "exported " + counted(written, "point") +
                                                      " to " + in_quotes(file));
    }

private:
    // "" for a point that has gone meanwhile.
    static std::string line_of(const Session& session, const std::string& name)
    {
        if (!is_utf8(name))
            throw misuse("JSON cannot hold the name of point " + in_quotes(name),
                         "export the others by their templates with --type");
        Point point;
        const int code = read_point(session, name, point);
        if (code == VARIABLE_IS_NOT_EXIST)
            return "";
        session.check(code, "read point " + in_quotes(name));
        const Json document = {{"point", name},
                               {"type", json_text(point.type)},
                               {"description", json_text(point.description)},
                               {"value", value_json(point, kind_of(point))}};
        return document.dump() + "\n";
    }

    std::string file, type;
};

struct Import {
    void declare(CLI::App& app)
    {
        app.add_option("FILE", file, "Lines that export has written (standard input)");
    }

    void run(Session& session) const
    {
        const std::string text = read_all(file.empty() ? "-" : file);
        std::size_t created = 0, updated = 0;
        Templates templates;
        {
            Progress progress(true, "importing", counted_lines(text));
            std::istringstream lines(text);
            std::size_t number = 0;
            for (std::string line; std::getline(lines, line); progress.step()) {
                ++number;
                if (line.find_first_not_of(" \t\r") != std::string::npos)
                    ++(take(session, line, number, templates) ? created : updated);
            }
        }
        session.out.result({{"created", created}, {"updated", updated}},
                           counted(created, "point") + " created, " +
                               std::to_string(updated) + " updated");
    }

private:
    static std::size_t counted_lines(const std::string& text)
    {
        const auto ends = std::count(text.begin(), text.end(), '\n');
        return static_cast<std::size_t>(ends) +
               (text.empty() || text.back() == '\n' ? 0 : 1);
    }

    // The server's, once a line has needed them.
    using Templates = std::optional<std::vector<std::string>>;

    // Whether the point is a new one. Throws Failure.
    static bool take(const Session& session, const std::string& line, std::size_t number,
                     Templates& templates)
    {
        const std::string place = "line " + std::to_string(number) + ": ";
        try {
            const Json document = Json::parse(line);
            if (!document.is_object())
                throw misuse("not a point as export writes it: no object");
            const std::string name = text_of(document, "point");
            const Point point{
                text_of(document, "type"),
                document.contains("description") ? text_of(document, "description") : "",
                std::nullopt};
            const Json& value = document.at("value");
            if (!kind_of(point.type) && !is_template(session, point.type, templates))
                session.check(ABSTRACT_DATA_TYPE_NULL, "create point " + in_quotes(name));
            std::optional<std::string> bytes; // before anything is done
            if (!value.is_null())
                bytes = from_json(kind_of(point), value);
            const bool created = create(session, name, point);
            if (bytes)
                write(session, name, *bytes);
            return created;
        } catch (const nlohmann::json::exception& error) {
            const std::string reason = error.what(); // "[its class] the reason"
            throw misuse(place + "not a point as export writes it: " +
                         reason.substr(reason.find(' ') + 1));
        } catch (const Failure& failure) {
            throw Failure(failure.exit_status(), place + failure.what(), failure.advice());
        }
    }

    // What goes on as a C string. Throws Failure, or what reading JSON does.
    static std::string text_of(const Json& document, const char* key)
    {
        std::string text = document.at(key).get<std::string>();
        if (has_nul(text))
            throw misuse(in_quotes(key) + " has a NUL byte in it");
        return text;
    }

    static bool is_template(const Session& session, const std::string& type,
                            Templates& templates)
    {
        if (!templates)
            templates = template_names(session);
        return std::find(templates->begin(), templates->end(), type) != templates->end();
    }

    static bool create(const Session& session, const std::string& name, const Point& point)
    {
        const int code = vl_create_data_template_point(name.c_str(), point.type.c_str(),
                                                       session.server(), session.realm());
        if (code != OBJECT_ALREADY_EXSIT)
            session.check(code, "create point " + in_quotes(name));
        const Point there = read_point(session, name);
        if (there.type != point.type)
            throw misuse("point " + in_quotes(name) + " is there with template " +
                             in_quotes(there.type) + ", not " + in_quotes(point.type),
                         "remove it first with: velmo point rm");
        if (there.description != point.description)
            session.check(vl_set_data_template_point_description(
                              name.c_str(), point.description.c_str(), session.server(),
                              session.realm()),
                          "describe point " + in_quotes(name));
        return code == VL_OK;
    }

    static void write(const Session& session, const std::string& name,
                      const std::string& bytes)
    {
        session.check(vl_set_data_template_point(name.c_str(), bytes.data(),
                                                 static_cast<int>(bytes.size()),
                                                 session.server(), session.realm()),
                      "write point " + in_quotes(name));
    }

    std::string file;
};

} // namespace

void add_point_transfer(Group& point)
{
    point.verb<Export>("export", "Writes points as lines of JSON");
    point.verb<Import>("import", "Creates and writes points as exported");
}

} // namespace velmo::cli
