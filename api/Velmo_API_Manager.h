// The operations behind the exported C functions.
#ifndef VELMO_API_VELMO_API_MANAGER_H
#define VELMO_API_VELMO_API_MANAGER_H

#include <atomic>
#include <cstdint>

#include "registry/host_name.h"
#include "registry/process_singleton.h"
#include "vl_api.h"

// One per process, made by the first call of an export. What an operation does,
// and its codes, are documented at the export of the same name in vl_api.h.
//
// The static operations need no manager and so work where there was no memory for
// one. They are defined where their subject is: ports/, points/, contention/.
class Velmo_API_Manager {
public:
    Velmo_API_Manager();
    virtual ~Velmo_API_Manager(); // ends the naming client

    // The process's manager; null only when there is no memory for it.
    static Velmo_API_Manager* instance()
    {
        return ProcessSingleton<Velmo_API_Manager>::instance();
    }

    static int mid_connect(const char* server_name);
    int mid_disconnect();

    static int releam_seq(NameList* list, const char* server_name);

    static int create_port(const char* port, unsigned int handle, unsigned int capacity,
                           const char* server_name, const char* releam);
    int connect_port(const char* from, const char* to, unsigned int mode,
                     unsigned int flags, const char* remark, const char* server_name,
                     const char* releam);
    static int disconenct_port(unsigned int port, const char* server_name,
                               const char* releam);
    static int get_connection_info(ConnectionList* list, const char* server_name,
                                   const char* releam);
    static int com_chennal_seq(NameList* list, const char* server_name, const char* releam);
    static int enableCopy(const char* object, unsigned int enable, const char* server_name,
                          const char* releam);

    static int send_packet(unsigned int port, const void* data, int length,
                           unsigned int option, const char* server_name,
                           const char* releam);
    static int send_packet_to_front(unsigned int port, const void* data, int length,
                                    unsigned int option, const char* server_name,
                                    const char* releam);
    static int receive_packet(unsigned int port, void* from, void* buffer,
                              unsigned int size, unsigned int option,
                              const char* server_name, const char* releam);
    static int receive_packetv(unsigned int port, void* from, void** data,
                               unsigned int* length, unsigned int option,
                               const char* server_name, const char* releam);
    static int reply_packet(unsigned int port, const void* data, int length,
                            unsigned int option, const char* server_name,
                            const char* releam);
    static int receive_reply(unsigned int port, void* buffer, unsigned int size,
                             unsigned int option, const char* server_name,
                             const char* releam);
    static int receive_reply2(unsigned int port, void** data, unsigned int* length,
                              unsigned int option, const char* server_name,
                              const char* releam);

    static int declare_event(unsigned int id, const void* data, int length,
                             const char* server_name, const char* releam);
    static int add_event(const char* event, unsigned int id, const char* server_name,
                         const char* releam);
    static int send_event(const char* event, const void* data, int length,
                          const char* server_name, const char* releam);
    static int clear_event(const char* event, const char* server_name, const char* releam);
    static int event_count(const char* event, int* count, const char* server_name,
                           const char* releam);

    static int create_data_template_point(const char* point_name, const char* template_name,
                                          const char* server_name, const char* releam);
    static int get_data_template_point(const char* point_name, void* buffer, int size,
                                       const char* server_name, const char* releam);
    static int set_data_template_point(const char* point_name, const void* data, int size,
                                       const char* server_name, const char* releam);
    static int remove_template_point(const char* point_name, const char* server_name,
                                     const char* releam);
    static int set_data_template_point_description(const char* point_name,
                                                   const char* description,
                                                   const char* server_name,
                                                   const char* releam);
    static char* get_data_template_point_description(const char* point_name,
                                                     const char* server_name,
                                                     const char* releam);
    static char* get_data_template_point_type(const char* point_name,
                                              const char* server_name, const char* releam);

    static int get_all_point_name(NameList* list, const char* server_name,
                                  const char* releam);
    static int get_all_point_by_typename(NameList* list, const char* type_name,
                                         const char* server_name, const char* releam);
    static int check_null_data(NameList* list, const char* server_name, const char* releam);
    static int get_query_data_type(NameList* list, const char* server_name,
                                   const char* releam);
    static int get_dtp_info(const char* point_name, char** text1, char** text2, void** data,
                            const char* server_name, const char* releam);
    static int get_dtp_info2(const char* point_name, char** text1, char** text2,
                             void** data, unsigned int* length, const char* server_name,
                             const char* releam);
    static int create_set(const char* first_name, const char* second_name, const void* data,
                          int size, const char* server_name, const char* releam);

    static int make_dt_snapshot(const char* server_name, const char* releam);
    static int make_dtp_snapshot(const char* server_name, const char* releam);
    static int make_port_snapshot(const char* server_name, const char* releam);
    static int load_dtp_snapshot(const char* server_name, const char* releam);
    static int load_port_snapshot(const char* server_name, const char* releam);
    static int load_snapshot(const char* server_name, const char* releam);

    // The priority comes ahead of the data here, and last in the export.
    static int regist_contender(const char* group, const char* contender, int priority,
                                const void* data, int size, const char* role,
                                const char* server_name, const char* releam);
    static int update_contender(const char* group, const char* contender,
                                const char* unused, const char* server_name,
                                const char* releam);
    static int out_contend(const char* group, const char* contender, const char* unused,
                           const char* server_name, const char* releam);

private:
    char host_name[host_name_size];
    std::atomic<std::int32_t> connected{0}; // kept for the object's shape, never read
};

#endif
