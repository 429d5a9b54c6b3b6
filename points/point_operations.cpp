// Single data template points: their value, description and type.

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::fails_with_null;
using velmo::api::IncomingData;
using velmo::api::OutgoingData;
using velmo::api::PointService;
using velmo::api::require;
using velmo::orb::text;

int Velmo_API_Manager::create_data_template_point(const char* point_name,
                                                  const char* template_name,
                                                  const char* server_name,
                                                  const char* releam)
{
    static constexpr auto rule = fails_with(101);
    return call<PointService>(rule, server_name, releam, [&](auto& points) {
        return points.create_DTP(text(point_name), text(template_name));
    });
}

int Velmo_API_Manager::get_data_template_point(const char* point_name, void* buffer,
                                               int size, const char* server_name,
                                               const char* releam)
{
    static constexpr auto rule = fails_with(102, "get_DTP M/W Error %s");
    return call<PointService>(rule, server_name, releam, [&](auto& points) -> int {
        require(buffer || size == 0);
        IncomingData value;
        const int result = points.get_DTP(text(point_name), value.out());
        // A longer value is cut without a sign; a negative size cuts nothing.
        if (result == VL_OK)
            value.copy_to(buffer, static_cast<unsigned int>(size));
        return result;
    });
}

int Velmo_API_Manager::set_data_template_point(const char* point_name, const void* data,
                                               int size, const char* server_name,
                                               const char* releam)
{
    static constexpr auto rule = fails_with(103, "set_DTP M/W Error %s");
    return call<PointService>(rule, server_name, releam, [&](auto& points) -> int {
        const OutgoingData value(data, size);
        return points.set_DTP(text(point_name), value.sequence());
    });
}

int Velmo_API_Manager::remove_template_point(const char* point_name,
                                             const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(141);
    return call<PointService>(rule, server_name, releam, [&](auto& points) {
        return points.remove_DTP(text(point_name));
    });
}

int Velmo_API_Manager::set_data_template_point_description(const char* point_name,
                                                           const char* description,
                                                           const char* server_name,
                                                           const char* releam)
{
    static constexpr auto rule = fails_with(108);
    return call<PointService>(rule, server_name, releam, [&](auto& points) {
        return points.set_DTP_description(text(point_name), text(description));
    });
}

char* Velmo_API_Manager::get_data_template_point_description(const char* point_name,
                                                             const char* server_name,
                                                             const char* releam)
{
    static constexpr auto rule = fails_with_null();
    return call<PointService>(rule, server_name, releam, [&](auto& points) {
        return points.get_DTP_description(text(point_name));
    });
}

char* Velmo_API_Manager::get_data_template_point_type(const char* point_name,
                                                      const char* server_name,
                                                      const char* releam)
{
    static constexpr auto rule = fails_with_null("get_DTP_type M/W Error %s");
    return call<PointService>(rule, server_name, releam, [&](auto& points) {
        return points.get_DTP_type(text(point_name));
    });
}
