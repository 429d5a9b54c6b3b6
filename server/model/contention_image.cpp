// The functions of ContentionService that concern all groups at once.
#include <algorithm>

#include "server/model/contention_service.h"
#include "server/model/names.h"

namespace velmo::model {

void ContentionService::keep_in(Journal& journal)
{
    const std::lock_guard<std::mutex> lock(mutex);
    recorder.keep_in(journal);
    for (const auto& [name, group] : all_groups)
        recorder.add(GroupImage{name, group.epoch});
    recorder.close();
}

ContentionImage ContentionService::image() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    ContentionImage image;
    image.groups.push_back({"", epoch_before_any});
    for (const auto& [group_name, group] : all_groups) {
        image.groups.push_back({group_name, group.epoch});
        for (const auto& [name, contender] : group.contenders)
            image.contenders.push_back({group_name, name, contender.priority,
                                        contender.arrival, contender.role, contender.data});
    }
    return image;
}

vl_result ContentionService::restore(const ContentionImage& image)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Groups restored;
    Epoch highest = epoch_before_any;
    std::uint64_t last_arrival = arrivals;
    for (const GroupImage& group : image.groups) {
        highest = std::max(highest, group.epoch);
        if (group.name.empty())
            continue;
        if (check_name(group.name) != VL_OK || !restored.try_emplace(group.name).second)
            return MIDPLUSDATA_IS_BAD;
        restored.find(group.name)->second.epoch = group.epoch;
    }
    const Clock::time_point lease_end = now() + limits.lease;
    for (const ContenderImage& each : image.contenders) {
        const auto group = restored.find(each.group);
        if (check_name(each.name) != VL_OK || group == restored.end() || !each.data)
            return MIDPLUSDATA_IS_BAD;
        last_arrival = std::max(last_arrival, each.arrival);
        const Contender contender{each.priority, each.arrival, each.role, each.data,
                                  lease_end};
        if (!group->second.contenders.emplace(each.name, contender).second)
            return MIDPLUSDATA_IS_BAD;
    }
    // Above whatever was seen of elections that were not recorded any more.
    for (Groups::value_type& group : restored)
        if (!group.second.contenders.empty()) {
            group.second.epoch = highest;
            elect(group);
        }
    all_groups.swap(restored);
    epoch_before_any = highest;
    arrivals = last_arrival;
    return VL_OK;
}

} // namespace velmo::model
