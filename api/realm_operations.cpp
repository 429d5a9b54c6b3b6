// The realms of a server.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/name_list.h"
#include "idl/service_keys.h"
#include "util/fork.h"

namespace {

constexpr int releam_seq_failed = 137;

} // namespace

// Departs from the common frame: a server without a service manager has one realm,
// and a failed call leaves no cached reference to drop, nor a log line.
int Velmo_API_Manager::releam_seq(NameList* list, const char* server_name)
{
    if (!list)
        return releam_seq_failed;
    velmo::api::clear(*list);
    if (velmo::util::Fork::is_cut_off())
        return releam_seq_failed;
    const char* server = velmo::api::choose_server(server_name);
    if (!server)
        return NULL_SERVER_NAME;

    vlReferenceContainer* registry = vlReferenceContainer::instance();
    const velmo::api::Borrowed<Velmo::VelmoServiceManager> manager(
        registry ? registry->GetServiceRefrence(server) : nullptr);
    if (!manager.is_there()) {
        Velmo::NAME_SEQ root(1);
        root.length(1);
        root[0] = velmo::keys::root_realm;
        velmo::api::fill(*list, root);
        return VL_OK;
    }

    velmo::api::IncomingNames realms;
    const int result = velmo::api::unless_it_throws(releam_seq_failed, [&] {
        (*manager).get_releam_seq(realms.out()); // its own result says nothing
        return static_cast<int>(VL_OK);
    });
    if (result == VL_OK && realms.delivered())
        velmo::api::fill(*list, realms.names());
    return result;
}
