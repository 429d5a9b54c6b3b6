// The exported C functions: each forwards its arguments to the operation of the
// same name. Their documentation is vl_api.h.

#include "vl_api.h"

#include <cstdlib>

#include "api/ErrorC.h"
#include "api/Velmo_API_Manager.h"
#include "vlReferenceContainer.h"

namespace {

// The first call makes the manager; this kind of operation works without it.
template <class... Parameters>
int forward(int (*operation)(Parameters...), Parameters... arguments)
{
    Velmo_API_Manager::instance();
    return operation(arguments...);
}

template <class... Parameters>
int forward(int (Velmo_API_Manager::*operation)(Parameters...), Parameters... arguments)
{
    Velmo_API_Manager* manager = Velmo_API_Manager::instance();
    return manager ? (manager->*operation)(arguments...) : static_cast<int>(VL_FAIL);
}

} // namespace

using Manager = Velmo_API_Manager;

int vl_mid_connect(const char* server_name)
{
    return forward(&Manager::mid_connect, server_name);
}

int vl_mid_is_connect(const char* server_name)
{
    return forward(&Manager::mid_connect, server_name);
}

int vl_mid_disconnect(void)
{
    return forward(&Manager::mid_disconnect);
}

ServerRecord vl_get_servername(const char* position)
{
    ServerRecord record{};
    vlReferenceContainer* registry = vlReferenceContainer::instance();
    if (!registry)
        return record;
    for (const auto* name : registry->InquireServerNameWithPosition(position)) {
        if (record.count == VL_SERVER_RECORD_NAMES)
            break;
        record.names[record.count++] = name->c_str();
    }
    return record;
}

int vl_releam_seq(NameList* list, const char* server_name)
{
    return forward(&Manager::releam_seq, list, server_name);
}

const wchar_t* get_error_string(int code)
{
    const ErrorC* errors = ErrorC::instance();
    return errors ? errors->text(code) : ErrorC::unknown_error;
}

void vl_free_memory(void** p)
{
    if (!p)
        return;
    std::free(*p);
    *p = nullptr;
}

int vl_create_port(const char* port, unsigned int handle, unsigned int capacity,
                   const char* server_name, const char* releam)
{
    return forward(&Manager::create_port, port, handle, capacity, server_name, releam);
}

int vl_connect_port(const char* from, const char* to, unsigned int mode, unsigned int flags,
                    const char* remark, const char* server_name, const char* releam)
{
    return forward(&Manager::connect_port, from, to, mode, flags, remark, server_name,
                   releam);
}

int vl_disconenct_port(unsigned int port, const char* server_name, const char* releam)
{
    return forward(&Manager::disconenct_port, port, server_name, releam);
}

void vl_destory_connection_seq(ConnectionList* list)
{
    if (!list)
        return;
    if (list->count > 0) {
        ConnectionBlock* block = list->first;
        while (block) {
            ConnectionBlock* next = block->next;
            std::free(block);
            block = next;
        }
    }
    list->count = 0;
}

int vl_send_packet(unsigned int port, const void* data, int length, unsigned int option,
                   const char* server_name, const char* releam)
{
    return forward(&Manager::send_packet, port, data, length, option, server_name, releam);
}

int vl_receive_packet(unsigned int port, void* from, void* buffer, unsigned int size,
                      unsigned int option, const char* server_name, const char* releam)
{
    return forward(&Manager::receive_packet, port, from, buffer, size, option, server_name,
                   releam);
}

int vl_receive_packetv(unsigned int port, void* from, void** data, unsigned int* length,
                       unsigned int option, const char* server_name, const char* releam)
{
    return forward(&Manager::receive_packetv, port, from, data, length, option, server_name,
                   releam);
}

int vl_reply_packet(unsigned int port, const void* data, int length, unsigned int option,
                    const char* server_name, const char* releam)
{
    return forward(&Manager::reply_packet, port, data, length, option, server_name, releam);
}

int vl_receive_reply2(unsigned int port, void** data, unsigned int* length,
                      unsigned int option, const char* server_name, const char* releam)
{
    return forward(&Manager::receive_reply2, port, data, length, option, server_name,
                   releam);
}

int vl_load_dt_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::load_snapshot, server_name, releam);
}

int vl_load_port_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::load_snapshot, server_name, releam);
}
