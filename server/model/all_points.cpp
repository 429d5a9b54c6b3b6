// The functions of PointService that concern all points at once.
#include <algorithm>

#include "server/model/point_service.h"

namespace velmo::model {

template <class Wanted>
NameTable PointService::collect(Wanted wanted) const
{
    NameTable names;
    names.reserve(count);
    for (const PointShard& shard : shards) {
        const PointShard::ReadLock lock(shard.mutex);
        for (const auto& [name, point] : shard.points)
            if (wanted(point))
                names.add(name);
    }
    names.sort();
    return names;
}

NameTable PointService::names() const
{
    return collect([](const Point&) { return true; });
}

NameTable PointService::names_without_data() const
{
    return collect([](const Point& point) { return !point.value; });
}

vl_result PointService::names_of_type(std::string_view type, NameTable& names) const
{
    NameTable of_type;
    if (type == system_type) {
        std::vector<std::string> listed;
        for (const SystemPoints* source : system_points)
            source->list(listed);
        for (const std::string& name : listed)
            of_type.add(name);
        of_type.sort();
    } else {
        of_type =
            collect([type](const Point& point) { return point.type->name() == type; });
        if (of_type.empty() && !templates.find(type))
            return ABSTRACT_DATA_TYPE_NULL;
    }
    names = std::move(of_type);
    return VL_OK;
}

std::vector<PointShard::WriteLock> PointService::lock_all()
{
    std::vector<PointShard::WriteLock> locks;
    for (PointShard& shard : shards)
        locks.emplace_back(shard.mutex);
    return locks;
}

void PointService::visit_moment(const std::function<void(const PointImage&)>& visit)
{
    const std::lock_guard turn(visiting);
    {
        const auto locks = lock_all();
        ++moment;
        for (PointShard& shard : shards)
            shard.moment = moment;
    }
    // Whatever happens, no shard keeps points for ever.
    struct End {
        std::array<PointShard, shard_count>& all;
        ~End()
        {
            for (PointShard& shard : all)
                shard.drop_moment();
        }
    } const end{shards};
    for (PointShard& shard : shards)
        for (const PointImage& image : shard.take_moment())
            visit(image);
}

vl_result PointService::restore_one(PointImage& image, Points& to) const
{
    if (const vl_result result = check_new_name(image.name); result != VL_OK)
        return result;
    const std::shared_ptr<const Template> type = templates.find(image.template_name);
    if (!type)
        return ABSTRACT_DATA_TYPE_NULL;
    if (image.description.size() > limits.max_description_bytes)
        return PARAMETER_ERROR;
    if (image.value && !fits(*type, image.value))
        return SIZE_IS_NOT_MATCH;
    const auto [entry, is_new] = to.try_emplace(image.name);
    if (!is_new)
        return OBJECT_ALREADY_EXSIT;
    entry->second = {type, std::move(image.value), std::move(image.description), 0};
    return VL_OK;
}

vl_result PointService::restore(std::vector<PointImage> images, std::string& problem)
{
    if (images.size() > max_points) {
        problem = std::to_string(images.size()) + " points are too many";
        return CREATE_DATAPOINT_FAI;
    }
    std::array<Points, shard_count> fresh;
    Changes changes;
    if (journal) {
        changes.push_back(AllPointsRemoved());
        changes.insert(changes.end(), images.begin(), images.end());
    }
    for (PointImage& image : images) {
        const vl_result result = restore_one(image, fresh[shard_index(image.name)]);
        if (result != VL_OK) {
            problem = "point \"" + image.name + "\" of template \"" + image.template_name +
                      "\": result " + std::to_string(result);
            return result;
        }
    }
    const std::lock_guard turn(visiting);
    const auto locks = lock_all();
    if (journal)
        journal->append(std::move(changes));
    for (std::size_t i = 0; i < shard_count; ++i)
        shards[i].points.swap(fresh[i]);
    count = images.size();
    return VL_OK;
}

} // namespace velmo::model
