// A realm's events as system points:
//   $SYS/events/NAME/id     of its declaration
//   $SYS/events/NAME/count  how often it was raised since it was added, or cleared
//   $SYS/events/NAME/data   that it was last raised with, or the default data
// To follow an event, read its count, and its data when that has changed: the data are
// never older than the count read before.
#ifndef VELMO_SERVER_MODEL_EVENT_POINTS_H
#define VELMO_SERVER_MODEL_EVENT_POINTS_H

#include "server/model/event_service.h"
#include "server/model/system_points.h"

namespace velmo::model {

class EventPoints final : public SystemPoints {
public:
    // The service must outlive this.
    explicit EventPoints(const EventService& service) : events(service) {}

    void list(std::vector<std::string>& names) const override;
    std::optional<std::string> read(std::string_view name) const override;

private:
    const EventService& events;
};

} // namespace velmo::model

#endif
