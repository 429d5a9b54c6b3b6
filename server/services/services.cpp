#include "server/services/services.h"

#include "idl/service_keys.h"
#include "server/adapter.h"
#include "server/services/contention_servant.h"
#include "server/services/point_servant.h"
#include "server/services/port_servant.h"
#include "server/services/service_manager_servant.h"
#include "server/services/template_servant.h"

namespace velmo::services {

std::string shown_name(const model::Realm& realm)
{
    return realm.name.empty() ? keys::root_realm : realm.name;
}

std::vector<Service> activate_services(CORBA::ORB_ptr orb, const Realms& realms,
                                       const Calls& calls, store::SnapshotStore* store)
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
        const Snapshots snapshots(store, *realm);
        PortableServer::Servant_var<TemplateServant> templates =
            new TemplateServant(realm->templates, snapshots, calls);
        publish(realm->name, keys::data_template_service, names.back() + "/template",
                templates.in());
        PortableServer::Servant_var<PointServant> points =
            new PointServant(realm->points, snapshots, calls);
        publish(realm->name, keys::data_template_point_service, names.back() + "/point",
                points.in());
        PortableServer::Servant_var<PortServant> ports =
            new PortServant(realm->ports, realm->events, snapshots, calls);
        publish(realm->name, keys::port_service, names.back() + "/port", ports.in());
        PortableServer::Servant_var<ContentionServant> contention =
            new ContentionServant(realm->contention, calls);
        publish(realm->name, keys::contention_service, names.back() + "/contention",
                contention.in());
    }
    PortableServer::Servant_var<ServiceManagerServant> manager =
        new ServiceManagerServant(names, calls);
    publish("", keys::service_manager, "manager", manager.in());
    return services;
}

} // namespace velmo::services
