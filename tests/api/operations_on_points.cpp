// The operations on data template points, and all snapshots.

#include "tests/api/operations.h"

#include "api/Velmo_API_Manager.h"
#include "idl/service_keys.h"
#include "tests/support/callers_list.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

// Stands for a string in the result; frees it.
int text_result(char* text)
{
    const bool good = text && std::string(text) == "text";
    CORBA::string_free(text);
    return good ? 0 : no_text;
}

// An operation that gives a string, null whatever fails.
Operation text_operation(const char* name, const char* remote,
                         int (*call)(const char* server, const char* realm),
                         const char* sent, const char* log_text)
{
    Operation operation{name, remote, keys::data_template_point_service,
                        call, sent,   {no_text, no_text, log_text, no_text, no_text}};
    operation.hands_on = false;
    return operation;
}

// Calls a function that brings a point's texts and data, and frees them.
template <class Call>
int with_point_info(Call call)
{
    char* text1 = nullptr;
    char* text2 = nullptr;
    void* data = nullptr;
    const int result = call(&text1, &text2, &data);
    CORBA::string_free(text1);
    CORBA::string_free(text2);
    vl_free_memory(&data);
    return result;
}

std::vector<Operation> access_operations()
{
    return {
        {"vl_create_data_template_point",
         "create_DTP",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return vl_create_data_template_point("point", "template", server, realm);
         },
         R"(create_DTP("point", "template"))",
         {101, 101}},
        {"vl_get_data_template_point",
         "get_DTP",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             char buffer[5];
             return vl_get_data_template_point("point", buffer, sizeof buffer, server,
                                               realm);
         },
         R"(get_DTP("point"))",
         {102, 102, "get_DTP M/W Error "}},
        {"vl_set_data_template_point",
         "set_DTP",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return vl_set_data_template_point("point", "hello", 5, server, realm);
         },
         R"(set_DTP("point", "hello"))",
         {103, 103, "set_DTP M/W Error "}},
        {"vl_remove_template_point",
         "remove_DTP",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return vl_remove_template_point("point", server, realm);
         },
         R"(remove_DTP("point"))",
         {141, 141}},
        {"vl_set_data_template_point_description",
         "set_DTP_description",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return vl_set_data_template_point_description("point", "description", server,
                                                           realm);
         },
         R"(set_DTP_description("point", "description"))",
         {108, 108}},
        text_operation(
            "vl_get_data_template_point_description", "get_DTP_description",
            [](const char* server, const char* realm) {
                return text_result(
                    vl_get_data_template_point_description("point", server, realm));
            },
            R"(get_DTP_description("point"))", nullptr),
        text_operation(
            "vl_get_data_template_point_type", "get_DTP_type",
            [](const char* server, const char* realm) {
                return text_result(vl_get_data_template_point_type("point", server, realm));
            },
            R"(get_DTP_type("point"))", "get_DTP_type M/W Error "),
    };
}

std::vector<Operation> query_operations()
{
    return {
        {"vl_get_all_point_name",
         "get_all_point_name",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return with_name_list([&](NameList* names) {
                 return vl_get_all_point_name(names, server, realm);
             });
         },
         "get_all_point_name()",
         {145, 145, "get_all_point_name M/W Error "}},
        {"vl_get_all_point_by_typename",
         "get_all_point_by_typename",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return with_name_list([&](NameList* names) {
                 return vl_get_all_point_by_typename(names, "type", server, realm);
             });
         },
         R"(get_all_point_by_typename("type"))",
         {147, 147, "get_all_point_by_typename M/W Error "}},
        {"vl_check_null_data",
         "check_null_data",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return with_name_list(
                 [&](NameList* names) { return vl_check_null_data(names, server, realm); });
         },
         "check_null_data()",
         {146, 146}},
        {"vl_get_query_data_type",
         "get_query_data_type",
         keys::data_template_service,
         [](const char* server, const char* realm) {
             return with_name_list([&](NameList* names) {
                 return vl_get_query_data_type(names, server, realm);
             });
         },
         "get_query_data_type()",
         {140, 140}},
        {"get_dtp_info",
         "get_dtp_info",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return with_point_info([&](char** text1, char** text2, void** data) {
                 return get_dtp_info("point", text1, text2, data, server, realm);
             });
         },
         R"(get_dtp_info("point"))",
         {150, 150, "get_dtp_info M/W Error "}},
        {"get_dtp_info2",
         "get_dtp_info",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return with_point_info([&](char** text1, char** text2, void** data) {
                 unsigned int length = 0;
                 return get_dtp_info2("point", text1, text2, data, &length, server, realm);
             });
         },
         R"(get_dtp_info("point"))",
         {150, 150, "get_dtp_info2 M/W Error "}},
        {"vl_create_set",
         "create_set",
         keys::data_template_point_service,
         [](const char* server, const char* realm) {
             return vl_create_set("first", "second", "hello", 5, server, realm);
         },
         R"(create_set("first", "second", "hello"))",
         {142, 142, "create_set M/W Error "}},
    };
}

std::vector<Operation> snapshot_operations()
{
    Operation make_templates{"vl_make_dt_snapshot",       "make_DT_snapshot",
                             keys::data_template_service, vl_make_dt_snapshot,
                             "make_DT_snapshot()",        {0, 0, nullptr, 0, 0}};
    make_templates.needs_server = false;
    return {
        make_templates,
        {"vl_make_dtp_snapshot",
         "make_DTP_snapshot",
         keys::data_template_point_service,
         vl_make_dtp_snapshot,
         "make_DTP_snapshot()",
         {148, 148}},
        {"vl_load_dtp_snapshot",
         "load_DTP_snapshot",
         keys::data_template_point_service,
         vl_load_dtp_snapshot,
         "load_DTP_snapshot()",
         {0, 0}},
        {"vl_make_port_snapshot",
         "make_port_snapshot",
         keys::port_service,
         vl_make_port_snapshot,
         "make_port_snapshot()",
         {149, 149},
         Operation::Cache::kept},
        // The manager's own, which no exported function reaches.
        {"load_port_snapshot",
         "load_port_snapshot",
         keys::port_service,
         &Velmo_API_Manager::load_port_snapshot,
         "load_port_snapshot()",
         {0, 0},
         Operation::Cache::kept},
    };
}

} // namespace

std::vector<Operation> point_operations()
{
    std::vector<Operation> all;
    for (const auto group : {access_operations, query_operations, snapshot_operations})
        for (const Operation& operation : group())
            all.push_back(operation);
    return all;
}

} // namespace velmo::tests
