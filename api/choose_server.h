#ifndef VELMO_API_CHOOSE_SERVER_H
#define VELMO_API_CHOOSE_SERVER_H

#include "registry/registry_reader.h"

namespace velmo::api {

// The server that a call goes to: the one named, else the first at position
// "own". Where there is none, what the caller gave: an empty name goes on as it
// is, null means that there is no server.
inline const char* choose_server(const RegistryReader& registry, const char* server_name)
{
    if (server_name && *server_name)
        return server_name;
    const char* own = registry.own_server();
    return own ? own : server_name;
}

// The same for those who ask the registry nothing else.
inline const char* choose_server(const char* server_name)
{
    if (server_name && *server_name)
        return server_name;
    return choose_server(RegistryReader(vlReferenceContainer::instance()), server_name);
}

} // namespace velmo::api

#endif
