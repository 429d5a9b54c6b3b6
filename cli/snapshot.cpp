// velmo snapshot: saves and loads what a server holds.
#include "cli/groups.h"

namespace velmo::cli {

namespace {

// What the library's functions leave untold, this tells: some give 0 when no server was
// there. So each of them runs between two calls that would fail then.
void check_answers(const Session& session, const std::string& action)
{
    char byte;
    const int code = vl_get_data_template_point("$SYS/", &byte, sizeof byte,
                                                session.server(), session.realm());
    if (code != VARIABLE_IS_NOT_EXIST) // there is none of that name
        session.check(code, action);
}

using Function = int (*)(const char* server, const char* realm);

struct Part {
    const char* name;
    Function make;
    Function load; // null: the library's function does nothing
};

constexpr Part parts[] = {
    {"templates", vl_make_dt_snapshot, nullptr},
    {"points", vl_make_dtp_snapshot, vl_load_dtp_snapshot},
    {"ports", vl_make_port_snapshot, nullptr},
};

constexpr const char* all = "all";

// Of the parts that were asked for, does each and says what became of it.
class Command {
public:
    void declare(CLI::App& app)
    {
        app.add_option("PART", part, "templates, points, ports (with events) or all")
            ->capture_default_str()
            ->check(CLI::IsMember({"templates", "points", "ports", all}).description(""));
    }

protected:
    // carry_out(part): a word for what became of it, and a sentence on it.
    template <class CarryOut>
    void for_parts(Session& session, CarryOut carry_out) const
    {
        Json documents = Json::array();
        Table table;
        for (const Part& candidate : parts) {
            if (part != all && part != candidate.name)
                continue;
            const auto [word, note] = carry_out(candidate);
            documents.push_back(
                {{"part", candidate.name}, {"result", word}, {"note", note}});
            table.add({candidate.name, word, note});
        }
        session.out.result({{"parts", documents}}, table);
    }

    static void call(const Session& session, Function function, const std::string& action)
    {
        check_answers(session, action);
        session.check(function(session.server(), session.realm()), action);
        check_answers(session, action);
    }

private:
    std::string part = all;
};

using Outcome = std::pair<std::string, std::string>;

struct Make : Command {
    void run(Session& session) const
    {
        for_parts(session, [&](const Part& its) -> Outcome {
            call(session, its.make, std::string("save the ") + its.name);
            return {"saved", ""};
        });
    }
};

struct Load : Command {
    void run(Session& session) const
    {
        for_parts(session, [&](const Part& its) -> Outcome {
            if (!its.load)
                return {"unchanged", "a server loads them when it starts: velmod --load"};
            call(session, its.load, std::string("load the ") + its.name);
            return {"loaded", ""};
        });
    }
};

} // namespace

void add_snapshot_group(Program& program)
{
    Group group(program, "snapshot", "Snapshots: what a server holds, kept on its disk");
    group.verb<Make>("make", "Saves templates, points and ports");
    group.verb<Load>("load", "Replaces the points by those saved last");
}

} // namespace velmo::cli
