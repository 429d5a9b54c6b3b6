// The events of one realm: things that happen, named, counted, and with data that tell
// what has happened last.
//
// An event's kind is declared under an id with its default data, and then events of that
// kind are added under names. Whoever sees one happen raises it; whoever wants to know
// reads its count and its data, also as points (event_points.h). There is no waiting and
// no queue: of several raises in a row a reader may see the last one only, but the count
// tells how many there were.
//
// Any function from any thread; none blocks.
#ifndef VELMO_SERVER_MODEL_EVENT_SERVICE_H
#define VELMO_SERVER_MODEL_EVENT_SERVICE_H

#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "server/model/journal.h"
#include "vl_result.h"

namespace velmo::model {

struct EventLimits {
    std::size_t max_declarations = 65536;
    std::size_t max_events = 65536;
    std::size_t data_bytes = 1u << 20; // of one declaration, or one raise
};

using EventId = std::uint32_t;

// The only kind of event there is: counted, with the data of the last raise.
constexpr std::int32_t counted_event = 1;

struct EventStatus {
    EventId id = 0;
    std::uint64_t count = 0;
    Data data;
};

// Results are the codes of vl_result.h, VL_OK being success. An operation that fails has
// changed nothing.
class EventService {
public:
    explicit EventService(const EventLimits& event_limits = {}) : limits(event_limits) {}

    // Has every change appended to a journal, which must outlive the service. Before any
    // other thread uses the service.
    void keep_in(Journal& journal) { recorder.keep_in(journal); }

    // Declares what events of this id are like. data: what an event has before it is
    // raised, and when it is raised with none. A declaration is for good.
    //   PARAMETER_ERROR        kind is not counted_event
    //   OBJECT_ALREADY_EXSIT   the id has been declared, with whatever data
    //   SIZE_IS_NOT_MATCH      data has more bytes than the limit
    //   MEMORY_ALLOCATION_FAI  there are as many declarations as the server allows
    vl_result declare_event(EventId id, const Data& data, std::int32_t kind);

    // Adds an event of a declared id, not raised yet.
    //   INVAILD_NULL_PARAMETER  the name is empty
    //   PARAMETER_ERROR         the name is longer than max_name_bytes
    //   NO_MATCH_EVENT_CODE     the id has not been declared
    //   OBJECT_ALREADY_EXSIT    there is an event of that name
    //   MEMORY_ALLOCATION_FAI   there are as many events as the server allows
    vl_result add_event(std::string_view name, EventId id);

    // Raises an event: counts it and keeps the data, in one step. Empty data stand for
    // the default data of its declaration.
    //   EVENT_DECLARE_NUL  there is no event of that name
    //   SIZE_IS_NOT_MATCH  data has more bytes than the limit
    vl_result send_event(std::string_view name, const Data& data);

    // How often an event has been raised since it was added, or cleared.
    //   EVENT_DECLARE_NUL  there is no event of that name; count is unchanged
    vl_result event_count(std::string_view name, std::uint64_t& count) const;

    // Makes an event what it was when it was added: count 0, default data.
    //   EVENT_DECLARE_NUL  there is no event of that name
    vl_result clear_event(std::string_view name);

    // An event at one moment; none when there is no such event.
    std::optional<EventStatus> status(std::string_view name) const;

    // In byte order.
    std::vector<std::string> names() const;

    // All of it at one moment. Blocks others for a few pointer copies per event.
    EventsImage image() const;

    // What restore() would say to it.
    //   MIDPLUSDATA_IS_BAD  an id or a name that occurs twice, a bad name, an id that
    //                       is not declared, no data
    vl_result check(const EventsImage& image) const;

    // Replaces everything by what an image holds, in one step, or nothing. The limits
    // do not hold for what was saved under larger ones.
    //   MIDPLUSDATA_IS_BAD  as check()
    vl_result restore(const EventsImage& image);

private:
    struct Event {
        EventId id;
        std::uint64_t count;
        Data data;
    };
    struct State {
        // False when the image cannot be one of a state; then this one is of no use.
        bool fill(const EventsImage& image);

        std::map<EventId, Data> declarations;
        std::map<std::string, Event, std::less<>> events;
    };

    Event* find(std::string_view name);
    const Event* find(std::string_view name) const;

    void record(std::string_view name, const Event& event);

    const EventLimits limits;
    mutable std::mutex mutex;
    Recorder recorder;
    State state;
};

} // namespace velmo::model

#endif
