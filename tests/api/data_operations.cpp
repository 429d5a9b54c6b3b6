#include "tests/api/data_operations.h"

#include "idl/service_keys.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

int send_packet(const void* data, int length)
{
    return vl_send_packet(7, data, length, 3, nullptr, nullptr);
}

int send_packet_to_front(const void* data, int length)
{
    return vl_send_packet_to_front(7, data, length, 3, nullptr, nullptr);
}

int reply_packet(const void* data, int length)
{
    return vl_reply_packet(7, data, length, 3, nullptr, nullptr);
}

int declare_event(const void* data, int length)
{
    return vl_declare_event(7, data, length, nullptr, nullptr);
}

int send_event(const void* data, int length)
{
    return vl_send_event("event", data, length, nullptr, nullptr);
}

int set_data_template_point(const void* data, int length)
{
    return vl_set_data_template_point("point", data, length, nullptr, nullptr);
}

int create_set(const void* data, int length)
{
    return vl_create_set("set", "template", data, length, nullptr, nullptr);
}

int regist_contender(const void* data, int length)
{
    return vl_regist_contender("group", "one", data, length, "role", 5, nullptr, nullptr);
}

} // namespace

const DataOperation data_operations[8] = {
    {"vl_send_packet", "send_packet", send_packet, 112, keys::port_service, "7, ", ", 3"},
    {"vl_send_packet_to_front", "send_packet_to_front", send_packet_to_front, 154,
     keys::port_service, "7, ", ", 3"},
    {"vl_reply_packet", "reply_packet", reply_packet, 124, keys::port_service, "7, ", ", 3",
     true},
    {"vl_declare_event", "declare_event", declare_event, 126, keys::port_service, "7, ",
     ", 1"},
    {"vl_send_event", "send_event", send_event, 112, keys::port_service, "\"event\", ", ""},
    {"vl_set_data_template_point", "set_DTP", set_data_template_point, 103,
     keys::data_template_point_service, "\"point\", ", ""},
    {"vl_create_set", "create_set", create_set, 142, keys::data_template_point_service,
     "\"set\", \"template\", ", ""},
    {"vl_regist_contender", "regist_contender", regist_contender, 155,
     keys::contention_service, "\"group\", \"one\", ", ", \"role\", 5", true},
};

} // namespace velmo::tests
