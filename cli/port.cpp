// velmo port create, connect, disconnect, ls, channels, copy; what is done with packets is
// in a file of its own.
#include <algorithm>
#include <map>

#include "cli/groups.h"
#include "cli/memory.h"
#include "cli/ports.h"
#include "cli/system_points.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr const char* connections_failed = "list the connections";

struct Create {
    void declare(CLI::App& app)
    {
        app.add_option("NAME", name, "Name of the port")->required();
        app.add_option("--handle", handle,
                       "Number that programs know it by (one that follows from the name)")
            ->check(CLI::Range(1u, 0xffffffffu).description(""))
            ->type_name("N");
        app.add_option("--capacity", capacity,
                       "Packets that its queue holds (as the server's default)")
            ->check(CLI::Range(1u, 0xffffffffu).description(""))
            ->type_name("N");
    }

    void run(Session& session) const
    {
        unsigned int number = handle == 0 ? usual_handle(name) : handle;
        int code = create(session, number);
        // Two names may have the same usual handle.
        while (code == OBJECT_ALREADY_EXSIT && handle == 0 && is_new(session))
            code = create(session, number = std::max(number + 1, 1u));
        session.check(code, "create port " + in_quotes(name));
        session.out.done({{"port", json_text(name)}, {"handle", number}},
                         "created port " + in_quotes(name) + " with handle " +
                             std::to_string(number));
    }

private:
    int create(const Session& session, unsigned int number) const
    {
        return vl_create_port(name.c_str(), number, capacity, session.server(),
                              session.realm());
    }

    bool is_new(const Session& session) const
    {
        return !system_value(session, port_point(name, "handle"));
    }

    std::string name;
    unsigned int handle = 0;   // 0: the usual one
    unsigned int capacity = 0; // 0: the server's default
};

struct Connect {
    void declare(CLI::App& app)
    {
        app.add_option("FROM", from, "Name of the port that sends")->required();
        app.add_option("TO", to, "Name of the port that receives")->required();
        CLI::Option* alone = app.add_flag("--exclusive", exclusive,
                                          "Neither of the two may have another connection");
        app.add_flag("--host", with_host, "Registers this host's name with the first port")
            ->excludes(alone);
    }

    void run(Session& session) const
    {
        const unsigned int mode = exclusive ? 30002 : with_host ? 30004 : 30001;
        session.check(vl_connect_port(from.c_str(), to.c_str(), mode, 0, "",
                                      session.server(), session.realm()),
                      "connect port " + in_quotes(from) + " to " + in_quotes(to));
        session.out.done({{"from", json_text(from)}, {"to", json_text(to)}},
                         "connected port " + in_quotes(from) + " to " + in_quotes(to));
    }

    std::string from, to;
    bool exclusive = false;
    bool with_host = false;
};

struct Disconnect {
    void declare(CLI::App& app)
    {
        app.add_option("PORT", port, "Name or handle of the port")->required();
    }

    void run(Session& session) const
    {
        session.check(vl_disconenct_port(port_handle(session, port), session.server(),
                                         session.realm()),
                      "disconnect port " + in_quotes(port));
        session.out.done({{"port", json_text(port)}},
                         "ended all connections of port " + in_quotes(port));
    }

    std::string port;
};

// The server's properties of a port, as columns and in JSON.
constexpr const char* numbers[] = {"handle", "depth",   "capacity",
                                   "bytes",  "replies", "waiting"};

struct List {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        const Receivers receivers = all_receivers(session);
        Table table({"PORT", "HANDLE", "DEPTH", "CAPACITY", "BYTES", "REPLIES", "WAITING",
                     "HOST", "SENDS TO"});
        Json documents = Json::array();
        for (const std::string& name : system_names(session, port_points, "handle")) {
            std::vector<Cell> row = {name};
            Json document = {{"port", json_text(name)}};
            for (const char* number : numbers) {
                const auto value = system_number(session, port_point(name, number));
                row.push_back(std::to_string(value));
                document[number] = value;
            }
            const std::string host =
                system_value(session, port_point(name, "host")).value_or("");
            row.push_back(host);
            document["host"] = host.empty() ? Json() : json_text(host);
            add_receivers(receivers, name, row, document);
            table.add(row);
            documents.push_back(document);
        }
        session.out.result({{"ports", documents}}, table);
    }

private:
    using Receivers = std::map<std::string, std::vector<std::string>>;

    static Receivers all_receivers(const Session& session)
    {
        Connections connections;
        session.check(
            vl_get_connection_info(connections.out(), session.server(), session.realm()),
            connections_failed);
        Receivers receivers;
        for (const ConnectionBlock* at = connections.first(); at; at = at->next)
            receivers[at->first_text].push_back(at->second_text);
        return receivers;
    }

    static void add_receivers(const Receivers& all, const std::string& port,
                              std::vector<Cell>& row, Json& document)
    {
        std::string text;
        document["sends_to"] = Json::array();
        const auto found = all.find(port);
        if (found != all.end())
            for (const std::string& receiver : found->second) {
                text += (text.empty() ? "" : ", ") + receiver;
                document["sends_to"].push_back(json_text(receiver));
            }
        row.push_back(text);
    }
};

struct Channels {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        Names names;
        session.check(vl_com_chennal_seq(names.out(), session.server(), session.realm()),
                      connections_failed);
        Table table;
        Json documents = Json::array();
        for (const std::string& name : names.all()) {
            table.add({name});
            documents.push_back(json_text(name));
        }
        session.out.result({{"channels", documents}}, table);
    }
};

struct Copy {
    void declare(CLI::App& app)
    {
        app.add_option("NAME", port, "Name of the port")->required();
        app.add_option("HOW", how,
                       "on: each receiver gets its own copy of a packet; off: each packet "
                       "goes to one of them in turn")
            ->required()
            ->check(CLI::IsMember({"on", "off"}).description(""));
    }

    void run(Session& session) const
    {
        const bool on = how == "on";
        session.check(
            enableCopy(port.c_str(), on ? 1 : 0, session.server(), session.realm()),
            "change port " + in_quotes(port));
        session.out.done({{"port", json_text(port)}, {"copy", on}},
                         on ? "each receiver gets its own copy now"
                            : "each packet goes to one receiver now");
    }

    std::string port, how;
};

} // namespace

void add_port_group(Program& program)
{
    Group group(program, "port", "Ports: queues of packets, and connections between them");
    group.verb<Create>("create", "Creates a port, for good");
    group.verb<Connect>("connect", "Connects two ports: what one sends the other receives");
    group.verb<Disconnect>("disconnect", "Ends every connection of a port");
    group.verb<List>("ls", "Lists ports with their queues and connections");
    group.verb<Channels>("channels", "Lists the ports that send, then those that receive");
    add_port_packets(group);
    group.verb<Copy>("copy", "Chooses how a port with several receivers delivers");
}

} // namespace velmo::cli
