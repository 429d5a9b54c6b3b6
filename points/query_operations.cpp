// Many data template points at once, and all about one.

#include <cstdlib>

#include "api/Velmo_API_Manager.h"
#include "api/call_frame.h"
#include "api/data.h"
#include "api/name_list.h"
#include "api/services.h"

using velmo::api::call;
using velmo::api::fails_with;
using velmo::api::FailureRule;
using velmo::api::fill;
using velmo::api::IncomingData;
using velmo::api::IncomingNames;
using velmo::api::OutgoingData;
using velmo::api::PointService;
using velmo::api::require;
using velmo::api::TemplateService;
using velmo::orb::text;

namespace {

// ask(points, names) makes the remote call. Names that come with an error code are
// handed over as well.
template <class Ask>
int point_names(const FailureRule<int>& rule, NameList* list, const char* server_name,
                const char* releam, Ask ask)
{
    return call<PointService>(rule, server_name, releam, [&](auto& points) -> int {
        require(list);
        IncomingNames names;
        const int result = ask(points, names.out());
        if (names.delivered())
            fill(*list, names.names());
        return result;
    });
}

int point_info(const FailureRule<int>& rule, const char* point_name, char** text1,
               char** text2, void** data, unsigned int* length, const char* server_name,
               const char* releam)
{
    return call<PointService>(rule, server_name, releam, [&](auto& points) -> int {
        require(text1 && text2 && data && length);
        // Unlike the data, which outlive a failure.
        *text1 = nullptr;
        *text2 = nullptr;
        CORBA::String_var type;
        CORBA::String_var description;
        IncomingData value;
        const int result = points.get_dtp_info(text(point_name), type.out(),
                                               description.out(), value.out());
        if (result != VL_OK)
            return result;
        void* const block = value.new_block();
        std::free(*data); // of the call before
        *data = block;
        *length = value.length();
        *text1 = type._retn();
        *text2 = description._retn();
        return VL_OK;
    });
}

} // namespace

int Velmo_API_Manager::get_all_point_name(NameList* list, const char* server_name,
                                          const char* releam)
{
    static constexpr auto rule = fails_with(145, "get_all_point_name M/W Error %s");
    return point_names(rule, list, server_name, releam,
                       [](auto& points, Velmo::NAME_SEQ_out names) {
                           return points.get_all_point_name(names);
                       });
}

int Velmo_API_Manager::get_all_point_by_typename(NameList* list, const char* type_name,
                                                 const char* server_name,
                                                 const char* releam)
{
    static constexpr auto rule = fails_with(147, "get_all_point_by_typename M/W Error %s");
    return point_names(rule, list, server_name, releam,
                       [&](auto& points, Velmo::NAME_SEQ_out names) {
                           return points.get_all_point_by_typename(names, text(type_name));
                       });
}

int Velmo_API_Manager::check_null_data(NameList* list, const char* server_name,
                                       const char* releam)
{
    static constexpr auto rule = fails_with(146);
    return point_names(rule, list, server_name, releam,
                       [](auto& points, Velmo::NAME_SEQ_out names) {
                           return points.check_null_data(names);
                       });
}

int Velmo_API_Manager::get_query_data_type(NameList* list, const char* server_name,
                                           const char* releam)
{
    static constexpr auto rule = fails_with(140);
    return call<TemplateService>(rule, server_name, releam, [&](auto& templates) -> int {
        require(list);
        IncomingNames names;
        const int result = templates.get_query_data_type(names.out());
        // Unlike the names of points, these come with success alone.
        if (result == VL_OK && names.delivered())
            fill(*list, names.names());
        return result;
    });
}

int Velmo_API_Manager::get_dtp_info(const char* point_name, char** text1, char** text2,
                                    void** data, const char* server_name,
                                    const char* releam)
{
    static constexpr auto rule = fails_with(150, "get_dtp_info M/W Error %s");
    unsigned int length = 0;
    return point_info(rule, point_name, text1, text2, data, &length, server_name, releam);
}

int Velmo_API_Manager::get_dtp_info2(const char* point_name, char** text1, char** text2,
                                     void** data, unsigned int* length,
                                     const char* server_name, const char* releam)
{
    static constexpr auto rule = fails_with(150, "get_dtp_info2 M/W Error %s");
    return point_info(rule, point_name, text1, text2, data, length, server_name, releam);
}

int Velmo_API_Manager::create_set(const char* first_name, const char* second_name,
                                  const void* data, int size, const char* server_name,
                                  const char* releam)
{
    static constexpr auto rule = fails_with(142, "create_set M/W Error %s");
    return call<PointService>(rule, server_name, releam, [&](auto& points) -> int {
        const OutgoingData members(data, size);
        return points.create_set(text(first_name), text(second_name), members.sequence());
    });
}
