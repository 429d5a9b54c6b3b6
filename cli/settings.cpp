// velmo settings: the file that says which servers there are.
#include "cli/groups.h"
#include "cli/servers.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

Json sourced(const Json& value, const char* origin)
{
    return {{"value", value}, {"origin", origin}};
}

std::string milliseconds(unsigned int time)
{
    return time == 0 ? "none" : std::to_string(time) + " ms";
}

Json null_if_empty(const std::string& text)
{
    return text.empty() ? Json() : json_text(text);
}

// Of the file that is named, or else that the library would use.
Settings open(const std::string& file)
{
    Settings settings(vl_settings_open(file.empty() ? nullptr : file.c_str()));
    if (!settings)
        throw Failure(failed, "there is not enough memory to read the settings");
    return settings;
}

std::string fault_of(const Settings& settings)
{
    const char* error = vl_settings_error(settings.get());
    return error ? error : "";
}

struct Check {
    void declare(CLI::App& app)
    {
        app.add_option("FILE", file, "The file (the one that the library would use)");
    }

    void run(Session& session) const
    {
        const Settings settings = open(file);
        const std::string path = vl_settings_path(settings.get());
        const std::string fault = fault_of(settings);
        const int servers = vl_settings_server_count(settings.get());
        const std::string good =
            path.empty()
                ? without_settings()
                : path + ": good, " + counted(static_cast<std::size_t>(servers), "server");
        session.out.result({{"file", null_if_empty(path)},
                            {"origin", vl_settings_path_origin(settings.get())},
                            {"good", fault.empty()},
                            {"fault", null_if_empty(fault)},
                            {"servers", servers}},
                           fault.empty() ? good : "");
        if (!fault.empty())
            throw Failure(failed, fault,
                          "until it is mended, no server is found; see velmo-settings(5)");
    }

    std::string file;
};

struct Show {
    void declare(CLI::App&) {}

    void run(Session& session) const
    {
        const Settings settings = open("");
        const std::string path = vl_settings_path(settings.get());
        const std::string fault = fault_of(settings);
        if (!fault.empty())
            throw Failure(failed, fault, "check it again with: velmo settings check");
        const char* origin = "";
        const unsigned int connect = vl_settings_connect_timeout(settings.get(), &origin);
        table.add({"file", path.empty() ? "none" : path,
                   vl_settings_path_origin(settings.get())});
        table.add({"connect_timeout_ms", milliseconds(connect), origin});

        Json servers = Json::array();
        const Servers known;
        for (const vl_settings_server& server : known.all())
            servers.push_back(add(server, known.has_file()));
        session.out.result({{"file", sourced(null_if_empty(path),
                                             vl_settings_path_origin(settings.get()))},
                            {"connect_timeout_ms", sourced(connect, origin)},
                            {"servers", servers}},
                           table);
    }

private:
    Json add(const vl_settings_server& server, bool from_file) const
    {
        const std::string line =
            from_file ? "line " + std::to_string(server.line) : "default";
        const std::string parent = server.parent;
        table.add({{"server " + std::string(server.name), Style::bold}, "", line});
        table.add({{"role", Style::plain, 1}, server.role, line});
        table.add({{"positions", Style::plain, 1}, server.positions, ""});
        table.add({{"naming", Style::plain, 1}, server.naming_url, server.naming_origin});
        Json document = {{"name", json_text(server.name)},
                         {"parent", null_if_empty(parent)},
                         {"role", null_if_empty(server.role)},
                         {"positions", server.positions},
                         {"line", from_file ? Json(server.line) : Json()},
                         {"naming", sourced(server.naming_url, server.naming_origin)}};
        add_time_out(document, "call_timeout_ms", server.call_timeout_ms,
                     server.call_timeout_origin);
        add_time_out(document, "naming_timeout_ms", server.naming_timeout_ms,
                     server.naming_timeout_origin);
        return document;
    }

    // The library tells those of servers that a file lists.
    void add_time_out(Json& document, const char* name, unsigned int time,
                      const char* origin) const
    {
        document[name] = origin ? sourced(time, origin) : Json();
        if (origin)
            table.add({{name, Style::plain, 1}, milliseconds(time), origin});
    }

    mutable Table table{{"SETTING", "VALUE", "FROM"}};
};

} // namespace

void add_settings_group(Program& program)
{
    Group group(program, "settings", "Settings: which servers there are, and where");
    group.verb<Check>("check", "Tells whether a settings file is good");
    group.verb<Show>("show", "Shows every value and where it comes from");
}

} // namespace velmo::cli
