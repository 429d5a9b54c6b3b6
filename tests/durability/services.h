// The services of a durable velmod, as the clients of these tests call them.
#ifndef VELMO_TESTS_DURABILITY_SERVICES_H
#define VELMO_TESTS_DURABILITY_SERVICES_H

#include <optional>
#include <string>

#include "tests/server/client.h"
#include "vl_result.h"

namespace velmo::tests {

struct Services {
    explicit Services(const std::string& url)
        : points(Points::_narrow(resolve(url, keys::data_template_point_service).in())),
          ports(port_service(url)),
          contention(Contention::_narrow(resolve(url, keys::contention_service).in()))
    {
    }

    // The value of a point; none when there is no such point, or no data.
    std::optional<std::string> value(const std::string& point) const
    {
        Velmo::DATA_BUFFER_var value;
        return points->get_DTP(point.c_str(), value.out()) == VL_OK
                   ? std::optional(text(value.in()))
                   : std::nullopt;
    }

    using Points = Velmo::DT_POINT_SVC::DT_Point_Factory;
    using Contention = Velmo::HEART_BIT::contender_server;

    Velmo::DT_POINT_SVC::DT_Point_Factory_var points;
    Port_Factory_var ports;
    Velmo::HEART_BIT::contender_server_var contention;
};

} // namespace velmo::tests

#endif
