// The client that a servant serves, as the model knows it.
#ifndef VELMO_SERVER_SERVICES_REMOTE_CALLER_H
#define VELMO_SERVER_SERVICES_REMOTE_CALLER_H

#include "orb/server.h"
#include "server/model/caller.h"

namespace velmo::services {

// To be made within a servant's operation, by the thread that serves it.
class RemoteCaller final : public model::Caller {
public:
    bool gone() const override { return connection.closed(); }

private:
    const orb::ServedConnection connection;
};

} // namespace velmo::services

#endif
