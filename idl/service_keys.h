// The names under which a server's services are bound in its naming service. In a
// named realm, all but the service manager are bound below the realm's context.
#ifndef VELMO_IDL_SERVICE_KEYS_H
#define VELMO_IDL_SERVICE_KEYS_H

namespace velmo::keys {

constexpr const char* port_service = "ref_key_data_port_naming_service";
constexpr const char* data_template_point_service =
    "ref_key_data_template_point_naming_service";
constexpr const char* data_template_service = "ref_key_data_template_naming_service";
constexpr const char* contention_service = "ref_key_contender_server";
constexpr const char* service_manager = "Velmo_service_manager_naming_service_ref";

constexpr const char* all[] = {port_service, data_template_point_service,
                               data_template_service, contention_service, service_manager};

// Another name for the unnamed realm, as realm lists show it.
constexpr const char* root_realm = "ROOT";

} // namespace velmo::keys

#endif
