#ifndef VELMO_IDL_NIL_REFERENCES_H
#define VELMO_IDL_NIL_REFERENCES_H

#include "VelmoC.h"
#include "Velmo_serverC.h"

namespace velmo::idl {

template <class... Interfaces>
void use_nil_references()
{
    (static_cast<void>(Interfaces::_nil()), ...);
}

// Some brokers' stubs make the nil reference of an interface at its first use, and
// look whether it is there without a lock. To be called, by one thread, before
// several use references.
inline void make_nil_references()
{
    use_nil_references<Velmo::DT_PORT_SVC::Port_Factory,
                       Velmo::DT_POINT_SVC::DT_Point_Factory, Velmo::SYSTEM_SVC::DT_manager,
                       Velmo::HEART_BIT::contender_server, Velmo::VelmoServiceManager>();
}

} // namespace velmo::idl

#endif
