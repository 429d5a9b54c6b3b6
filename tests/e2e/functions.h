// Every function with a server and a realm, and what it gives when it cannot reach them.
#ifndef VELMO_TESTS_E2E_FUNCTIONS_H
#define VELMO_TESTS_E2E_FUNCTIONS_H

#include <string>

#include "tests/e2e/calls.h"

namespace velmo::tests {

inline constexpr int no_text = -1; // a null pointer instead of a string

// A function with a server and a realm, the code of a failed call, and the one where
// there is no reference.
struct Function {
    const char* name;
    int failed;
    int no_reference;
    int (*call)(const char* realm);
};

inline int code_of(char* text)
{
    return taken(text) == "NULL" ? no_text : VL_OK;
}

// The code of a call that fills a list.
template <class Call>
int code_of_list(Call call)
{
    int code = VL_OK;
    listed([&](NameList* list) { return code = call(list); });
    return code;
}

inline const Function functions[] = {
    {"vl_create_port", 112, 99,
     [](const char* realm) { return vl_create_port("p", 1, 0, nullptr, realm); }},
    {"vl_connect_port", 112, 99,
     [](const char* realm) {
         return vl_connect_port("p", "p", 30001, 0, "", nullptr, realm);
     }},
    {"vl_disconenct_port", 112, 99,
     [](const char* realm) { return vl_disconenct_port(1, nullptr, realm); }},
    {"vl_get_connection_info", 151, 99,
     [](const char* realm) {
         ConnectionList list{};
         const int code = vl_get_connection_info(&list, nullptr, realm);
         vl_destory_connection_seq(&list);
         return code;
     }},
    {"vl_com_chennal_seq", 143, 99,
     [](const char* realm) {
         return code_of_list(
             [&](NameList* list) { return vl_com_chennal_seq(list, nullptr, realm); });
     }},
    {"enableCopy", 112, 99,
     [](const char* realm) { return enableCopy("p", 1, nullptr, realm); }},
    {"vl_send_packet", 112, 99,
     [](const char* realm) { return vl_send_packet(1, "x", 1, 0, nullptr, realm); }},
    {"vl_send_packet_to_front", 154, 99,
     [](const char* realm) {
         return vl_send_packet_to_front(1, "x", 1, 0, nullptr, realm);
     }},
    {"vl_receive_packet", 123, 99,
     [](const char* realm) {
         char byte;
         return vl_receive_packet(1, nullptr, &byte, 1, 0, nullptr, realm);
     }},
    {"vl_receive_packetv", 123, 99,
     [](const char* realm) {
         void* data = nullptr;
         unsigned int length = 0;
         const int code = vl_receive_packetv(1, nullptr, &data, &length, 0, nullptr, realm);
         vl_free_memory(&data);
         return code;
     }},
    {"vl_reply_packet", 124, 99,
     [](const char* realm) { return vl_reply_packet(1, "x", 1, 0, nullptr, realm); }},
    {"vl_receive_reply", 127, 99,
     [](const char* realm) {
         char byte;
         return vl_receive_reply(1, &byte, 1, 0, nullptr, realm);
     }},
    {"vl_receive_reply2", 127, 99,
     [](const char* realm) {
         void* data = nullptr;
         unsigned int length = 0;
         const int code = vl_receive_reply2(1, &data, &length, 0, nullptr, realm);
         vl_free_memory(&data);
         return code;
     }},
    {"vl_declare_event", 126, 99,
     [](const char* realm) { return vl_declare_event(7, "x", 1, nullptr, realm); }},
    {"vl_add_event", 125, 99,
     [](const char* realm) { return vl_add_event("e", 7, nullptr, realm); }},
    {"vl_send_event", 112, 99,
     [](const char* realm) { return vl_send_event("e", "x", 1, nullptr, realm); }},
    {"vl_clear_event", 152, 3000,
     [](const char* realm) { return vl_clear_event("e", nullptr, realm); }},
    {"vl_event_count", 153, 99,
     [](const char* realm) {
         int count = 0;
         return vl_event_count("e", &count, nullptr, realm);
     }},
    {"vl_create_data_template_point", 101, 99,
     [](const char* realm) {
         return vl_create_data_template_point("p", "text", nullptr, realm);
     }},
    {"vl_get_data_template_point", 102, 99,
     [](const char* realm) {
         char byte;
         return vl_get_data_template_point("p", &byte, 1, nullptr, realm);
     }},
    {"vl_set_data_template_point", 103, 99,
     [](const char* realm) {
         return vl_set_data_template_point("p", "x", 1, nullptr, realm);
     }},
    {"vl_remove_template_point", 141, 99,
     [](const char* realm) { return vl_remove_template_point("p", nullptr, realm); }},
    {"vl_set_data_template_point_description", 108, 99,
     [](const char* realm) {
         return vl_set_data_template_point_description("p", "x", nullptr, realm);
     }},
    {"vl_get_data_template_point_description", no_text, no_text,
     [](const char* realm) {
         return code_of(vl_get_data_template_point_description("p", nullptr, realm));
     }},
    {"vl_get_data_template_point_type", no_text, no_text,
     [](const char* realm) {
         return code_of(vl_get_data_template_point_type("p", nullptr, realm));
     }},
    {"vl_get_all_point_name", 145, 99,
     [](const char* realm) {
         return code_of_list(
             [&](NameList* list) { return vl_get_all_point_name(list, nullptr, realm); });
     }},
    {"vl_get_all_point_by_typename", 147, 99,
     [](const char* realm) {
         return code_of_list([&](NameList* list) {
             return vl_get_all_point_by_typename(list, "text", nullptr, realm);
         });
     }},
    {"vl_check_null_data", 146, 99,
     [](const char* realm) {
         return code_of_list(
             [&](NameList* list) { return vl_check_null_data(list, nullptr, realm); });
     }},
    {"vl_get_query_data_type", 140, 99,
     [](const char* realm) {
         return code_of_list(
             [&](NameList* list) { return vl_get_query_data_type(list, nullptr, realm); });
     }},
    {"get_dtp_info", 150, 99,
     [](const char* realm) {
         char* type = nullptr;
         char* description = nullptr;
         void* data = nullptr;
         const int code = get_dtp_info("p", &type, &description, &data, nullptr, realm);
         vl_string_free(type);
         vl_string_free(description);
         vl_free_memory(&data);
         return code;
     }},
    {"get_dtp_info2", 150, 99,
     [](const char* realm) {
         PointInfo info;
         return get_info("p", info, realm);
     }},
    {"vl_create_set", 142, 99,
     [](const char* realm) { return vl_create_set("s", "text", "1", 1, nullptr, realm); }},
    {"vl_make_dt_snapshot", VL_OK, VL_OK,
     [](const char* realm) { return vl_make_dt_snapshot(nullptr, realm); }},
    {"vl_load_dt_snapshot", VL_OK, VL_OK,
     [](const char* realm) { return vl_load_dt_snapshot(nullptr, realm); }},
    {"vl_make_dtp_snapshot", 148, 99,
     [](const char* realm) { return vl_make_dtp_snapshot(nullptr, realm); }},
    {"vl_load_dtp_snapshot", VL_OK, 99,
     [](const char* realm) { return vl_load_dtp_snapshot(nullptr, realm); }},
    {"vl_make_port_snapshot", 149, 99,
     [](const char* realm) { return vl_make_port_snapshot(nullptr, realm); }},
    {"vl_load_port_snapshot", VL_OK, VL_OK,
     [](const char* realm) { return vl_load_port_snapshot(nullptr, realm); }},
    {"vl_regist_contender", 155, 99,
     [](const char* realm) {
         return vl_regist_contender("g", "c", "x", 1, "", 1, nullptr, realm);
     }},
    {"vl_update_contender", 156, 99,
     [](const char* realm) {
         return vl_update_contender("g", "c", nullptr, nullptr, realm);
     }},
    {"vl_out_contend", 157, 99,
     [](const char* realm) { return vl_out_contend("g", "c", nullptr, nullptr, realm); }},
};

} // namespace velmo::tests

#endif
