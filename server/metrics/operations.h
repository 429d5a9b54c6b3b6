// The operations that clients call, as metrics name them.
#ifndef VELMO_SERVER_METRICS_OPERATIONS_H
#define VELMO_SERVER_METRICS_OPERATIONS_H

#include <cstddef>
#include <iterator>

// All of them, once: X(service, operation), as the interface definitions have them.
#define VELMOD_OPERATIONS(X)                                                               \
    X(port, connect_port)                                                                  \
    X(port, register_port_host)                                                            \
    X(port, disconnect_port)                                                               \
    X(port, create_port)                                                                   \
    X(port, send_packet)                                                                   \
    X(port, send_packet_to_front)                                                          \
    X(port, receive_packet)                                                                \
    X(port, get_connection_info)                                                           \
    X(port, com_chennal_seq)                                                               \
    X(port, reply_packet)                                                                  \
    X(port, receive_reply)                                                                 \
    X(port, clear_event)                                                                   \
    X(port, event_count)                                                                   \
    X(port, add_event)                                                                     \
    X(port, send_event)                                                                    \
    X(port, declare_event)                                                                 \
    X(port, make_port_snapshot)                                                            \
    X(port, load_port_snapshot)                                                            \
    X(port, enable_copy)                                                                   \
    X(point, create_DTP)                                                                   \
    X(point, create_set)                                                                   \
    X(point, get_DTP)                                                                      \
    X(point, set_DTP)                                                                      \
    X(point, remove_DTP)                                                                   \
    X(point, get_all_point_by_typename)                                                    \
    X(point, get_all_point_name)                                                           \
    X(point, get_DTP_type)                                                                 \
    X(point, make_DTP_snapshot)                                                            \
    X(point, load_DTP_snapshot)                                                            \
    X(point, get_dtp_info)                                                                 \
    X(point, set_DTP_description)                                                          \
    X(point, get_DTP_description)                                                          \
    X(point, check_null_data)                                                              \
    X(template, get_query_data_type)                                                       \
    X(template, make_DT_snapshot)                                                          \
    X(contention, out_contend)                                                             \
    X(contention, regist_contender)                                                        \
    X(contention, update_contender)                                                        \
    X(manager, get_releam_seq)

namespace velmo::metrics {

enum class Operation {
#define VELMOD_ENUMERATOR(service, operation) operation,
    VELMOD_OPERATIONS(VELMOD_ENUMERATOR)
#undef VELMOD_ENUMERATOR
};

struct OperationName {
    const char* service;
    const char* operation;
};

// In the order of the enumeration.
constexpr OperationName operation_names[] = {
#define VELMOD_NAME(service, operation) {#service, #operation},
    VELMOD_OPERATIONS(VELMOD_NAME)
#undef VELMOD_NAME
};

constexpr std::size_t operation_count = std::size(operation_names);

} // namespace velmo::metrics

#endif
