// The operations on ports, packets and events.

#include "tests/api/operations.h"

#include "idl/service_keys.h"
#include "tests/support/callers_list.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

// A wanted sender that does not fit into 32 bits.
void* const wanted_sender = reinterpret_cast<void*>(0x123456789AuLL);

// Calls a function that gives a block, and frees the block.
template <class Call>
int with_block(Call call)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int result = call(&data, &length);
    vl_free_memory(&data);
    return result;
}

std::vector<Operation> connection_operations()
{
    return {
        {"vl_create_port",
         "create_port",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_create_port("port", 7, 11, server, realm);
         },
         R"(create_port("port", 7, 11))",
         {112, 109, "create_port M/W Error "}},
        {"vl_connect_port",
         "connect_port",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_connect_port("from", "to", 30001, 13, "remark", server, realm);
         },
         R"(connect_port("from", "to", 30001, 13, "remark"))",
         {112, 110, "connect_port M/W Error "}},
        {"vl_disconenct_port",
         "disconnect_port",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_disconenct_port(7, server, realm);
         },
         "disconnect_port(7)",
         {112, 111, "disconnect_port M/W Error "}},
        {"vl_get_connection_info",
         "get_connection_info",
         keys::port_service,
         [](const char* server, const char* realm) {
             ConnectionList list{};
             const int result = vl_get_connection_info(&list, server, realm);
             vl_destory_connection_seq(&list);
             return result;
         },
         "get_connection_info()",
         {151, 151}},
        {"vl_com_chennal_seq",
         "com_chennal_seq",
         keys::port_service,
         [](const char* server, const char* realm) {
             return with_name_list(
                 [&](NameList* names) { return vl_com_chennal_seq(names, server, realm); });
         },
         "com_chennal_seq()",
         {143, 143},
         Operation::Cache::kept},
        {"enableCopy",
         "enable_copy",
         keys::port_service,
         [](const char* server, const char* realm) {
             return enableCopy("port", 3, server, realm);
         },
         R"(enable_copy("port", 3))",
         {112, 112}},
    };
}

std::vector<Operation> packet_operations()
{
    return {
        {"vl_send_packet",
         "send_packet",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_send_packet(7, "hello", 5, 3, server, realm);
         },
         R"(send_packet(7, "hello", 3))",
         {112, 112, "send_packet M/W Error "}},
        {"vl_send_packet_to_front",
         "send_packet_to_front",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_send_packet_to_front(7, "hello", 5, 3, server, realm);
         },
         R"(send_packet_to_front(7, "hello", 3))",
         {154, 154}},
        {"vl_receive_packet",
         "receive_packet",
         keys::port_service,
         [](const char* server, const char* realm) {
             char buffer[5];
             return vl_receive_packet(7, wanted_sender, buffer, sizeof buffer, 3, server,
                                      realm);
         },
         "receive_packet(7, 78187493530, 3)",
         {123, 123, "receive_packet M/W Error "}},
        {"vl_receive_packetv",
         "receive_packet",
         keys::port_service,
         [](const char* server, const char* realm) {
             return with_block([&](void** data, unsigned int* length) {
                 return vl_receive_packetv(7, wanted_sender, data, length, 3, server,
                                           realm);
             });
         },
         "receive_packet(7, 78187493530, 3)",
         {123, 123, "receive_packet M/W Error "}},
        {"vl_reply_packet",
         "reply_packet",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_reply_packet(7, "hello", 5, 3, server, realm);
         },
         R"(reply_packet(7, "hello", 3))",
         {124, 124}},
        {"vl_receive_reply",
         "receive_reply",
         keys::port_service,
         [](const char* server, const char* realm) {
             char buffer[5];
             return vl_receive_reply(7, buffer, sizeof buffer, 3, server, realm);
         },
         "receive_reply(7, 3)",
         {127, 127}},
        {"vl_receive_reply2",
         "receive_reply",
         keys::port_service,
         [](const char* server, const char* realm) {
             return with_block([&](void** data, unsigned int* length) {
                 return vl_receive_reply2(7, data, length, 3, server, realm);
             });
         },
         "receive_reply(7, 3)",
         {127, 127}},
    };
}

std::vector<Operation> event_operations()
{
    Operation clear{"vl_clear_event",
                    "clear_event",
                    keys::port_service,
                    [](const char* server, const char* realm) {
                        return vl_clear_event("event", server, realm);
                    },
                    R"(clear_event("event"))",
                    {152, 152}};
    clear.failures.no_reference = 3000;
    return {
        {"vl_declare_event",
         "declare_event",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_declare_event(7, "hello", 5, server, realm);
         },
         R"(declare_event(7, "hello", 1))",
         {126, 126, "declare_event M/W Error "}},
        {"vl_add_event",
         "add_event",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_add_event("event", 7, server, realm);
         },
         R"(add_event("event", 7))",
         {125, 125}},
        {"vl_send_event",
         "send_event",
         keys::port_service,
         [](const char* server, const char* realm) {
             return vl_send_event("event", "hello", 5, server, realm);
         },
         R"(send_event("event", "hello"))",
         {112, 112, "send_event M/W Error "}},
        clear,
        {"vl_event_count",
         "event_count",
         keys::port_service,
         [](const char* server, const char* realm) {
             int count = 0;
             return vl_event_count("event", &count, server, realm);
         },
         R"(event_count("event"))",
         {153, 153}},
    };
}

} // namespace

std::vector<Operation> port_operations()
{
    std::vector<Operation> all;
    for (const auto group : {connection_operations, packet_operations, event_operations})
        for (const Operation& operation : group())
            all.push_back(operation);
    return all;
}

} // namespace velmo::tests
