// For the parts of PortService alone.
#ifndef VELMO_SERVER_MODEL_CHANGING_PORTS_H
#define VELMO_SERVER_MODEL_CHANGING_PORTS_H

#include "server/model/port_service.h"

namespace velmo::model {

// The lock, for operations that change something: as long as it is held, and not a moment
// longer, what they have recorded waits to be appended, as one. Whoever sleeps with it
// has recorded nothing yet.
class PortService::Changing : public Lock {
public:
    explicit Changing(PortService& its_service)
        : Lock(its_service.mutex), service(its_service)
    {
    }
    ~Changing() { service.recorder.close(); }

private:
    PortService& service;
};

} // namespace velmo::model

#endif
