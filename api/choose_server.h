#ifndef VELMO_API_CHOOSE_SERVER_H
#define VELMO_API_CHOOSE_SERVER_H

#include "vl_api.h"

namespace velmo::api {

// The server that a call goes to: the one named, else the first at position
// "own". Where there is none, what the caller gave: an empty name goes on as it
// is, null means that there is no server.
inline const char* choose_server(const char* server_name)
{
    if (server_name && *server_name)
        return server_name;
    const ServerRecord own = vl_get_servername("own");
    return own.count > 0 ? own.names[0] : server_name;
}

} // namespace velmo::api

#endif
