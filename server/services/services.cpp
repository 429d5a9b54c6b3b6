#include "server/services/services.h"

#include "idl/service_keys.h"
#include "server/adapter.h"
#include "server/services/port_servant.h"
#include "server/services/service_manager_servant.h"

namespace velmo::services {

namespace {

std::string shown_name(const model::Realm& realm)
{
    return realm.name.empty() ? keys::root_realm : realm.name;
}

} // namespace

std::vector<Service> activate_services(CORBA::ORB_ptr orb, const Realms& realms)
{
    PortableServer::POA_var adapter = server::persistent_adapter(orb, "velmo");
    std::vector<Service> services;
    const auto publish = [&](const std::string& realm, const char* key,
                             const std::string& id, PortableServer::Servant servant) {
        services.push_back(
            {realm, key, server::activate(adapter.in(), id.c_str(), servant)});
    };

    std::vector<std::string> names;
    for (const auto& realm : realms) {
        names.push_back(shown_name(*realm));
        PortableServer::Servant_var<PortServant> ports = new PortServant(realm->ports);
        publish(realm->name, keys::port_service, names.back() + "/port", ports.in());
    }
    PortableServer::Servant_var<ServiceManagerServant> manager =
        new ServiceManagerServant(names);
    publish("", keys::service_manager, "manager", manager.in());
    return services;
}

} // namespace velmo::services
