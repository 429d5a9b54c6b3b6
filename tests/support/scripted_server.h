// A whole server whose every answer a test decides.
#ifndef VELMO_TESTS_SUPPORT_SCRIPTED_SERVER_H
#define VELMO_TESTS_SUPPORT_SCRIPTED_SERVER_H

#include <memory>
#include <string>

#include "tests/support/naming_stand_in.h"
#include "tests/support/port_servant.h"
#include "tests/support/relay.h"
#include "tests/support/script.h"
#include "tests/support/service_servants.h"
#include "tests/support/test_orb.h"

namespace velmo::tests {

// Real servants of the five services in the test's process. Callers reach them as the
// broker does it within one process, or over a connection as if they were in another:
// then everything is marshalled.
class ScriptedServer {
public:
    enum class Reach { in_process, over_the_wire };

    explicit ScriptedServer(Reach reach = Reach::in_process);

    // What it answers and was asked.
    Script* operator->() { return script.get(); }

    // The service of that key (idl/service_keys.h). reconnect() makes the references
    // over the wire that were given out before useless.
    CORBA::Object_var reference(const std::string& key) const;

    // Breaks all connections; the services are at another address from now on. Over
    // the wire only.
    void reconnect();

    // Its services are gone for callers, as after its end.
    void withdraw();

    // Binds its services for a server and realm in the naming client's stand-in, and
    // removes them. The service manager belongs to no realm.
    void bind(const std::string& server, const std::string& realm = "") const;
    static void unbind(const std::string& server, const std::string& realm = "");

private:
    CORBA::Object_var object(const std::string& key) const;

    const std::shared_ptr<Script> script;
    Published<PortServant> ports;
    Published<PointServant> points;
    Published<TemplateServant> templates;
    Published<ContentionServant> contention;
    Published<ServiceManagerServant> manager;
    std::unique_ptr<Relay> relay;
};

// The name of a service in the naming service.
std::string service_name(const std::string& realm, const std::string& key);

// The reference of an object on 127.0.0.1 with another port in it.
CORBA::Object_var with_port(const CORBA::Object_var& object, std::uint16_t port);

} // namespace velmo::tests

#endif
