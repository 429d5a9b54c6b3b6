// The operations behind the exported C functions.
#ifndef VELMO_API_VELMO_API_MANAGER_H
#define VELMO_API_VELMO_API_MANAGER_H

#include <atomic>
#include <cstdint>

#include "registry/host_name.h"
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
    static Velmo_API_Manager* instance();

    static int mid_connect(const char* server_name);
    int mid_disconnect();

    static int releam_seq(NameList* list, const char* server_name);
    static int load_snapshot(const char* server_name, const char* releam);

    static int create_port(const char* port, unsigned int handle, unsigned int capacity,
                           const char* server_name, const char* releam);
    int connect_port(const char* from, const char* to, unsigned int mode,
                     unsigned int flags, const char* remark, const char* server_name,
                     const char* releam);
    static int disconenct_port(unsigned int port, const char* server_name,
                               const char* releam);

    static int send_packet(unsigned int port, const void* data, int length,
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
    static int receive_reply2(unsigned int port, void** data, unsigned int* length,
                              unsigned int option, const char* server_name,
                              const char* releam);

private:
    char host_name[host_name_size];
    std::atomic<std::int32_t> connected{0}; // kept for the object's shape, never read
};

#endif
