// velmo point get and set.
#include "cli/groups.h"
#include "cli/payload.h"
#include "cli/points.h"
#include "cli/value_output.h"

namespace velmo::cli {

namespace {

struct Get {
    void declare(CLI::App& app)
    {
        app.add_option("POINT", name, "Name of the point")->required();
        output.declare(app);
    }

    void run(Session& session) const
    {
        const Point point = read_point(session, name);
        if (!point.value)
            session.check(NON_EXIST_DATA, "read point " + in_quotes(name));
        output.show(session, {{"point", json_text(name)}, {"type", json_text(point.type)}},
                    kind_of(point, output.said_kind()), *point.value);
    }

private:
    std::string name;
    ValueOutput output;
};

struct Set {
    void declare(CLI::App& app)
    {
        app.add_option("POINT", name, "Name of the point")->required();
        value.declare(app, "VALUE",
                      "The value, as its template wants it; standard input without");
        add_kind(app, kind);
    }

    void run(Session& session) const
    {
        const std::string bytes = encoded(session);
        session.check(vl_set_data_template_point(name.c_str(), bytes.data(),
                                                 static_cast<int>(bytes.size()),
                                                 session.server(), session.realm()),
                      "write point " + in_quotes(name));
        session.out.done({{"point", json_text(name)}, {"size", bytes.size()}},
                         "wrote " + counted(bytes.size(), "byte") + " to point " +
                             in_quotes(name));
    }

private:
    std::string encoded(const Session& session) const
    {
        std::string given = value.bytes();
        if (value.is_file() || value.is_hex())
            return given;
        if (!kind.empty())
            return encode(*kind_of(kind), given);
        return encode(kind_of(read_point(session, name)), given);
    }

    std::string name, kind;
    Payload value;
};

} // namespace

void add_point_values(Group& point)
{
    point.verb<Get>("get", "Shows the value of a point");
    point.verb<Set>("set", "Writes the value of a point");
}

} // namespace velmo::cli
