// Where a server's services stand in a naming service.
#ifndef VELMO_SERVER_NAMING_LAYOUT_H
#define VELMO_SERVER_NAMING_LAYOUT_H

#include <string>
#include <vector>

#include "server/services/services.h"

namespace velmo::naming {

struct Binding {
    std::string path; // contexts and a name, with "/" between
    CORBA::Object_var object;
};

// The unnamed realm's services under their keys, and once more in the context ROOT;
// a named realm's in the context REALM, or in nested ones where the realm's name has
// a "/"; the service manager under its key alone.
std::vector<Binding> layout(const std::vector<services::Service>& services);

} // namespace velmo::naming

#endif
