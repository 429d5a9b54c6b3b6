#include "tests/api/port_operations.h"

#include "vl_api.h"

namespace velmo::tests {

namespace {

int create_port(const char* server, const char* realm)
{
    return vl_create_port("port", 1, 2, server, realm);
}

int connect_port(const char* server, const char* realm)
{
    return vl_connect_port("from", "to", 30001, 0, "", server, realm);
}

int disconenct_port(const char* server, const char* realm)
{
    return vl_disconenct_port(1, server, realm);
}

int send_packet(const char* server, const char* realm)
{
    return vl_send_packet(1, "hello", 5, 0, server, realm);
}

int receive_packet(const char* server, const char* realm)
{
    char buffer[5];
    return vl_receive_packet(1, nullptr, buffer, sizeof buffer, 0, server, realm);
}

int receive_packetv(const char* server, const char* realm)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int result = vl_receive_packetv(1, nullptr, &data, &length, 0, server, realm);
    vl_free_memory(&data);
    return result;
}

int reply_packet(const char* server, const char* realm)
{
    return vl_reply_packet(1, "hello", 5, 0, server, realm);
}

int receive_reply2(const char* server, const char* realm)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int result = vl_receive_reply2(1, &data, &length, 0, server, realm);
    vl_free_memory(&data);
    return result;
}

} // namespace

const PortOperation port_operations[8] = {
    {"vl_create_port", "create_port", create_port, 112, 109, "create_port M/W Error "},
    {"vl_connect_port", "connect_port", connect_port, 112, 110, "connect_port M/W Error "},
    {"vl_disconenct_port", "disconnect_port", disconenct_port, 112, 111,
     "disconnect_port M/W Error "},
    {"vl_send_packet", "send_packet", send_packet, 112, 112, "send_packet M/W Error "},
    {"vl_receive_packet", "receive_packet", receive_packet, 123, 123,
     "receive_packet M/W Error "},
    {"vl_receive_packetv", "receive_packet", receive_packetv, 123, 123,
     "receive_packet M/W Error "},
    {"vl_reply_packet", "reply_packet", reply_packet, 124, 124, nullptr},
    {"vl_receive_reply2", "receive_reply", receive_reply2, 127, 127, nullptr},
};

} // namespace velmo::tests
