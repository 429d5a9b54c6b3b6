// Whether a server's naming service can be reached, and the end of its use.

#include "api/Velmo_API_Manager.h"
#include "api/choose_server.h"
#include "util/fork.h"
#include "vlNaming_Client.h"

int Velmo_API_Manager::mid_connect(const char* server_name)
{
    if (velmo::util::Fork::is_cut_off())
        return NAMING_SERVER_NOT_ONLINE;
    const char* server = velmo::api::choose_server(server_name);
    if (!server)
        return NULL_SERVER_NAME;
    return vlNaming_Client::GetInstance()->isConnect(server) ? VL_OK
                                                             : NAMING_SERVER_NOT_ONLINE;
}

int Velmo_API_Manager::mid_disconnect()
{
    connected.store(0, std::memory_order_relaxed);
    return VL_OK;
}
