// Events: what happens, counted.
#ifndef VELMO_CPP_EVENTS_HPP
#define VELMO_CPP_EVENTS_HPP

#include "server.hpp"

namespace velmo {

/** The events of a server and realm. */
class Events : public detail::ServerUser {
public:
    explicit Events(Server server = {}) noexcept : ServerUser(std::move(server)) {}

    /** Declares what events of this number are like, for good. vl_declare_event().
     *
     * @param data  what an event has before it is raised, and when it is raised with none
     */
    Result<> declare(unsigned int id, Bytes data = {}) const
    {
        return ::vl_declare_event(id, data.data(), data.length(), name(), realm());
    }

    /** Adds an event of a declared number under a name. vl_add_event(). */
    Result<> add(Name event, unsigned int id) const
    {
        return ::vl_add_event(event.c_str(), id, name(), realm());
    }

    /** Raises an event: counts it and keeps the data until the next raise.
     * vl_send_event(). */
    Result<> raise(Name event, Bytes data = {}) const
    {
        return ::vl_send_event(event.c_str(), data.data(), data.length(), name(), realm());
    }

    /** Makes an event what it was when it was added. vl_clear_event(). */
    Result<> clear(Name event) const
    {
        return ::vl_clear_event(event.c_str(), name(), realm());
    }

    /** How often it was raised since it was added or cleared. vl_event_count(). */
    Result<int> count(Name event) const
    {
        int count = 0;
        const int code = ::vl_event_count(event.c_str(), &count, name(), realm());
        return {code, count};
    }
};

} // namespace velmo

#endif
