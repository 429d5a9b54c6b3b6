// velmo contend join, leave, status; run is in a file of its own.
#include <sstream>

#include "cli/contenders.h"
#include "cli/groups.h"
#include "cli/payload.h"
#include "cli/system_points.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

void add_names(CLI::App& app, std::string& group, std::string& contender)
{
    app.add_option("GROUP", group, "Name of the group")->required();
    app.add_option("--as", contender, "Name of the contender in the group")
        ->required()
        ->type_name("NAME");
}

std::string who(const std::string& contender, const std::string& group)
{
    return in_quotes(contender) + " of group " + in_quotes(group);
}

struct Join {
    void declare(CLI::App& app)
    {
        add_names(app, group, contender);
        app.add_option("--priority", priority, "The highest of a group is master")
            ->capture_default_str()
            ->type_name("N");
        app.add_option("--role", role, "Says what the data are, in the contenders' words")
            ->type_name("TEXT");
        data.declare(app, "DATA", "What others may want to know of it");
    }

    void run(Session& session) const
    {
        const std::string bytes = data.is_given() ? data.bytes() : "";
        session.check(vl_regist_contender(group.c_str(), contender.c_str(), bytes.data(),
                                          static_cast<int>(bytes.size()), role.c_str(),
                                          priority, session.server(), session.realm()),
                      "register contender " + who(contender, group));
        const auto epoch =
            system_value(session, contender_point(group, contender, "token"));
        session.out.result({{"group", json_text(group)},
                            {"contender", json_text(contender)},
                            {"master", epoch.has_value()},
                            {"epoch", epoch ? Json(std::stoull(*epoch)) : Json()}},
                           epoch ? "master, epoch " + *epoch : "not master");
    }

private:
    std::string group, contender, role;
    int priority = 0;
    Payload data;
};

struct Leave {
    void declare(CLI::App& app) { add_names(app, group, contender); }

    void run(Session& session) const
    {
        session.check(vl_out_contend(group.c_str(), contender.c_str(), nullptr,
                                     session.server(), session.realm()),
                      "withdraw contender " + who(contender, group));
        session.out.done({{"group", json_text(group)}, {"contender", json_text(contender)}},
                         "withdrew contender " + who(contender, group));
    }

    std::string group, contender;
};

struct Status {
    void declare(CLI::App& app)
    {
        app.add_option("GROUP", wanted, "Name of the group (all groups)");
    }

    void run(Session& session) const
    {
        Table table(
            {"GROUP", "EPOCH", "CONTENDER", "STANDS AS", "PRIORITY", "LEASE MS", "ROLE"});
        Json documents = Json::array();
        for (const std::string& group : groups(session))
            add(session, group, table, documents);
        session.out.result({{"groups", documents}}, table);
    }

private:
    std::vector<std::string> groups(const Session& session) const
    {
        return wanted.empty() ? system_names(session, contention_points, "state")
                              : std::vector<std::string>{wanted};
    }

    void add(const Session& session, const std::string& group, Table& table,
             Json& documents) const
    {
        const auto state = group_state(session, group);
        if (!state)
            throw Failure(failed, "there is no group " + in_quotes(group),
                          "list the groups with: velmo contend status");
        Json contenders = Json::array();
        std::istringstream lines(
            system_value(session, group_point(group, "contenders")).value_or(""));
        for (std::string line; std::getline(lines, line);)
            add_contender(session, group, *state, unescaped(line), table, contenders);
        if (contenders.empty())
            table.add({group, std::to_string(state->epoch), {"nobody", Style::faint}});
        documents.push_back(
            {{"group", json_text(group)},
             {"epoch", state->epoch},
             {"master", state->master.empty() ? Json() : json_text(state->master)},
             {"contenders", contenders}});
    }

    static void add_contender(const Session& session, const std::string& group,
                              const GroupState& state, const std::string& name,
                              Table& table, Json& documents)
    {
        const auto read = [&](const char* property) {
            return system_value(session, contender_point(group, name, property));
        };
        const auto priority = read("priority"), lease = read("lease"), role = read("role");
        if (!priority || !lease)
            return; // it has gone meanwhile
        const bool master = name == state.master;
        table.add({group, std::to_string(state.epoch), name,
                   master ? Cell{"master", Style::good} : Cell{"stand-by"}, *priority,
                   *lease, role.value_or("")});
        documents.push_back({{"contender", json_text(name)},
                             {"master", master},
                             {"priority", std::stoi(*priority)},
                             {"lease_ms", std::stoll(*lease)},
                             {"role", json_text(role.value_or(""))}});
    }

    std::string wanted;
};

} // namespace

void add_contend_group(Program& program)
{
    Group group(program, "contend", "Contention: who of a group is master");
    group.verb<Join>("join", "Registers a contender for one lease, or renews it");
    group.verb<Leave>("leave", "Withdraws a contender");
    group.verb<Status>("status", "Shows groups, their masters and who would follow");
    add_contend_run(group);
}

} // namespace velmo::cli
