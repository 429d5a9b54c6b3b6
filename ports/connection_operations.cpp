// Creating, connecting and disconnecting ports, and how they deliver.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::FailureRule;
using velmo::api::PortService;
using velmo::orb::text;

namespace {

// The connection mode in which the sending host's name goes to the server.
constexpr unsigned int mode_with_host = 30004;

} // namespace

int Velmo_API_Manager::create_port(const char* port, unsigned int handle,
                                   unsigned int capacity, const char* server_name,
                                   const char* releam)
{
    static constexpr FailureRule<int> rule{112, 109, "create_port M/W Error %s"};
    return call<PortService>(rule, server_name, releam, [&](auto& ports) {
        return ports.create_port(text(port), handle, capacity);
    });
}

int Velmo_API_Manager::connect_port(const char* from, const char* to, unsigned int mode,
                                    unsigned int flags, const char* remark,
                                    const char* server_name, const char* releam)
{
    static constexpr FailureRule<int> rule{112, 110, "connect_port M/W Error %s"};
    return call<PortService>(rule, server_name, releam, [&](auto& ports) -> int {
        const int result =
            ports.connect_port(text(from), text(to), mode, flags, text(remark));
        if (result != VL_OK || mode != mode_with_host)
            return result;
        // The ports are connected: that the host's name did not get through is no
        // failure, needs no log line and casts no doubt on the reference.
        return velmo::api::unless_it_throws(static_cast<int>(VL_OK), [&]() -> int {
            return ports.register_port_host(text(from), host_name);
        });
    });
}

int Velmo_API_Manager::disconenct_port(unsigned int port, const char* server_name,
                                       const char* releam)
{
    static constexpr FailureRule<int> rule{112, 111, "disconnect_port M/W Error %s"};
    return call<PortService>(rule, server_name, releam,
                             [&](auto& ports) { return ports.disconnect_port(port); });
}

int Velmo_API_Manager::enableCopy(const char* object, unsigned int enable,
                                  const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(112);
    return call<PortService>(rule, server_name, releam, [&](auto& ports) {
        return ports.enable_copy(text(object), enable);
    });
}
