#include "api/Velmo_API_Manager.h"

#include "vlNaming_Client.h"

Velmo_API_Manager::Velmo_API_Manager()
{
    local_host_name(host_name);
}

Velmo_API_Manager::~Velmo_API_Manager()
{
    ProcessSingleton<Velmo_API_Manager>::forget(this);
    vlNaming_Client::ExitInstance();
}
