// What one realm of a server holds.
#ifndef VELMO_SERVER_MODEL_REALM_H
#define VELMO_SERVER_MODEL_REALM_H

#include <string>

#include "server/model/contention_points.h"
#include "server/model/event_points.h"
#include "server/model/point_service.h"
#include "server/model/port_points.h"

namespace velmo::model {

struct RealmLimits {
    PortLimits ports;
    PointLimits points;
    EventLimits events;
    ContentionLimits contention;
};

struct Realm {
    explicit Realm(std::string realm_name, const RealmLimits& limits = {})
        : name(std::move(realm_name)), templates(limits.points.max_value_bytes),
          points(templates, limits.points), ports(limits.ports), events(limits.events),
          contention(limits.contention)
    {
        points.add_system_points(port_points);
        points.add_system_points(event_points);
        points.add_system_points(contention_points);
    }

    // Has every change appended to a journal, which must outlive the realm. Before any
    // other thread uses the realm.
    void keep_in(Journal& its_journal)
    {
        journal = &its_journal;
        points.keep_in(*journal);
        ports.keep_in(*journal);
        events.keep_in(*journal);
        contention.keep_in(*journal);
    }

    // Ends all waiting, for good.
    void stop() { ports.stop(); }

    const std::string name;     // empty for the unnamed realm
    Journal* journal = nullptr; // none
    TemplateCatalogue templates;
    PointService points;
    PortService ports;
    EventService events;
    ContentionService contention;

private:
    const PortPoints port_points{ports};
    const EventPoints event_points{events};
    const ContentionPoints contention_points{contention};
};

} // namespace velmo::model

#endif
