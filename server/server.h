// A Velmo server: realms, their services, and how clients find them.
#ifndef VELMO_SERVER_SERVER_H
#define VELMO_SERVER_SERVER_H

#include <memory>
#include <string>
#include <thread>

#include "server/journal/durability.h"
#include "server/metrics/exposition.h"
#include "server/naming/naming_tree.h"
#include "server/naming/registrar.h"
#include "server/options.h"
#include "server/services/calls.h"
#include "server/services/services.h"
#include "server/unix_socket.h"

namespace velmo::server {

// Serves from its construction until stop(). One thread uses it.
class Server {
public:
    // Throws store::StoreError, orb::EndpointError, naming::RegistrationError,
    // std::runtime_error (the unix socket) and CORBA::Exception. Then the process has to
    // end. A faulty template is a model::TemplateError.
    explicit Server(const Options& options);

    // Calls stop().
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // The naming service in which clients find it.
    const std::string& naming_url() const { return url; }

    // Takes over what can change while it runs: some limits, and templates that no point
    // is made from. Logs what it takes over, and what needs a restart. Throws
    // model::TemplateError, having changed nothing.
    void reload(const Options& wanted);

    // Ends all waiting, removes its names, and lets calls in progress end. Blocks for
    // little more than three seconds at most; false when a client has held it up for that
    // long, in which case the process must end at once, without destructors.
    bool stop();

private:
    void show_metrics();
    journal::GroupCommit* commit() const; // null when changes are not kept

    Options options; // with what reload() has changed
    services::Realms realms;
    std::unique_ptr<store::SnapshotStore> store;     // null without a data folder
    std::unique_ptr<journal::Durability> durability; // null when changes are not kept
    metrics::CallMetrics call_metrics;
    const services::Calls calls;
    std::unique_ptr<metrics::Exposition> exposition; // null without metrics
    const std::string socket_path;
    CORBA::ORB_var orb;
    SocketFile socket_file; // not before the broker has made it
    std::unique_ptr<naming::NamingTree> own_naming;
    std::unique_ptr<naming::Registrar> registrar;
    std::string url;
    std::thread runner;
};

} // namespace velmo::server

#endif
