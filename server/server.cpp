#include "server/server.h"

#include <algorithm>
#include <future>

#include "server/adapter.h"
#include "server/log.h"
#include "server/realms.h"
#include "server/store/snapshot_store.h"

namespace velmo::server {

namespace {

constexpr std::chrono::seconds patience_with_clients{1};

std::unique_ptr<store::SnapshotStore> open_store(const Options& options)
{
    if (options.data_dir.empty())
        return nullptr;
    return std::make_unique<store::SnapshotStore>(options.data_dir, options.server);
}

// Fills the realms with what was kept.
std::unique_ptr<journal::Durability>
recover(const Options& options, const services::Realms& realms, store::SnapshotStore* store)
{
    const auto load = [&](model::Realm& realm) {
        if (options.load)
            services::Snapshots(store, realm).load_all();
    };
    if (options.durable)
        return std::make_unique<journal::Durability>(options.data_dir, options.server,
                                                     realms, load);
    for (const auto& realm : realms)
        load(*realm);
    return nullptr;
}

// Empty for none. One that nobody asked for, or can have, is not worth failing.
std::string choose_socket_path(const Options& options)
{
    if (!options.use_unix_socket)
        return "";
    if (!orb::abilities().unix_sockets) {
        log_event("no-unix-socket", {{"reason", "the object request broker has none"}});
        return "";
    }
    if (!options.unix_socket.empty()) {
        check_socket_path(options.unix_socket);
        return options.unix_socket;
    }
    try {
        const auto path = default_socket_path(options.server, options.endpoints.front());
        if (!path)
            throw std::runtime_error("there is no private folder for one");
        check_socket_path(*path);
        return *path;
    } catch (const std::runtime_error& error) {
        log_event("no-unix-socket", {{"reason", error.what()}});
        return "";
    }
}

// Whatever a client may send as far as the broker goes, so that servants get to refuse
// it with a result code.
unsigned long max_broker_message(const Limits& limits)
{
    constexpr unsigned long room_for_names = 1ul << 20;
    return std::max(orb::max_message_bytes, limits.max_message + room_for_names);
}

void log_start(const Options& options)
{
    log_event("started", {{"server", options.server},
                          {"version", VELMO_VERSION},
                          {"file", options.file},
                          {"data-dir", options.data_dir}});
}

void log_limits(const Limits& limits)
{
    log_event("limits", {{"max-points", std::to_string(limits.max_points)},
                         {"max-queue-bytes", std::to_string(limits.max_queue_bytes)},
                         {"max-message", std::to_string(limits.max_message)},
                         {"max-wait", std::to_string(limits.max_wait.count())},
                         {"lease", std::to_string(limits.lease.count())}});
}

} // namespace

Server::Server(const Options& its_options)
    : options(its_options), realms(make_realms(options)), store(open_store(options)),
      durability(recover(options, realms, store.get())),
      calls(options.metrics ? &call_metrics : nullptr, options.limits.max_message,
            commit()),
      socket_path(choose_socket_path(options)),
      orb(orb::make_server_orb({options.endpoints, socket_path,
                                max_broker_message(options.limits),
                                log_refused_connection})),
      socket_file(socket_path)
{
    log_start(options);
    log_limits(options.limits);
    for (const auto& realm : realms)
        log_event("realm", {{"name", services::shown_name(*realm)}});
    const std::vector<services::Service> all =
        services::activate_services(orb.in(), realms, calls, store.get());
    log_event("listening", {{"address", host_and_port(orb::published_endpoint(
                                            orb.in(), all.front().reference.in()))},
                            {"unix", socket_path}});
    if (options.metrics)
        show_metrics();
    const std::vector<naming::Binding> bindings = naming::layout(all);
    if (options.naming.empty()) {
        own_naming = std::make_unique<naming::NamingTree>(orb.in(), bindings);
        url = own_naming->url();
    } else {
        registrar = std::make_unique<naming::Registrar>(orb.in(), options.naming, bindings);
        url = options.naming;
    }
    open_adapters(orb.in());
    runner = std::thread([this] {
        try {
            orb->run();
        } catch (const CORBA::BAD_INV_ORDER&) {
            // Stopped before it began.
        }
    });
}

journal::GroupCommit* Server::commit() const
{
    return durability ? &durability->commit() : nullptr;
}

void Server::show_metrics()
{
    std::vector<const model::Realm*> shown;
    for (const auto& realm : realms)
        shown.push_back(realm.get());
    exposition = std::make_unique<metrics::Exposition>(
        host_and_port(*options.metrics),
        metrics::Labels{{"server", options.server}, {"version", VELMO_VERSION}},
        call_metrics, std::move(shown), commit());
    log_event("metrics",
              {{"address", host_and_port({options.metrics->host, exposition->port()})}});
}

void Server::reload(const Options& wanted)
{
    for (const std::string& option : needing_restart(options, wanted))
        log_event("needs-restart", {{"option", option}});
    for (const std::string& name : reconfigure(realms, wanted))
        log_event("needs-restart",
                  {{"template", name}, {"reason", "there are points of it"}});
    if (durability && !durability->keep_templates())
        log_event("templates-not-kept", {{"reason", commit()->status().failing}});
    options.limits.max_points = wanted.limits.max_points;
    options.limits.max_wait = wanted.limits.max_wait;
    options.limits.lease = wanted.limits.lease;
    log_event("reloaded", {{"file", wanted.file}});
    log_limits(options.limits);
}

Server::~Server()
{
    stop();
}

bool Server::stop()
{
    if (CORBA::is_nil(orb.in()))
        return true;
    for (const auto& realm : realms)
        realm->stop();
    exposition.reset();
    if (registrar)
        registrar->unbind();
    socket_file.remove();

    // The broker waits for calls in progress: also for one whose client does not
    // take the answer.
    std::packaged_task<void()> shut_down([this] {
        orb->shutdown(true);
        runner.join();
        orb->destroy();
    });
    std::future<void> down = shut_down.get_future();
    std::thread helper(std::move(shut_down));
    if (down.wait_for(patience_with_clients) == std::future_status::timeout) {
        helper.detach();
        return false;
    }
    helper.join();
    down.get();
    orb = CORBA::ORB::_nil();
    return true;
}

} // namespace velmo::server
