// Object adapters. Functions throw CORBA::Exception.
#ifndef VELMO_SERVER_ADAPTER_H
#define VELMO_SERVER_ADAPTER_H

#include "orb/skeletons.h"

namespace velmo::server {

// The ORB's root adapter, whose manager the others share.
PortableServer::POA_ptr root_adapter(CORBA::ORB_ptr orb);

// A new adapter for objects that have the same references after a restart, as long as
// they have the same ids and the server listens where it did.
PortableServer::POA_ptr persistent_adapter(CORBA::ORB_ptr orb, const char* name);

// Activates a servant under an id and gives its reference.
CORBA::Object_ptr activate(PortableServer::POA_ptr adapter, const char* id,
                           PortableServer::Servant servant);

// Lets requests in.
void open_adapters(CORBA::ORB_ptr orb);

} // namespace velmo::server

#endif
