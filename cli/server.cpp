// velmo server: which servers there are, and whether they answer.
#include <chrono>
#include <cstdio>
#include <future>
#include <map>

#include "cli/groups.h"
#include "cli/interruption.h"
#include "cli/servers.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

struct Answer {
    int code = VL_OK;
    double milliseconds = 0; // of a round trip to the naming service
};

Answer ask_once(const std::string& server)
{
    const auto begin = std::chrono::steady_clock::now();
    const int code = vl_mid_connect(server.c_str());
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    return {code, taken.count()};
}

// The first question makes the connection, only the second is a round trip.
Answer ask(const std::string& server)
{
    const Answer first = ask_once(server);
    return first.code == VL_OK ? ask_once(server) : first;
}

std::string milliseconds(const Answer& answer)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.2f ms", answer.milliseconds);
    return answer.code == VL_OK ? text : "";
}

Json round_trip(const Answer& answer)
{
    return answer.code == VL_OK ? Json(answer.milliseconds) : Json();
}

// The argument is another way to say --server.
void choose(Session& session, const std::string& name)
{
    if (!name.empty())
        session.server_name = name;
}

std::string shown_name(const Session& session)
{
    return session.server_name.empty() ? "this host's own server"
                                       : "server " + in_quotes(session.server_name);
}

struct List {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        const Servers servers;
        if (!servers.fault().empty())
            throw Failure(failed, "the settings are faulty: " + servers.fault(),
                          "mend them and see: velmo settings check");
        const std::vector<vl_settings_server> all = servers.all();
        std::vector<std::future<Answer>> answers; // all at once: each may take its time
        answers.reserve(all.size());
        for (const vl_settings_server& server : all)
            answers.push_back(std::async(std::launch::async, ask, server.name));

        Table table({"SERVER", "ROLE", "POSITIONS", "ANSWERS", "ROUND TRIP", "NAMING"});
        Json documents = Json::array();
        bool answering = false;
        std::map<std::string, std::size_t> depths; // enclosing servers come first
        for (std::size_t i = 0; i < all.size(); ++i) {
            const std::string parent = all[i].parent;
            const std::size_t depth = parent.empty() ? 0 : depths[parent] + 1;
            depths[all[i].name] = depth;
            const Answer answer = answers[i].get();
            answering = answering || answer.code == VL_OK;
            add(table, documents, all[i], depth, answer);
        }
        session.out.result({{"servers", documents}}, table);
        if (!servers.has_file() && !session.out.is_json())
            session.out.message(without_settings() +
                                (answering ? "" : "; start one with: velmod"));
    }

private:
    static void add(Table& table, Json& documents, const vl_settings_server& server,
                    std::size_t depth, const Answer& answer)
    {
        const bool reachable = answer.code == VL_OK;
        const std::string parent = server.parent, role = server.role;
        table.add({{server.name, Style::plain, depth},
                   role,
                   server.positions,
                   reachable ? Cell{"yes", Style::good} : Cell{"no", Style::bad},
                   milliseconds(answer),
                   {server.naming_url, Style::faint}});
        documents.push_back({{"name", json_text(server.name)},
                             {"parent", parent.empty() ? Json() : json_text(parent)},
                             {"role", role.empty() ? Json() : Json(role)},
                             {"positions", server.positions},
                             {"naming_url", server.naming_url},
                             {"reachable", reachable},
                             {"round_trip_ms", round_trip(answer)}});
    }
};

struct Ping {
    void declare(CLI::App& app)
    {
        app.add_option("SERVER", name, "Name of the server (as --server)");
        app.add_option("--count", count, "How often")
            ->capture_default_str()
            ->check(CLI::Range(1, 1000000))
            ->type_name("N");
        app.add_option("--interval", interval_ms, "Milliseconds between two questions")
            ->capture_default_str()
            ->check(CLI::Range(0, 86400000))
            ->type_name("MS");
    }

    void run(Session& session) const
    {
        choose(session, name);
        const Interruption interruption;
        const auto [server, url] = name_and_url(session.server_name);
        for (int i = 0; i < count; ++i) {
            if (i > 0)
                interruption.wait(std::chrono::milliseconds(interval_ms));
            const Answer answer =
                i == 0 ? ask(session.server()) : ask_once(session.server());
            session.check(answer.code, "reach " + shown_name(session));
            session.out.item({{"server", json_text(server)},
                              {"naming_url", url},
                              {"round_trip_ms", round_trip(answer)}},
                             harmless(server) + " answers at " + url + " in " +
                                 milliseconds(answer));
        }
    }

private:
    static std::pair<std::string, std::string> name_and_url(const std::string& server)
    {
        const Servers servers;
        const auto known = servers.find(server);
        return known ? std::make_pair(std::string(known->name),
                                      std::string(known->naming_url))
                     : std::make_pair(server, std::string());
    }

    std::string name;
    int count = 1;
    int interval_ms = 1000;
};

struct Realms {
    void declare(CLI::App& app)
    {
        app.add_option("SERVER", name, "Name of the server (as --server)");
    }

    void run(Session& session) const
    {
        choose(session, name);
        const std::string action = "list the realms of " + shown_name(session);
        // A server that does not answer would seem to have the unnamed realm.
        session.check(vl_mid_connect(session.server()), action);
        Names names;
        session.check(vl_releam_seq(names.out(), session.server()), action);
        Table table;
        Json documents = Json::array();
        for (const std::string& realm : names.all()) {
            table.add({realm});
            documents.push_back(json_text(realm));
        }
        session.out.result({{"realms", documents}}, table);
    }

    std::string name;
};

} // namespace

void add_server_group(Program& program)
{
    Group group(program, "server", "Servers: where they are and whether they answer");
    group.verb<List>("list", "Shows the servers of the settings as a tree");
    group.verb<Ping>("ping", "Asks a server's naming service and takes the time");
    group.verb<Realms>("realms", "Lists the realms of a server");
}

} // namespace velmo::cli
