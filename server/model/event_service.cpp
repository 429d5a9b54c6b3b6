#include "server/model/event_service.h"

#include "server/model/names.h"

namespace velmo::model {

vl_result EventService::declare_event(EventId id, const Data& data, std::int32_t kind)
{
    if (kind != counted_event)
        return PARAMETER_ERROR;
    if (data->size() > limits.data_bytes)
        return SIZE_IS_NOT_MATCH;
    const std::lock_guard<std::mutex> lock(mutex);
    if (state.declarations.count(id) != 0)
        return OBJECT_ALREADY_EXSIT;
    if (state.declarations.size() >= limits.max_declarations)
        return MEMORY_ALLOCATION_FAI;
    state.declarations.emplace(id, data);
    recorder.append(EventDeclarationImage{id, data});
    return VL_OK;
}

vl_result EventService::add_event(std::string_view name, EventId id)
{
    if (const vl_result result = check_name(name); result != VL_OK)
        return result;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto declaration = state.declarations.find(id);
    if (declaration == state.declarations.end())
        return NO_MATCH_EVENT_CODE;
    if (find(name))
        return OBJECT_ALREADY_EXSIT;
    if (state.events.size() >= limits.max_events)
        return MEMORY_ALLOCATION_FAI;
    const auto event = state.events.emplace(name, Event{id, 0, declaration->second}).first;
    record(name, event->second);
    return VL_OK;
}

vl_result EventService::send_event(std::string_view name, const Data& data)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Event* event = find(name);
    if (!event)
        return EVENT_DECLARE_NUL;
    if (data->size() > limits.data_bytes)
        return SIZE_IS_NOT_MATCH;
    event->data = data->empty() ? state.declarations.at(event->id) : data;
    ++event->count;
    record(name, *event);
    return VL_OK;
}

vl_result EventService::event_count(std::string_view name, std::uint64_t& count) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Event* event = find(name);
    if (!event)
        return EVENT_DECLARE_NUL;
    count = event->count;
    return VL_OK;
}

vl_result EventService::clear_event(std::string_view name)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Event* event = find(name);
    if (!event)
        return EVENT_DECLARE_NUL;
    event->count = 0;
    event->data = state.declarations.at(event->id);
    record(name, *event);
    return VL_OK;
}

void EventService::record(std::string_view name, const Event& event)
{
    if (recorder.on())
        recorder.append(EventImage{std::string(name), event.id, event.data, event.count});
}

std::optional<EventStatus> EventService::status(std::string_view name) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Event* event = find(name);
    if (!event)
        return std::nullopt;
    return EventStatus{event->id, event->count, event->data};
}

std::vector<std::string> EventService::names() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> result;
    for (const auto& [name, event] : state.events)
        result.push_back(name);
    return result;
}

EventService::Event* EventService::find(std::string_view name)
{
    const auto found = state.events.find(name);
    return found == state.events.end() ? nullptr : &found->second;
}

const EventService::Event* EventService::find(std::string_view name) const
{
    const auto found = state.events.find(name);
    return found == state.events.end() ? nullptr : &found->second;
}

// ---------------------------------------------------------------- images

EventsImage EventService::image() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    EventsImage image;
    for (const auto& [id, data] : state.declarations)
        image.declarations.push_back({id, data});
    for (const auto& [name, event] : state.events)
        image.events.push_back({name, event.id, event.data, event.count});
    return image;
}

bool EventService::State::fill(const EventsImage& image)
{
    for (const EventDeclarationImage& declaration : image.declarations)
        if (!declaration.data ||
            !declarations.emplace(declaration.id, declaration.data).second)
            return false;
    for (const EventImage& event : image.events) {
        const bool good = check_name(event.name) == VL_OK && event.data &&
                          declarations.count(event.id) != 0;
        if (!good ||
            !events.emplace(event.name, Event{event.id, event.count, event.data}).second)
            return false;
    }
    return true;
}

vl_result EventService::check(const EventsImage& image) const
{
    return State().fill(image) ? VL_OK : MIDPLUSDATA_IS_BAD;
}

vl_result EventService::restore(const EventsImage& image)
{
    State restored;
    if (!restored.fill(image))
        return MIDPLUSDATA_IS_BAD;
    const std::lock_guard<std::mutex> lock(mutex);
    std::swap(state, restored);
    recorder.add(AllEventsRemoved());
    for (const EventDeclarationImage& declaration : image.declarations)
        recorder.add(declaration);
    for (const EventImage& event : image.events)
        recorder.add(event);
    recorder.close();
    return VL_OK;
}

} // namespace velmo::model
