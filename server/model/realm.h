// What one realm of a server holds.
#ifndef VELMO_SERVER_MODEL_REALM_H
#define VELMO_SERVER_MODEL_REALM_H

#include <string>

#include "server/model/port_service.h"

namespace velmo::model {

struct Realm {
    Realm(std::string realm_name, const PortLimits& limits)
        : name(std::move(realm_name)), ports(limits)
    {
    }

    // Ends all waiting, for good.
    void stop() { ports.stop(); }

    const std::string name; // empty for the unnamed realm
    PortService ports;
};

} // namespace velmo::model

#endif
