// A realm's ports as system points:
//   $SYS/ports/NAME/handle    the number that its creator chose
//   $SYS/ports/NAME/capacity  packets that its queue may hold
//   $SYS/ports/NAME/depth     packets in its queue
//   $SYS/ports/NAME/bytes     of data in them
//   $SYS/ports/NAME/replies   that wait to be received
//   $SYS/ports/NAME/waiting   receivers that wait for a packet
//   $SYS/ports/NAME/host      that has registered itself, empty for none
#ifndef VELMO_SERVER_MODEL_PORT_POINTS_H
#define VELMO_SERVER_MODEL_PORT_POINTS_H

#include "server/model/port_service.h"
#include "server/model/system_points.h"

namespace velmo::model {

class PortPoints final : public SystemPoints {
public:
    // The service must outlive this.
    explicit PortPoints(const PortService& service) : ports(service) {}

    void list(std::vector<std::string>& names) const override;
    std::optional<std::string> read(std::string_view name) const override;

private:
    const PortService& ports;
};

} // namespace velmo::model

#endif
