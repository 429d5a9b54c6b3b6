#include "server/server.h"

#include <future>

#include "CQuilp.h"
#include "server/adapter.h"

namespace velmo::server {

namespace {

constexpr std::chrono::seconds patience_with_clients{1};

services::Realms make_realms(const Options& options)
{
    model::PortLimits limits;
    limits.max_wait = options.max_wait;
    services::Realms realms;
    realms.push_back(std::make_unique<model::Realm>("", limits));
    for (const std::string& name : options.realms)
        realms.push_back(std::make_unique<model::Realm>(name, limits));
    return realms;
}

// Empty for none. One that nobody asked for is not worth failing.
std::string choose_socket_path(const Options& options)
{
    if (!options.use_unix_socket)
        return "";
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
        CQuilp::instance()->vl_log("velmod: no unix socket: %s", error.what());
        return "";
    }
}

} // namespace

Server::Server(const Options& options)
    : realms(make_realms(options)), socket_path(choose_socket_path(options)),
      orb(orb::make_server_orb({options.endpoints, socket_path})), socket_file(socket_path)
{
    const std::vector<services::Service> all =
        services::activate_services(orb.in(), realms);
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
