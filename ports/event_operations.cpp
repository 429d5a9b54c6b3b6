// Events.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::OutgoingData;
using velmo::api::PortService;
using velmo::api::require;
using velmo::orb::text;

namespace {

// The only kind of event that the library declares.
constexpr CORBA::Long declared_kind = 1;

} // namespace

int Velmo_API_Manager::declare_event(unsigned int id, const void* data, int length,
                                     const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(126, "declare_event M/W Error %s");
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        const OutgoingData by_default(data, length);
        return ports.declare_event(id, by_default.sequence(), declared_kind);
    });
}

int Velmo_API_Manager::add_event(const char* event, unsigned int id,
                                 const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(125);
    return call<PortService>(rule, server_name, releam,
                             [&](auto& ports) { return ports.add_event(text(event), id); });
}

int Velmo_API_Manager::send_event(const char* event, const void* data, int length,
                                  const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(112, "send_event M/W Error %s");
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        const OutgoingData raised(data, length);
        return ports.send_event(text(event), raised.sequence());
    });
}

int Velmo_API_Manager::clear_event(const char* event, const char* server_name,
                                   const char* releam)
{
    // Alone in taking a missing reference for a missing server.
    static constexpr auto rule = fails_with(152).without_reference(NULL_SERVER_NAME);
    return call<PortService>(rule, server_name, releam,
                             [&](auto& ports) { return ports.clear_event(text(event)); });
}

int Velmo_API_Manager::event_count(const char* event, int* count, const char* server_name,
                                   const char* releam)
{
    static constexpr auto rule = fails_with(153);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        require(count);
        return ports.event_count(text(event), *count);
    });
}
