#include "server/adapter.h"

namespace velmo::server {

PortableServer::POA_ptr root_adapter(CORBA::ORB_ptr orb)
{
    CORBA::Object_var object = orb->resolve_initial_references("RootPOA");
    return PortableServer::POA::_narrow(object.in());
}

PortableServer::POA_ptr persistent_adapter(CORBA::ORB_ptr orb, const char* name)
{
    PortableServer::POA_var root = root_adapter(orb);
    PortableServer::POAManager_var manager = root->the_POAManager();
    CORBA::PolicyList policies(2);
    policies.length(2);
    policies[0] = root->create_lifespan_policy(PortableServer::PERSISTENT);
    policies[1] = root->create_id_assignment_policy(PortableServer::USER_ID);
    PortableServer::POA_var adapter = root->create_POA(name, manager.in(), policies);
    for (CORBA::ULong i = 0; i < policies.length(); ++i)
        policies[i]->destroy();
    return adapter._retn();
}

CORBA::Object_ptr activate(PortableServer::POA_ptr adapter, const char* id,
                           PortableServer::Servant servant)
{
    PortableServer::ObjectId_var object_id = PortableServer::string_to_ObjectId(id);
    adapter->activate_object_with_id(object_id.in(), servant);
    return adapter->id_to_reference(object_id.in());
}

void open_adapters(CORBA::ORB_ptr orb)
{
    PortableServer::POA_var root = root_adapter(orb);
    PortableServer::POAManager_var manager = root->the_POAManager();
    manager->activate();
}

} // namespace velmo::server
