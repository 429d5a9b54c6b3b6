#include "api/Velmo_API_Manager.h"

#include "registry/process_singleton.h"
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

Velmo_API_Manager* Velmo_API_Manager::instance()
{
    return ProcessSingleton<Velmo_API_Manager>::instance();
}
