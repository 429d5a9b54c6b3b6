// Which operations change what a realm holds.
#ifndef VELMO_SERVER_SERVICES_CHANGING_OPERATIONS_H
#define VELMO_SERVER_SERVICES_CHANGING_OPERATIONS_H

#include "server/metrics/operations.h"

namespace velmo::services {

// Renewing a lease is none: leases are not kept.
constexpr bool changes(metrics::Operation operation)
{
    using metrics::Operation;
    switch (operation) {
    case Operation::get_connection_info:
    case Operation::com_chennal_seq:
    case Operation::event_count:
    case Operation::make_port_snapshot:
    case Operation::get_DTP:
    case Operation::get_all_point_by_typename:
    case Operation::get_all_point_name:
    case Operation::get_DTP_type:
    case Operation::make_DTP_snapshot:
    case Operation::get_dtp_info:
    case Operation::get_DTP_description:
    case Operation::check_null_data:
    case Operation::get_query_data_type:
    case Operation::make_DT_snapshot:
    case Operation::update_contender:
    case Operation::get_releam_seq:
        return false;
    default:
        return true;
    }
}

} // namespace velmo::services

#endif
