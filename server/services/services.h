// The services of a server, activated.
#ifndef VELMO_SERVER_SERVICES_SERVICES_H
#define VELMO_SERVER_SERVICES_SERVICES_H

#include <memory>
#include <string>
#include <vector>

#include "orb/corba.h"
#include "server/model/realm.h"
#include "server/services/calls.h"
#include "server/services/snapshots.h"

namespace velmo::services {

// Its name in what people read.
std::string shown_name(const model::Realm& realm);

using Realms = std::vector<std::unique_ptr<model::Realm>>;

struct Service {
    std::string realm; // empty for the unnamed one, and for what belongs to none
    std::string key;   // of idl/service_keys.h
    CORBA::Object_var reference;
};

// Activates the services of every realm and the service manager, in an adapter of
// their own: the references stay good over a restart. The realms, what their calls have
// in common, and the store where their snapshots are kept (null: nowhere) must outlive
// the ORB. Throws
// CORBA::Exception.
std::vector<Service> activate_services(CORBA::ORB_ptr orb, const Realms& realms,
                                       const Calls& calls,
                                       store::SnapshotStore* store = nullptr);

} // namespace velmo::services

#endif
