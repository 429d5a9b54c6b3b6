// What tests of the registry share.
#ifndef VELMO_TESTS_REGISTRY_REGISTRY_TEST_H
#define VELMO_TESTS_REGISTRY_REGISTRY_TEST_H

#include <string>
#include <vector>

#include "idl/service_keys.h"
#include "tests/support/library_test.h"
#include "tests/support/port_servant.h"
#include "tests/support/service_servants.h"
#include "tests/support/test_orb.h"
#include "vlReferenceContainer.h"

namespace velmo::tests {

// Releases a reference that was handed out; whether there was one.
template <class Pointer>
bool got(Pointer reference)
{
    const bool there = !CORBA::is_nil(reference);
    CORBA::release(reference);
    return there;
}

// A registry of the test's own, and a server "server" that offers every service, in
// the unnamed realm and in the realm "alpha".
class RegistryTest : public LibraryTest {
protected:
    RegistryTest() { offer("server"); }

    void offer(const std::string& server)
    {
        for (const std::string realm : {"", "/alpha/"}) {
            naming.bind(server, realm + keys::port_service, ports.reference().in());
            naming.bind(server, realm + keys::data_template_point_service,
                        points.reference().in());
            naming.bind(server, realm + keys::data_template_service,
                        templates.reference().in());
            naming.bind(server, realm + keys::contention_service,
                        contention.reference().in());
        }
        naming.bind(server, keys::service_manager, manager.reference().in());
    }

    bool get_port(const char* server, const char* realm)
    {
        return got(registry.GetPortReferenceWithServerName(server, realm));
    }
    bool get_point(const char* server, const char* realm)
    {
        return got(registry.GetDptReferenceWithServerName(server, realm));
    }
    bool get_template(const char* server, const char* realm)
    {
        return got(registry.GetDtRefrenceWithServerName(server, realm));
    }
    bool get_contention(const char* server, const char* realm)
    {
        return got(registry.GetContenerReferenceWithServerName(server, realm));
    }
    bool get_manager(const char* server)
    {
        return got(registry.GetServiceRefrence(server));
    }

    std::vector<std::string> realms(const char* server)
    {
        std::vector<std::string> names;
        for (const auto& realm : registry.GetReleamList(server))
            names.emplace_back(realm.c_str());
        return names;
    }

    Published<PortServant> ports;
    Published<PointServant> points;
    Published<TemplateServant> templates;
    Published<ContentionServant> contention;
    Published<ServiceManagerServant> manager;
    vlReferenceContainer registry;
};

} // namespace velmo::tests

#endif
