#include "idl/nil_references.h"

#include "VelmoC.h"
#include "Velmo_serverC.h"
#include "orb/corba.h"

namespace velmo::idl {

namespace {

template <class... Interfaces>
bool use_nil_references()
{
    (static_cast<void>(Interfaces::_nil()), ...);
    return true;
}

} // namespace

void make_nil_references()
{
    static const bool made = use_nil_references<
        CORBA::Object, CosNaming::NamingContext, CosNaming::BindingIterator,
        Velmo::DT_PORT_SVC::Port_Factory, Velmo::DT_POINT_SVC::DT_Point_Factory,
        Velmo::SYSTEM_SVC::DT_manager, Velmo::HEART_BIT::contender_server,
        Velmo::VelmoServiceManager>();
    static_cast<void>(made);
}

} // namespace velmo::idl
