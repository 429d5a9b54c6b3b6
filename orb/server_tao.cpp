#include "orb/server.h"

#include <tao/IORTable/IORTable.h>

#include "orb/arguments.h"
#include "orb/listening.h"
#include "orb/options_tao.h"

namespace velmo::orb {

Abilities abilities()
{
#if defined(ACE_HAS_IPV6)
    constexpr bool ipv6 = true;
#else
    constexpr bool ipv6 = false;
#endif
    // TAO 2.2 keeps a table of 32 KiB for each connection.
    return {false, ipv6, false, false, 80};
}

CORBA::ORB_var make_server_orb(const ServerOptions& options)
{
    // Each connection has a thread, so that a waiting receive holds up nobody else.
    std::vector<std::string> arguments = connection_options();
    arguments.insert(
        arguments.end(),
        {"-ORBSvcConfDirective",
         "static Server_Strategy_Factory '-ORBConcurrency thread-per-connection'"});
    for (const Endpoint& endpoint : options.endpoints) {
        arguments.insert(arguments.end(),
                         {"-ORBListenEndpoints", "iiop://" + url_host(endpoint.host) + ":" +
                                                     std::to_string(endpoint.port)});
    }
    Arguments vector{std::move(arguments)};
    CORBA::ORB_var orb = CORBA::ORB_init(vector.count, vector.values());
    try {
        // The ORB listens as soon as it has an object adapter.
        CORBA::Object_var adapter = orb->resolve_initial_references("RootPOA");
        lengthen_queues();
    } catch (const CORBA::SystemException& error) {
        orb->destroy();
        throw EndpointError(describe(error));
    }
    return orb;
}

CORBA::Object_ptr activate_under_key(CORBA::ORB_ptr orb, const char* key,
                                     PortableServer::Servant servant)
{
    CORBA::Object_var root_object = orb->resolve_initial_references("RootPOA");
    PortableServer::POA_var root = PortableServer::POA::_narrow(root_object.in());
    PortableServer::POAManager_var manager = root->the_POAManager();
    CORBA::PolicyList policies(2);
    policies.length(2);
    policies[0] = root->create_lifespan_policy(PortableServer::PERSISTENT);
    policies[1] = root->create_id_assignment_policy(PortableServer::USER_ID);
    const std::string name = std::string("key ") + key;
    PortableServer::POA_var adapter =
        root->create_POA(name.c_str(), manager.in(), policies);

    PortableServer::ObjectId_var id = PortableServer::string_to_ObjectId(key);
    adapter->activate_object_with_id(id.in(), servant);
    manager->activate();
    CORBA::Object_var object = adapter->id_to_reference(id.in());

    CORBA::Object_var table_object = orb->resolve_initial_references("IORTable");
    IORTable::Table_var table = IORTable::Table::_narrow(table_object.in());
    CORBA::String_var ior = orb->object_to_string(object.in());
    table->rebind(key, ior.in());
    return object._retn();
}

ServedConnection::ServedConnection() : socket(-1) {}

bool ServedConnection::closed() const
{
    return false;
}

} // namespace velmo::orb
