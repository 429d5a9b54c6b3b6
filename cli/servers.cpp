#include "cli/servers.h"

#include <cstring>

#include "cli/text.h"

namespace velmo::cli {

namespace {

// What the library takes for the one server when there is no settings file.
constexpr const char* built_in_name = "0000";
constexpr const char* built_in_place = "127.0.0.1:2809";
constexpr const char* built_in_url = "corbaloc::1.2@127.0.0.1:2809/NameService";
constexpr const char* own = "own";

bool is_own(const vl_settings_server& server)
{
    const std::string words = std::string(" ") + server.positions + " ";
    return words.find(" own ") != std::string::npos;
}

} // namespace

std::vector<vl_settings_server> Servers::all() const
{
    std::vector<vl_settings_server> servers;
    vl_settings_server server{};
    for (int i = 0; vl_settings_get_server(settings.get(), i, &server) == VL_OK; ++i)
        servers.push_back(server);
    if (!has_file() && fault().empty()) {
        server = {};
        server.name = built_in_name;
        server.parent = server.role = "";
        server.positions = own;
        server.naming_url = built_in_url;
        server.naming_origin = "default";
        servers.push_back(server);
    }
    return servers;
}

std::optional<vl_settings_server> Servers::find(const std::string& name) const
{
    for (const vl_settings_server& server : all())
        if (name.empty() ? is_own(server) : name == server.name)
            return server;
    return std::nullopt;
}

std::string Servers::fault() const
{
    const char* error = vl_settings_error(settings.get());
    return error ? error : "";
}

std::string without_settings()
{
    return std::string("no settings file found; using server ") + built_in_name + " at " +
           built_in_place;
}

std::string why_unreachable(const std::string& name, const std::string& realm,
                            const std::string& otherwise)
{
    const Servers servers;
    if (!servers.fault().empty())
        return "mend the settings: " + servers.fault();
    const auto server = servers.find(name);
    if (server && !realm.empty())
        return "list the realms that " + std::string(server->name) +
               " offers with: velmo server realms; it should answer at " +
               server->naming_url;
    if (!servers.has_file() && server)
        return without_settings() + "; start one with: velmod";
    if (!servers.has_file())
        return "no settings file found, so that only server " + std::string(built_in_name) +
               " is known; write one, or leave --server out";
    if (server)
        return std::string(server->name) + " should answer at " + server->naming_url +
               "; start it there, or " + otherwise;
    if (name.empty())
        return "the settings mark no server as this host's own; name one with --server";
    std::string known;
    for (const vl_settings_server& listed : servers.all())
        known += (known.empty() ? "" : ", ") + harmless(listed.name);
    return "the settings do not list server " + in_quotes(name) +
           (known.empty() ? "" : "; they list " + known);
}

} // namespace velmo::cli
