#include "server/model/point_shard.h"

#include <algorithm>
#include <iterator>

namespace velmo::model {

namespace {

PointImage image_of(const Points::value_type& entry)
{
    const auto& [name, point] = entry;
    return {name, point.type->name(), point.description, point.value};
}

} // namespace

void PointShard::keep(Points::value_type& entry)
{
    Point& point = entry.second;
    if (point.moment >= moment)
        return;
    kept.push_back(image_of(entry));
    point.moment = moment;
}

void PointShard::make_room(std::size_t for_points)
{
    const std::size_t size = points.size();
    if (size + for_points >= points.bucket_count())
        points.reserve(2 * size + for_points); // so that many of them cost no more each
}

void PointShard::add(Points::node_type&& node)
{
    node.mapped().moment = moment;
    points.insert(std::move(node));
}

std::vector<PointImage> PointShard::take_moment()
{
    const ReadLock lock(mutex);
    std::vector<PointImage> images;
    images.reserve(kept.size() + points.size());
    std::move(kept.begin(), kept.end(), std::back_inserter(images));
    kept = {};
    for (const auto& entry : points)
        if (entry.second.moment < moment)
            images.push_back(image_of(entry));
    moment = 0;
    return images;
}

void PointShard::drop_moment()
{
    const WriteLock lock(mutex);
    kept = {};
    moment = 0;
}

} // namespace velmo::model
