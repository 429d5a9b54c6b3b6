// Exports that hand nothing back but their result.

#include "tests/fuzz/exports.h"

#include <tuple>
#include <utility>

#include "vl_api.h"

namespace velmo::tests {

namespace {

// Draws a function's arguments one after the other. An int is the length of the data
// in front of it.
class Arguments {
public:
    explicit Arguments(Call& drawing_call) : call(drawing_call) {}

    template <class Parameter>
    Parameter next();

private:
    Call& call;
    int length = 0;
};

template <>
const char* Arguments::next()
{
    return call.input.text();
}

template <>
unsigned int Arguments::next()
{
    return call.input.handle();
}

template <>
const void* Arguments::next()
{
    const Data data = call.input.data();
    call.refuse_if(!data.good());
    length = data.length;
    return data.pointer;
}

template <>
int Arguments::next()
{
    return length;
}

// The last two parameters are the server and the realm.
template <class... Parameters, std::size_t... Index>
void check_plain(Call& call, const Codes& codes, int (*function)(Parameters...),
                 std::index_sequence<Index...>)
{
    using All = std::tuple<Parameters...>;
    Arguments arguments(call);
    const std::tuple<std::tuple_element_t<Index, All>...> drawn{
        arguments.next<std::tuple_element_t<Index, All>>()...};
    call.check(codes, [&] {
        return function(std::get<Index>(drawn)..., call.server, call.realm);
    });
}

template <class... Parameters>
void check_plain(Call& call, const Codes& codes, int (*function)(Parameters...))
{
    check_plain(call, codes, function,
                std::make_index_sequence<sizeof...(Parameters) - 2>());
}

void connect_port(Call& call)
{
    const char* from = call.input.text();
    const char* to = call.input.text();
    const unsigned int mode = call.input.handle();
    const unsigned int flags = call.input.handle();
    const char* remark = call.input.text();
    if (call.succeeded() && mode == 30004)
        call.remote_calls = 2; // the host's name as well
    call.check({112, "connect_port M/W Error "}, [&] {
        return vl_connect_port(from, to, mode, flags, remark, call.server, call.realm);
    });
}

// Data without a role stay here, bad ones as well.
void regist_contender(Call& call)
{
    const char* group = call.input.text();
    const char* contender = call.input.text();
    const Data data = call.input.data();
    const char* role = call.input.text();
    const int priority = call.input.number();
    call.refuse_if(role && data.pointer && !data.good());
    call.check({155}, [&] {
        return vl_regist_contender(group, contender, data.pointer, data.length, role,
                                   priority, call.server, call.realm);
    });
}

// The server is not even asked.
void load_dt_snapshot(Call& call)
{
    require(vl_load_dt_snapshot(call.server, call.realm) == VL_OK, "it does nothing");
}

void load_port_snapshot(Call& call)
{
    require(vl_load_port_snapshot(call.server, call.realm) == VL_OK, "it does nothing");
}

// The codes and the export.
template <auto Function, int Failure>
void plain(Call& call)
{
    check_plain(call, {Failure}, Function);
}

// The same for exports with a log text.
template <auto Function, int Failure, const char* LogText>
void logged(Call& call)
{
    check_plain(call, {Failure, LogText}, Function);
}

constexpr char create_port_text[] = "create_port M/W Error ";
constexpr char disconnect_port_text[] = "disconnect_port M/W Error ";
constexpr char send_packet_text[] = "send_packet M/W Error ";
constexpr char declare_event_text[] = "declare_event M/W Error ";
constexpr char send_event_text[] = "send_event M/W Error ";
constexpr char set_point_text[] = "set_DTP M/W Error ";
constexpr char create_set_text[] = "create_set M/W Error ";

// A missing reference is a missing server to it.
void clear_event(Call& call)
{
    check_plain(call, {152, nullptr, NULL_SERVER_NAME, NULL_SERVER_NAME}, vl_clear_event);
}

// Only the server itself can report a failure.
void make_dt_snapshot(Call& call)
{
    check_plain(call, {VL_OK, nullptr, VL_OK, VL_OK}, vl_make_dt_snapshot);
}

} // namespace

Exercises plain_exports()
{
    return {logged<vl_create_port, 112, create_port_text>,
            connect_port,
            logged<vl_disconenct_port, 112, disconnect_port_text>,
            plain<enableCopy, 112>,
            logged<vl_send_packet, 112, send_packet_text>,
            plain<vl_send_packet_to_front, 154>,
            plain<vl_reply_packet, 124>,
            logged<vl_declare_event, 126, declare_event_text>,
            plain<vl_add_event, 125>,
            logged<vl_send_event, 112, send_event_text>,
            clear_event,
            plain<vl_create_data_template_point, 101>,
            logged<vl_set_data_template_point, 103, set_point_text>,
            plain<vl_remove_template_point, 141>,
            plain<vl_set_data_template_point_description, 108>,
            logged<vl_create_set, 142, create_set_text>,
            make_dt_snapshot,
            load_dt_snapshot,
            plain<vl_make_dtp_snapshot, 148>,
            plain<vl_load_dtp_snapshot, VL_OK>,
            plain<vl_make_port_snapshot, 149>,
            load_port_snapshot,
            regist_contender,
            plain<vl_update_contender, 156>,
            plain<vl_out_contend, 157>};
}

} // namespace velmo::tests
