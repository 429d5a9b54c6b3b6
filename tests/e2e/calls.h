// The C functions in short words, for tests: what they hand out comes as C++ values and
// is freed. The server is the default one.
#ifndef VELMO_TESTS_E2E_CALLS_H
#define VELMO_TESTS_E2E_CALLS_H

#include <cstdint>
#include <string>
#include <vector>

#include "vl_api.h"
#include "vl_util.h"

namespace velmo::tests {

using Names = std::vector<std::string>;

// How a code stands in the place of a value.
inline std::string in_brackets(int code)
{
    return "[" + std::to_string(code) + "]";
}

inline int length_of(const std::string& bytes)
{
    return static_cast<int>(bytes.size());
}

// Frees a block.
inline std::string taken(int code, void* data, unsigned int length)
{
    const std::string bytes(static_cast<const char*>(data ? data : ""), data ? length : 0);
    vl_free_memory(&data);
    return code == VL_OK ? bytes : in_brackets(code);
}

// Frees a string. A null pointer is "NULL".
inline std::string taken(char* string)
{
    const std::string text = string ? string : "NULL";
    vl_string_free(string);
    return text;
}

// The names that a call fills a list with, or the code alone.
template <class Call>
Names listed(Call call)
{
    NameList list{};
    const int code = call(&list);
    Names names(list.names, list.names + list.count);
    for (unsigned int i = 0; i < list.count; ++i)
        vl_string_free(list.names[i]);
    vl_free_memory(reinterpret_cast<void**>(&list.names));
    return code == VL_OK ? names : Names{in_brackets(code)};
}

// --------------------------------------------------------------- points

inline int create_point(const std::string& name, const std::string& type = "text",
                        const char* realm = nullptr)
{
    return vl_create_data_template_point(name.c_str(), type.c_str(), nullptr, realm);
}

inline int create_set(const std::string& name, const std::string& type,
                      const std::string& members)
{
    return vl_create_set(name.c_str(), type.c_str(), members.data(), length_of(members),
                         nullptr, nullptr);
}

inline int set_point(const std::string& name, const std::string& value,
                     const char* realm = nullptr)
{
    return vl_set_data_template_point(name.c_str(), value.data(), length_of(value), nullptr,
                                      realm);
}

struct PointInfo {
    std::string type;
    std::string description;
    std::string value; // "" also for no data
};

inline int get_info(const std::string& name, PointInfo& info, const char* realm = nullptr)
{
    char* type = nullptr;
    char* description = nullptr;
    void* data = nullptr;
    unsigned int length = 0;
    const int code =
        get_dtp_info2(name.c_str(), &type, &description, &data, &length, nullptr, realm);
    info = {taken(type), taken(description), taken(VL_OK, data, length)};
    return code;
}

// "TYPE|DESCRIPTION|VALUE", or the code.
inline std::string point_info(const std::string& name, const char* realm = nullptr)
{
    PointInfo info;
    const int code = get_info(name, info, realm);
    return code == VL_OK ? info.type + "|" + info.description + "|" + info.value
                         : in_brackets(code);
}

// The value, or the code.
inline std::string get_point(const std::string& name, const char* realm = nullptr)
{
    char first_byte = 0;
    int code = vl_get_data_template_point(name.c_str(), &first_byte, 1, nullptr, realm);
    PointInfo info;
    if (code == VL_OK)
        code = get_info(name, info, realm);
    return code == VL_OK ? info.value : in_brackets(code);
}

inline Names all_points(const char* realm = nullptr)
{
    return listed(
        [&](NameList* list) { return vl_get_all_point_name(list, nullptr, realm); });
}

inline Names points_of(const std::string& type)
{
    return listed([&](NameList* list) {
        return vl_get_all_point_by_typename(list, type.c_str(), nullptr, nullptr);
    });
}

// -------------------------------------------------------- ports, packets

inline int create_port(const std::string& name, unsigned int handle,
                       unsigned int capacity = 0, const char* realm = nullptr)
{
    return vl_create_port(name.c_str(), handle, capacity, nullptr, realm);
}

inline int connect(const std::string& from, const std::string& to,
                   unsigned int mode = 30001)
{
    return vl_connect_port(from.c_str(), to.c_str(), mode, 0, "", nullptr, nullptr);
}

inline int send(unsigned int port, const std::string& packet, unsigned int option = 0,
                const char* realm = nullptr)
{
    return vl_send_packet(port, packet.data(), length_of(packet), option, nullptr, realm);
}

inline int send_to_front(unsigned int port, const std::string& packet,
                         unsigned int option = 0)
{
    return vl_send_packet_to_front(port, packet.data(), length_of(packet), option, nullptr,
                                   nullptr);
}

// The packet, or the code. from: the only sender wanted, 0 for any.
inline std::string receive(unsigned int port, unsigned int option = 0,
                           std::uintptr_t from = 0, const char* realm = nullptr)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int code = vl_receive_packetv(port, reinterpret_cast<void*>(from), &data, &length,
                                        option, nullptr, realm);
    return taken(code, data, length);
}

inline int reply(unsigned int port, const std::string& answer, unsigned int option = 0)
{
    return vl_reply_packet(port, answer.data(), length_of(answer), option, nullptr,
                           nullptr);
}

// The reply, or the code.
inline std::string receive_reply(unsigned int port, unsigned int option = 0)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int code = vl_receive_reply2(port, &data, &length, option, nullptr, nullptr);
    return taken(code, data, length);
}

// ---------------------------------------------------- events, contention

inline int declare_event(unsigned int id, const std::string& data)
{
    return vl_declare_event(id, data.data(), length_of(data), nullptr, nullptr);
}

inline int add_event(const std::string& name, unsigned int id)
{
    return vl_add_event(name.c_str(), id, nullptr, nullptr);
}

inline int raise_event(const std::string& name, const std::string& data = "")
{
    return vl_send_event(name.c_str(), data.data(), length_of(data), nullptr, nullptr);
}

inline int clear_event(const std::string& name)
{
    return vl_clear_event(name.c_str(), nullptr, nullptr);
}

// The count, or the code.
inline std::string event_count(const std::string& name)
{
    int count = 0;
    const int code = vl_event_count(name.c_str(), &count, nullptr, nullptr);
    return code == VL_OK ? std::to_string(count) : in_brackets(code);
}

inline int regist(const std::string& group, const std::string& contender, int priority,
                  const std::string& data = "", const std::string& role = "")
{
    return vl_regist_contender(group.c_str(), contender.c_str(), data.data(),
                               length_of(data), role.c_str(), priority, nullptr, nullptr);
}

inline int update(const std::string& group, const std::string& contender)
{
    return vl_update_contender(group.c_str(), contender.c_str(), nullptr, nullptr, nullptr);
}

inline int withdraw(const std::string& group, const std::string& contender)
{
    return vl_out_contend(group.c_str(), contender.c_str(), nullptr, nullptr, nullptr);
}

} // namespace velmo::tests

#endif
