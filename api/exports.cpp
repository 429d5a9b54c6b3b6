// The exported C functions: each forwards its arguments to the operation of the
// same name. Their documentation is vl_api.h.

#include "vl_api.h"

#include <cstdlib>

#include "api/ErrorC.h"
#include "api/Velmo_API_Manager.h"
#include "api/entry.h"
#include "registry/registry_use.h"
#include "vlReferenceContainer.h"

namespace {

using velmo::api::Entry;

// The first call makes the manager; this kind of operation works without it.
template <class Result, class... Parameters>
Result forward(Result (*operation)(Parameters...), Parameters... arguments)
{
    const Entry entry;
    Velmo_API_Manager::instance();
    return operation(arguments...);
}

template <class... Parameters>
int forward(int (Velmo_API_Manager::*operation)(Parameters...), Parameters... arguments)
{
    const Entry entry;
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
    const Entry entry;
    ServerRecord record{};
    if (velmo::util::Fork::is_cut_off())
        return record;
    vlReferenceContainer* registry = vlReferenceContainer::instance();
    const RegistryUse use;
    if (!registry || !use.allowed())
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
    const Entry entry;
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

int vl_get_connection_info(ConnectionList* list, const char* server_name,
                           const char* releam)
{
    return forward(&Manager::get_connection_info, list, server_name, releam);
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

int vl_com_chennal_seq(NameList* list, const char* server_name, const char* releam)
{
    return forward(&Manager::com_chennal_seq, list, server_name, releam);
}

int enableCopy(const char* object, unsigned int enable, const char* server_name,
               const char* releam)
{
    return forward(&Manager::enableCopy, object, enable, server_name, releam);
}

int vl_send_packet(unsigned int port, const void* data, int length, unsigned int option,
                   const char* server_name, const char* releam)
{
    return forward(&Manager::send_packet, port, data, length, option, server_name, releam);
}

int vl_send_packet_to_front(unsigned int port, const void* data, int length,
                            unsigned int option, const char* server_name,
                            const char* releam)
{
    return forward(&Manager::send_packet_to_front, port, data, length, option, server_name,
                   releam);
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

int vl_receive_reply(unsigned int port, void* buffer, unsigned int size,
                     unsigned int option, const char* server_name, const char* releam)
{
    return forward(&Manager::receive_reply, port, buffer, size, option, server_name,
                   releam);
}

int vl_receive_reply2(unsigned int port, void** data, unsigned int* length,
                      unsigned int option, const char* server_name, const char* releam)
{
    return forward(&Manager::receive_reply2, port, data, length, option, server_name,
                   releam);
}

int vl_declare_event(unsigned int id, const void* data, int length, const char* server_name,
                     const char* releam)
{
    return forward(&Manager::declare_event, id, data, length, server_name, releam);
}

int vl_add_event(const char* event, unsigned int id, const char* server_name,
                 const char* releam)
{
    return forward(&Manager::add_event, event, id, server_name, releam);
}

int vl_send_event(const char* event, const void* data, int length, const char* server_name,
                  const char* releam)
{
    return forward(&Manager::send_event, event, data, length, server_name, releam);
}

int vl_clear_event(const char* event, const char* server_name, const char* releam)
{
    return forward(&Manager::clear_event, event, server_name, releam);
}

int vl_event_count(const char* event, int* count, const char* server_name,
                   const char* releam)
{
    return forward(&Manager::event_count, event, count, server_name, releam);
}

int vl_create_data_template_point(const char* point_name, const char* template_name,
                                  const char* server_name, const char* releam)
{
    return forward(&Manager::create_data_template_point, point_name, template_name,
                   server_name, releam);
}

int vl_get_data_template_point(const char* point_name, void* buffer, int size,
                               const char* server_name, const char* releam)
{
    return forward(&Manager::get_data_template_point, point_name, buffer, size, server_name,
                   releam);
}

int vl_set_data_template_point(const char* point_name, const void* data, int size,
                               const char* server_name, const char* releam)
{
    return forward(&Manager::set_data_template_point, point_name, data, size, server_name,
                   releam);
}

int vl_remove_template_point(const char* point_name, const char* server_name,
                             const char* releam)
{
    return forward(&Manager::remove_template_point, point_name, server_name, releam);
}

int vl_set_data_template_point_description(const char* point_name, const char* description,
                                           const char* server_name, const char* releam)
{
    return forward(&Manager::set_data_template_point_description, point_name, description,
                   server_name, releam);
}

char* vl_get_data_template_point_description(const char* point_name,
                                             const char* server_name, const char* releam)
{
    return forward(&Manager::get_data_template_point_description, point_name, server_name,
                   releam);
}

char* vl_get_data_template_point_type(const char* point_name, const char* server_name,
                                      const char* releam)
{
    return forward(&Manager::get_data_template_point_type, point_name, server_name, releam);
}

int vl_get_all_point_name(NameList* list, const char* server_name, const char* releam)
{
    return forward(&Manager::get_all_point_name, list, server_name, releam);
}

int vl_get_all_point_by_typename(NameList* list, const char* type_name,
                                 const char* server_name, const char* releam)
{
    return forward(&Manager::get_all_point_by_typename, list, type_name, server_name,
                   releam);
}

int vl_check_null_data(NameList* list, const char* server_name, const char* releam)
{
    return forward(&Manager::check_null_data, list, server_name, releam);
}

int vl_get_query_data_type(NameList* list, const char* server_name, const char* releam)
{
    return forward(&Manager::get_query_data_type, list, server_name, releam);
}

int get_dtp_info(const char* point_name, char** text1, char** text2, void** data,
                 const char* server_name, const char* releam)
{
    return forward(&Manager::get_dtp_info, point_name, text1, text2, data, server_name,
                   releam);
}

int get_dtp_info2(const char* point_name, char** text1, char** text2, void** data,
                  unsigned int* length, const char* server_name, const char* releam)
{
    return forward(&Manager::get_dtp_info2, point_name, text1, text2, data, length,
                   server_name, releam);
}

int vl_create_set(const char* first_name, const char* second_name, const void* data,
                  int size, const char* server_name, const char* releam)
{
    return forward(&Manager::create_set, first_name, second_name, data, size, server_name,
                   releam);
}

int vl_make_dt_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::make_dt_snapshot, server_name, releam);
}

int vl_load_dt_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::load_snapshot, server_name, releam);
}

int vl_make_dtp_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::make_dtp_snapshot, server_name, releam);
}

int vl_load_dtp_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::load_dtp_snapshot, server_name, releam);
}

int vl_make_port_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::make_port_snapshot, server_name, releam);
}

int vl_load_port_snapshot(const char* server_name, const char* releam)
{
    return forward(&Manager::load_snapshot, server_name, releam);
}

int vl_regist_contender(const char* group, const char* contender, const void* data,
                        int size, const char* role, int priority, const char* server_name,
                        const char* releam)
{
    // The operation takes the priority ahead of the data.
    return forward(&Manager::regist_contender, group, contender, priority, data, size, role,
                   server_name, releam);
}

int vl_update_contender(const char* group, const char* contender, const char* unused,
                        const char* server_name, const char* releam)
{
    return forward(&Manager::update_contender, group, contender, unused, server_name,
                   releam);
}

int vl_out_contend(const char* group, const char* contender, const char* unused,
                   const char* server_name, const char* releam)
{
    return forward(&Manager::out_contend, group, contender, unused, server_name, releam);
}
