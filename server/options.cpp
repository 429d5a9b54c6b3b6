#include "server/options.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>

#include <CLI/CLI.hpp>

#include "idl/service_keys.h"
#include "server/services/services.h"

namespace velmo::server {

namespace {

constexpr const char* loopback = "127.0.0.1";
constexpr std::uint16_t naming_port = 2809; // where CORBA expects a naming service
constexpr std::size_t max_server_name_bytes = 32;

std::uint16_t parse_port(const std::string& text)
{
    const bool digits = !text.empty() && text.size() <= 5 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits || std::stoul(text) > 65535)
        throw CLI::ValidationError("--listen", "there is no port \"" + text + "\"");
    return static_cast<std::uint16_t>(std::stoul(text));
}

// HOST[:PORT]
orb::Endpoint parse_endpoint(const std::string& text, std::uint16_t default_port)
{
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string::npos ? 0 : bracket);
    std::string host = text.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    if (host.empty() || host.find_first_of("[]") != std::string::npos)
        throw CLI::ValidationError("--listen", "\"" + text +
                                                   "\" is not HOST or HOST:PORT "
                                                   "(IPv6 addresses in brackets)");
    if (colon == std::string::npos)
        return {host, default_port};
    return {host, parse_port(text.substr(colon + 1))};
}

// Gives what is wrong, nothing if all is well.
std::string check_realm(const std::string& realm)
{
    if (realm == keys::root_realm)
        return "ROOT is the unnamed realm, which is always there";
    for (std::size_t begin = 0; begin <= realm.size();) {
        const std::size_t end = std::min(realm.find('/', begin), realm.size());
        const std::string part = realm.substr(begin, end - begin);
        if (part.empty())
            return "a realm's name, and each part of it between \"/\", must not be empty";
        if (std::find(std::begin(keys::all), std::end(keys::all), part) !=
            std::end(keys::all))
            return part + " is the name of a service";
        begin = end + 1;
    }
    return {};
}

std::string check_server(const std::string& name)
{
    return name.empty() || name.size() > max_server_name_bytes
               ? "a server's name has 1 to 32 bytes"
               : "";
}

std::string check_descriptor(const std::string& number)
{
    return fcntl(std::stoi(number), F_GETFD) < 0 ? "descriptor " + number + " is not open"
                                                 : "";
}

} // namespace

std::string host_and_port(const orb::Endpoint& endpoint)
{
    return orb::url_host(endpoint.host) + ":" + std::to_string(endpoint.port);
}

std::optional<Options> parse_options(int argc, char** argv, int& exit_status)
{
    Options options;
    std::vector<std::string> listen;
    long long max_wait = options.max_wait.count();

    const std::string usual_place = host_and_port({loopback, naming_port});
    const std::string free_place = host_and_port({loopback, 0});

    CLI::App app{
        "The Velmo server. Without options it serves this host alone and answers for "
        "naming itself."};
    app.set_version_flag("--version", std::string("velmod ") + VELMO_VERSION);
    app.add_option("--server", options.server, "Name of this server")
        ->capture_default_str()
        ->check(check_server)
        ->type_name("NAME");
    app.add_option("--realm", options.realms, "A realm beside the unnamed one; repeatable")
        ->check(check_realm)
        ->allow_extra_args(false)
        ->type_name("REALM");
    app.add_option("--listen", listen,
                   "Where to listen; port 0 is any free one; repeatable (" + usual_place +
                       ", or " + free_place + " with --naming)")
        ->allow_extra_args(false)
        ->type_name("HOST[:PORT]");
    CLI::Option* unix_socket =
        app.add_option("--unix-socket", options.unix_socket,
                       "Path of the unix socket for clients of this host (in "
                       "$XDG_RUNTIME_DIR/velmo, /run/velmo or /tmp/velmo-UID)")
            ->type_name("PATH");
    CLI::Option* no_unix = app.add_flag("--no-unix", "Do without the unix socket");
    no_unix->excludes(unix_socket);
    app.add_option("--naming", options.naming,
                   "Register with the naming service at this URL instead, such as "
                   "corbaloc::1.2@HOST:PORT/NameService")
        ->type_name("URL");
    app.add_option("--ready-fd", options.ready_fd,
                   "Descriptor to write the naming URL to when ready, then to close")
        ->check(CLI::Range(3, 65535))
        ->check(check_descriptor)
        ->type_name("N");
    app.add_option("--max-wait", max_wait,
                   "Longest wait of a send, receive or reply in milliseconds")
        ->capture_default_str()
        ->check(CLI::Range(0, 86400000))
        ->type_name("MS");

    try {
        app.parse(argc, argv);
        options.use_unix_socket = no_unix->count() == 0;
        options.max_wait = std::chrono::milliseconds(max_wait);
        if (!options.unix_socket.empty()) // clients have other working folders
            options.unix_socket = std::filesystem::absolute(options.unix_socket);
        std::vector<std::string> sorted = options.realms;
        std::sort(sorted.begin(), sorted.end());
        if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
            throw CLI::ValidationError("--realm", "given twice with the same name");
        // The usual port is most likely that of the other naming service.
        const std::uint16_t default_port = options.naming.empty() ? naming_port : 0;
        if (listen.empty())
            listen.push_back(loopback);
        for (const std::string& text : listen)
            options.endpoints.push_back(parse_endpoint(text, default_port));
        return options;
    } catch (const CLI::ParseError& error) {
        exit_status = app.exit(error) == 0 ? 0 : misuse_status;
        return std::nullopt;
    }
}

} // namespace velmo::server
