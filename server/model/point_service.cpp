#include "server/model/point_service.h"

#include <algorithm>

#include "server/model/names.h"

namespace velmo::model {

namespace {

bool is_system_name(std::string_view name)
{
    return name.substr(0, system_prefix.size()) == system_prefix;
}

const std::string& description_of(const Point& point)
{
    return point.description.empty() ? point.type->description() : point.description;
}

} // namespace

PointService::PointService(const TemplateCatalogue& catalogue,
                           const PointLimits& the_limits)
    : templates(catalogue), limits(the_limits), max_points(limits.max_points)
{
}

// ------------------------------------------------------------ one point

std::size_t PointService::shard_index(const std::string& name)
{
    return std::hash<std::string>()(name) % shard_count;
}

template <class Use>
vl_result PointService::look_at(const std::string& name, Use use) const
{
    const PointShard& shard = shards[shard_index(name)];
    const PointShard::ReadLock lock(shard.mutex);
    const auto found = shard.points.find(name);
    return found == shard.points.end() ? VARIABLE_IS_NOT_EXIST : use(found->second);
}

template <class Change>
vl_result PointService::change(const std::string& name, Change change)
{
    if (is_system_name(name))
        return PARAMETER_ERROR;
    PointShard& shard = shards[shard_index(name)];
    const PointShard::WriteLock lock(shard.mutex);
    const auto found = shard.points.find(name);
    return found == shard.points.end() ? VARIABLE_IS_NOT_EXIST : change(shard, found);
}

bool PointService::fits(const Template& type, const Data& value) const
{
    return type.accepts(value->size()) && value->size() <= limits.max_value_bytes;
}

void PointService::record(const Points::value_type& entry, const Data& value,
                          const std::string& description) const
{
    if (journal)
        journal->append(
            {PointImage{entry.first, entry.second.type->name(), description, value}});
}

vl_result PointService::set(const std::string& name, Data value)
{
    // The old value goes with the argument, when the lock is free again.
    return change(name, [&](PointShard& shard, Points::iterator point) {
        if (!fits(*point->second.type, value))
            return SIZE_IS_NOT_MATCH;
        shard.keep(*point);
        record(*point, value, point->second.description);
        point->second.value.swap(value);
        return VL_OK;
    });
}

vl_result PointService::remove(const std::string& name)
{
    Points::node_type removed; // to go when the lock is free again
    return change(name, [&](PointShard& shard, Points::iterator point) {
        shard.keep(*point);
        if (journal)
            journal->append({PointRemoved{name}});
        removed = shard.points.extract(point);
        --count;
        return VL_OK;
    });
}

vl_result PointService::set_description(const std::string& name,
                                        std::string_view description)
{
    if (description.size() > limits.max_description_bytes)
        return PARAMETER_ERROR;
    std::string text(description);
    return change(name, [&](PointShard& shard, Points::iterator point) {
        shard.keep(*point);
        record(*point, point->second.value, text);
        point->second.description.swap(text);
        return VL_OK;
    });
}

vl_result PointService::get(const std::string& name, Data& value) const
{
    if (is_system_name(name)) {
        PointInfo system_point;
        const vl_result result = info(name, system_point);
        if (result == VL_OK)
            value = system_point.value;
        return result;
    }
    return look_at(name, [&](const Point& point) {
        if (!point.value)
            return NON_EXIST_DATA;
        value = point.value;
        return VL_OK;
    });
}

vl_result PointService::info(const std::string& name, PointInfo& info) const
{
    if (!is_system_name(name))
        return look_at(name, [&](const Point& point) {
            info = {point.type->name(), description_of(point), point.value};
            return VL_OK;
        });
    for (const SystemPoints* source : system_points)
        if (const std::optional<std::string> text = source->read(name)) {
            info = {std::string(system_type), "",
                    std::make_shared<const Bytes>(text->begin(), text->end())};
            return VL_OK;
        }
    return VARIABLE_IS_NOT_EXIST;
}

void PointService::add_system_points(const SystemPoints& source)
{
    system_points.push_back(&source);
}

// ------------------------------------------------------------- creation

vl_result PointService::check_new_name(const std::string& name)
{
    return is_system_name(name) ? PARAMETER_ERROR : check_name(name);
}

vl_result PointService::create(const std::string& name, std::string_view template_name)
{
    return create_all({name}, template_name);
}

vl_result PointService::create_set(const std::string& set_name,
                                   std::string_view template_name, std::string_view members)
{
    if (set_name.empty())
        return INVAILD_NULL_PARAMETER;
    std::vector<std::string> names;
    while (!members.empty()) {
        const std::string_view member = members.substr(0, members.find('\n'));
        if (member.empty())
            return INVAILD_NULL_PARAMETER;
        names.push_back((set_name + "/").append(member));
        members.remove_prefix(std::min(member.size() + 1, members.size()));
    }
    return names.empty() ? INVAILD_NULL_PARAMETER : create_all(names, template_name);
}

vl_result PointService::create_all(const std::vector<std::string>& names,
                                   std::string_view template_name)
{
    if (template_name.empty())
        return INVAILD_NULL_PARAMETER;
    Point point;
    point.type = templates.find(template_name);
    if (!point.type)
        return ABSTRACT_DATA_TYPE_NULL;
    point.value = point.type->initial();
    Points fresh;
    for (const std::string& name : names) {
        if (const vl_result result = check_new_name(name); result != VL_OK)
            return result;
        if (!fresh.try_emplace(name, point).second)
            return OBJECT_ALREADY_EXSIT;
    }
    return insert(std::move(fresh));
}

vl_result PointService::insert(Points fresh)
{
    std::array<std::size_t, shard_count> arriving{};
    for (const auto& [name, point] : fresh)
        ++arriving[shard_index(name)];
    Changes changes;
    if (journal)
        for (const auto& [name, point] : fresh)
            changes.push_back(PointImage{name, point.type->name(), "", point.value});
    std::vector<PointShard::WriteLock> locks;
    for (std::size_t i = 0; i < shard_count; ++i)
        if (arriving[i] != 0)
            locks.emplace_back(shards[i].mutex);

    for (const auto& [name, point] : fresh)
        if (shards[shard_index(name)].points.count(name) != 0)
            return OBJECT_ALREADY_EXSIT;
    // Room for all first: from here on nothing fails.
    for (std::size_t i = 0; i < shard_count; ++i)
        if (arriving[i] != 0)
            shards[i].make_room(arriving[i]);
    if (count.fetch_add(fresh.size()) + fresh.size() > max_points) {
        count -= fresh.size();
        return CREATE_DATAPOINT_FAI;
    }
    if (journal)
        journal->append(std::move(changes));
    while (!fresh.empty()) {
        PointShard& shard = shards[shard_index(fresh.begin()->first)];
        shard.add(fresh.extract(fresh.begin()));
    }
    return VL_OK;
}

} // namespace velmo::model
