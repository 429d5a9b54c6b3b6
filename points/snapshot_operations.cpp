// Saving and restoring the state of a server's services.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::PointService;
using velmo::api::PortService;
using velmo::api::TemplateService;

int Velmo_API_Manager::make_dt_snapshot(const char* server_name, const char* releam)
{
    // Only the server itself can report a failure: a missing server is not one (the
    // registry is asked all the same), nor a missing reference, nor a failed call.
    static constexpr auto rule =
        fails_with(VL_OK).needing_no_server().without_reference(VL_OK);
    return call<TemplateService>(rule, server_name, releam, [](auto& templates) {
        return templates.make_DT_snapshot();
    });
}

int Velmo_API_Manager::make_dtp_snapshot(const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(148);
    return call<PointService>(rule, server_name, releam,
                              [](auto& points) { return points.make_DTP_snapshot(); });
}

int Velmo_API_Manager::load_dtp_snapshot(const char* server_name, const char* releam)
{
    // A failed call counts as success.
    static constexpr auto rule = fails_with(VL_OK);
    return call<PointService>(rule, server_name, releam,
                              [](auto& points) { return points.load_DTP_snapshot(); });
}

int Velmo_API_Manager::make_port_snapshot(const char* server_name, const char* releam)
{
    // A failure casts no doubt on the reference.
    static constexpr auto rule = fails_with(149).keeping_reference();
    return call<PortService>(rule, server_name, releam,
                             [](auto& ports) { return ports.make_port_snapshot(); });
}

// No export reaches it: vl_load_port_snapshot() is load_snapshot().
int Velmo_API_Manager::load_port_snapshot(const char* server_name, const char* releam)
{
    // A failed call counts as success, and casts no doubt on the reference.
    static constexpr auto rule = fails_with(VL_OK).keeping_reference();
    return call<PortService>(rule, server_name, releam,
                             [](auto& ports) { return ports.load_port_snapshot(); });
}

// Only points have a snapshot that is loaded on request.
int Velmo_API_Manager::load_snapshot(const char*, const char*)
{
    return VL_OK;
}
