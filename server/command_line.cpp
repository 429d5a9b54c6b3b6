#include "server/command_line.h"

#include <algorithm>
#include <filesystem>

#include "idl/service_keys.h"

namespace velmo::server {

namespace {

constexpr const char* loopback = "127.0.0.1";
constexpr std::uint16_t naming_port = 2809; // where CORBA expects a naming service
constexpr std::size_t max_server_name_bytes = 32;
constexpr std::size_t max_bytes = 1ul << 40;
constexpr long long day = 86400000; // in milliseconds

std::uint16_t parse_port(const std::string& option, const std::string& text)
{
    const bool digits = !text.empty() && text.size() <= 5 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits || std::stoul(text) > 65535)
        throw CLI::ValidationError(option, "there is no port \"" + text + "\"");
    return static_cast<std::uint16_t>(std::stoul(text));
}

// HOST[:PORT], or HOST:PORT where there is no default.
orb::Endpoint parse_endpoint(const std::string& option, const std::string& text,
                             std::optional<std::uint16_t> default_port)
{
    const std::size_t bracket = text.rfind(']');
    const std::size_t colon = text.find(':', bracket == std::string::npos ? 0 : bracket);
    std::string host = text.substr(0, colon);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    const bool complete = default_port || colon != std::string::npos;
    if (!complete || host.empty() || host.find_first_of("[]") != std::string::npos)
        throw CLI::ValidationError(option, "\"" + text + "\" is not " +
                                               (default_port ? "HOST or " : "") +
                                               "HOST:PORT (IPv6 addresses in brackets)");
    if (colon == std::string::npos)
        return {host, *default_port};
    return {host, parse_port(option, text.substr(colon + 1))};
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

// A check that the help text says nothing of.
CLI::Validator silent(CLI::Validator check)
{
    check.description("");
    return check;
}

// Clients, and velmod itself later on, may have other working folders.
void make_absolute(std::string& path)
{
    if (!path.empty())
        path = std::filesystem::absolute(path);
}

} // namespace

CommandLine::CommandLine()
{
    app.set_version_flag("--version", std::string("velmod ") + VELMO_VERSION)
        ->configurable(false);
    app.get_help_ptr()->configurable(false);
    app.add_option("--config", options.file,
                   "The configuration file, instead of the settings file")
        ->configurable(false)
        ->type_name("FILE");
    add_places();
    add_operation();
    add_limits();
}

void CommandLine::parse(Arguments arguments)
{
    std::reverse(arguments.begin(), arguments.end()); // as CLI11 takes them
    app.parse(arguments);
    finish();
}

std::vector<std::string> CommandLine::configurable() const
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        if (option->get_configurable())
            names.push_back(option->get_lnames().front());
    return names;
}

bool CommandLine::decides(const std::string& name) const
{
    const CLI::Option* option = app.get_option("--" + name);
    const auto excluded = option->get_excludes();
    return option->count() > 0 ||
           std::any_of(excluded.begin(), excluded.end(),
                       [](const CLI::Option* other) { return other->count() > 0; });
}

void CommandLine::add_places()
{
    const std::string usual_place = host_and_port({loopback, naming_port});
    const std::string free_place = host_and_port({loopback, 0});
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
    app.add_flag("--no-unix", no_unix, "Do without the unix socket")->excludes(unix_socket);
    app.add_option("--naming", options.naming,
                   "Register with the naming service at this URL instead, such as "
                   "corbaloc::1.2@HOST:PORT/NameService")
        ->type_name("URL");
}

void CommandLine::add_operation()
{
    app.add_option("--data-dir", options.data_dir,
                   "Folder to keep snapshots, and the state, in (without it there are "
                   "none)")
        ->type_name("FOLDER");
    app.add_flag("--durable", options.durable,
                 "Keep every change on the disk before it is acknowledged, and begin with "
                 "that");
    app.add_flag("--load", options.load,
                 "Begin with what the last snapshots hold (with --durable the first time "
                 "only)");
    app.add_option("--metrics", metrics,
                   "Show metrics in Prometheus' format at http://HOST:PORT/metrics")
        ->type_name("HOST:PORT");
    app.add_option("--ready-fd", options.ready_fd,
                   "Descriptor to write the naming URL to when ready, then to close")
        ->configurable(false)
        ->check(silent(CLI::Range(3, 65535)))
        ->type_name("N");
}

void CommandLine::add_limits()
{
    Limits& limits = options.limits;
    app.add_option("--max-points", limits.max_points, "Most points in a realm")
        ->capture_default_str()
        ->check(silent(CLI::Range(std::size_t{0}, std::size_t{1} << 32)))
        ->type_name("COUNT");
    add_bytes("--max-queue-bytes", limits.max_queue_bytes,
              "Most bytes of packets in a queue");
    add_bytes("--max-message", limits.max_message,
              "Most bytes of data that a client may give in one call");
    app.add_option("--max-wait", max_wait,
                   "Longest wait of a send, receive or reply in milliseconds")
        ->capture_default_str()
        ->check(silent(CLI::Range(0ll, day)))
        ->type_name("MS");
    app.add_option("--lease", lease,
                   "How long a contender stays without an update, in milliseconds")
        ->capture_default_str()
        ->check(silent(CLI::Range(1ll, day)))
        ->type_name("MS");
}

void CommandLine::add_bytes(const char* name, std::size_t& bytes, const char* description)
{
    app.add_option(name, bytes, description)
        ->capture_default_str()
        ->transform(silent(CLI::AsSizeValue(false)))
        ->check(silent(CLI::Range(std::size_t{1}, max_bytes)))
        ->type_name("BYTES[K|M|G]");
}

void CommandLine::finish()
{
    options.use_unix_socket = !no_unix;
    options.limits.max_wait = std::chrono::milliseconds(max_wait);
    options.limits.lease = std::chrono::milliseconds(lease);
    make_absolute(options.unix_socket);
    make_absolute(options.data_dir);
    std::vector<std::string> sorted = options.realms;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
        throw CLI::ValidationError("--realm", "given twice with the same name");
    // The usual port is most likely that of the other naming service.
    const std::uint16_t default_port = options.naming.empty() ? naming_port : 0;
    if (listen.empty())
        listen.push_back(loopback);
    for (const std::string& text : listen)
        options.endpoints.push_back(parse_endpoint("--listen", text, default_port));
    if (!metrics.empty())
        options.metrics = parse_endpoint("--metrics", metrics, std::nullopt);
    for (const CLI::Option* option : app.get_options())
        if (option->get_configurable() && option->count() > 0)
            options.given[option->get_lnames().front()] = option->results();
}

} // namespace velmo::server
