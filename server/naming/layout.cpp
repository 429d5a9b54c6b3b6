#include "server/naming/layout.h"

#include "idl/service_keys.h"

namespace velmo::naming {

std::vector<Binding> layout(const std::vector<services::Service>& services)
{
    std::vector<Binding> bindings;
    for (const services::Service& service : services) {
        if (!service.realm.empty()) {
            bindings.push_back({service.realm + "/" + service.key, service.reference});
            continue;
        }
        bindings.push_back({service.key, service.reference});
        if (service.key != keys::service_manager)
            bindings.push_back(
                {std::string(keys::root_realm) + "/" + service.key, service.reference});
    }
    return bindings;
}

} // namespace velmo::naming
