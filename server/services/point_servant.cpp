#include "server/services/point_servant.h"

#include "server/services/sequences.h"

namespace velmo::services {

using metrics::Operation;

PointServant::PointServant(model::PointService& model, const Snapshots& realm_snapshots,
                           const Calls& calls)
    : call(calls), points(model), snapshots(realm_snapshots)
{
}

CORBA::Long PointServant::create_DTP(const char* point_name, const char* template_name)
{
    return call(Operation::create_DTP,
                [&] { return points.create(point_name, template_name); });
}

CORBA::Long PointServant::create_set(const char* set_name, const char* template_name,
                                     const Velmo::DATA_BUFFER& data)
{
    return call(Operation::create_set, data, [&] {
        const std::string members(data.get_buffer(), data.get_buffer() + data.length());
        return points.create_set(set_name, template_name, members);
    });
}

CORBA::Long PointServant::get_DTP(const char* point_name, Velmo::DATA_BUFFER_out value)
{
    value = new Velmo::DATA_BUFFER;
    return call(Operation::get_DTP, [&] {
        model::Data data;
        const vl_result result = points.get(point_name, data);
        if (result == VL_OK)
            fill(*value.ptr(), data);
        return result;
    });
}

CORBA::Long PointServant::set_DTP(const char* point_name, const Velmo::DATA_BUFFER& value)
{
    return call(Operation::set_DTP, value,
                [&] { return points.set(point_name, received(value)); });
}

CORBA::Long PointServant::remove_DTP(const char* point_name)
{
    return call(Operation::remove_DTP, [&] { return points.remove(point_name); });
}

// ---------------------------------------------------------------- names

CORBA::Long PointServant::get_all_point_by_typename(Velmo::NAME_SEQ_out names,
                                                    const char* type_name)
{
    names = new Velmo::NAME_SEQ;
    return call(Operation::get_all_point_by_typename, [&] {
        model::NameTable of_type;
        const vl_result result = points.names_of_type(type_name, of_type);
        fill(*names.ptr(), std::move(of_type));
        return result;
    });
}

CORBA::Long PointServant::get_all_point_name(Velmo::NAME_SEQ_out names)
{
    names = new Velmo::NAME_SEQ;
    return call(Operation::get_all_point_name, [&] {
        fill(*names.ptr(), points.names());
        return VL_OK;
    });
}

CORBA::Long PointServant::check_null_data(Velmo::NAME_SEQ_out names)
{
    names = new Velmo::NAME_SEQ;
    return call(Operation::check_null_data, [&] {
        fill(*names.ptr(), points.names_without_data());
        return VL_OK;
    });
}

// ------------------------------------------------- types and descriptions

model::PointInfo PointServant::info(const char* point_name) const
{
    model::PointInfo info;
    points.info(point_name, info);
    return info;
}

char* PointServant::get_DTP_type(const char* point_name)
{
    return call(Operation::get_DTP_type,
                [&] { return CORBA::string_dup(info(point_name).type.c_str()); });
}

char* PointServant::get_DTP_description(const char* point_name)
{
    return call(Operation::get_DTP_description,
                [&] { return CORBA::string_dup(info(point_name).description.c_str()); });
}

CORBA::Long PointServant::get_dtp_info(const char* point_name, CORBA::String_out type_name,
                                       CORBA::String_out description,
                                       Velmo::DATA_BUFFER_out value)
{
    type_name = CORBA::string_dup("");
    description = CORBA::string_dup("");
    value = new Velmo::DATA_BUFFER;
    return call(Operation::get_dtp_info, [&]() -> CORBA::Long {
        model::PointInfo info;
        const vl_result result = points.info(point_name, info);
        if (result != VL_OK)
            return result;
        fill(type_name, info.type);
        fill(description, info.description);
        if (info.value)
            fill(*value.ptr(), info.value);
        return VL_OK;
    });
}

CORBA::Long PointServant::set_DTP_description(const char* point_name,
                                              const char* description)
{
    return call(Operation::set_DTP_description,
                [&] { return points.set_description(point_name, description); });
}

// ------------------------------------------------------------ snapshots

CORBA::Long PointServant::make_DTP_snapshot()
{
    return call(Operation::make_DTP_snapshot, [&] { return snapshots.make_points(); });
}

CORBA::Long PointServant::load_DTP_snapshot()
{
    return call(Operation::load_DTP_snapshot, [&] { return snapshots.load_points(); });
}

} // namespace velmo::services
