#include "util/settings.h"

#include <algorithm>
#include <cstdlib>

#include "util/settings_file.h"
#include "util/settings_positions.h"

namespace velmo::settings {
namespace {

constexpr const char* from_argument = "argument";

std::string origin_of(const char* variable)
{
    return std::string("environment variable ") + variable;
}

// A time-out that the environment sets. What is not one is ignored, with a warning.
std::optional<Sourced<Milliseconds>> timeout_from(const char* variable,
                                                  std::vector<std::string>& warnings)
{
    const char* text = std::getenv(variable);
    if (!text || !*text)
        return std::nullopt;
    const auto value = to_timeout(text);
    if (!value) {
        warnings.push_back(origin_of(variable) + " is ignored: " + quoted(text) +
                           " is not a number of milliseconds from 0 to " +
                           std::to_string(max_timeout.count()));
        return std::nullopt;
    }
    return Sourced<Milliseconds>{*value, origin_of(variable)};
}

// The own server as the environment names it, or "".
std::string local_server()
{
    const char* name = std::getenv("VELMO_LOCAL_SERVER");
    return name ? name : "";
}

std::string unknown_local_server(const std::string& name, const std::string& why)
{
    return origin_of("VELMO_LOCAL_SERVER") + " names the server " + quoted(name) + ", " +
           why;
}

} // namespace

std::shared_ptr<const Settings> Settings::read()
{
    return std::make_shared<const Settings>(find_file());
}

std::shared_ptr<const Settings> Settings::read(const std::string& path)
{
    return std::make_shared<const Settings>(Place{path, from_argument});
}

Settings::Settings(Place found) : place(std::move(found)), stamp(place.path)
{
    const Timeouts environment{timeout_from("VELMO_CALL_TIMEOUT_MS", ignored),
                               timeout_from("VELMO_NAMING_TIMEOUT_MS", ignored),
                               timeout_from("VELMO_CONNECT_TIMEOUT_MS", ignored)};
    connect = first_set({environment.connect}, defaults::connect_timeout);
    if (place.path.empty() && place.origin != from_argument)
        do_without_file(environment);
    else
        take_over_file(environment);
}

void Settings::take_over_file(const Timeouts& environment)
{
    try {
        File file = parse_file(text_of(place.path), environment);
        const std::string local = local_server();
        if (!local.empty() && !lists(file, local))
            throw Fault(file.root_line, unknown_local_server(local, "which is not listed"));
        assign_positions(file.servers, local.empty() ? file.local : local);
        listed = std::move(file.servers);
        connect = file.connect_timeout;
    } catch (const Fault& problem) {
        fault = place.path + ":" + std::to_string(problem.line) + ": " + problem.what();
        may_pass = dynamic_cast<const Shortage*>(&problem) != nullptr;
    }
}

void Settings::do_without_file(const Timeouts& environment)
{
    const std::string local = local_server();
    if (!local.empty() && local != defaults::server) {
        fault = unknown_local_server(local, "but there is no settings file");
        return;
    }
    Server server;
    server.name = defaults::server;
    server.host = defaults::host;
    server.naming_url = {naming_url(server.host, defaults::port), "default"};
    server.call_timeout = first_set({environment.call}, defaults::call_timeout);
    server.naming_timeout = first_set({environment.naming}, defaults::naming_timeout);
    built_in = std::move(server);
}

std::vector<const Server*> Settings::at(std::string_view word) const
{
    std::vector<const Server*> found;
    for (const Server& server : listed) {
        const auto& positions = server.positions;
        if (std::find(positions.begin(), positions.end(), word) != positions.end())
            found.push_back(&server);
    }
    return found;
}

const Server* Settings::find(const char* name) const
{
    const std::string_view wanted = name ? name : "";
    if (built_in && built_in->name == wanted)
        return &*built_in;
    const auto found =
        std::find_if(listed.begin(), listed.end(),
                     [&](const Server& server) { return server.name == wanted; });
    return found == listed.end() ? nullptr : &*found;
}

bool Settings::perhaps_mended() const
{
    // Without a file there is none to watch: one may be anywhere by now.
    return !fault.empty() &&
           (may_pass || place.path.empty() || !(stamp == Stamp(place.path)));
}

std::shared_ptr<const Settings> Settings::read_again() const
{
    return place.origin == from_argument ? read(place.path) : read();
}

} // namespace velmo::settings
