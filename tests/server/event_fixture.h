// An event service and the short words in which tests talk to it.
#ifndef VELMO_TESTS_SERVER_EVENT_FIXTURE_H
#define VELMO_TESTS_SERVER_EVENT_FIXTURE_H

#include <gtest/gtest.h>

#include "server/model/event_points.h"
#include "tests/server/images.h"

namespace velmo::tests {

class EventFixture : public ::testing::Test {
protected:
    explicit EventFixture(const model::EventLimits& limits = {}) : events(limits) {}

    vl_result declare(model::EventId id, const std::string& text, std::int32_t kind = 1)
    {
        return events.declare_event(id, bytes_of(text), kind);
    }

    vl_result raise(const std::string& name, const std::string& text = "")
    {
        return events.send_event(name, bytes_of(text));
    }

    // The id 7 with "idle" for its default data, and events of it.
    void add(std::initializer_list<const char*> names)
    {
        declare(7, "idle");
        for (const char* name : names)
            ASSERT_EQ(events.add_event(name, 7), VL_OK) << name;
    }

    // "COUNT DATA", or "none".
    std::string state(const std::string& name) const
    {
        const auto status = events.status(name);
        return status ? std::to_string(status->count) + " " + model::as_text(status->data)
                      : "none";
    }

    model::EventService events;
};

} // namespace velmo::tests

#endif
