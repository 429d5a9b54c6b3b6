#include "server/model/contention_service.h"

#include <algorithm>

#include "server/model/names.h"

namespace velmo::model {

namespace {

vl_result check_names(std::string_view group, std::string_view contender)
{
    const vl_result result = check_name(group);
    return result == VL_OK ? check_name(contender) : result;
}

} // namespace

Epoch first_epoch_of_now()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<Epoch>(
        std::chrono::duration_cast<std::chrono::microseconds>(now).count());
}

ContentionService::ContentionService(const ContentionLimits& contention_limits, Now clock,
                                     Epoch first)
    : limits(contention_limits), now(std::move(clock)), epoch_before_any(first - 1)
{
}

bool ContentionService::goes_before(const Contender& one, const Contender& other)
{
    return one.priority != other.priority ? one.priority > other.priority
                                          : one.arrival < other.arrival;
}

void ContentionService::elect(Group& group)
{
    const auto first = std::min_element(
        group.contenders.begin(), group.contenders.end(),
        [](const auto& a, const auto& b) { return goes_before(a.second, b.second); });
    if (first == group.contenders.end()) {
        group.master.reset();
    } else if (group.master != first->first) {
        group.master = first->first;
        ++group.epoch;
    }
}

void ContentionService::settle(Group& group, Clock::time_point moment)
{
    for (auto i = group.contenders.begin(); i != group.contenders.end();)
        i = i->second.lease_end <= moment ? group.contenders.erase(i) : std::next(i);
    // One that comes back in this very call has been out, and needs a new epoch.
    elect(group);
}

// Makes room, when it must, by forgetting groups that nobody stands in.
ContentionService::Group* ContentionService::open_group(std::string_view name)
{
    const auto found = all_groups.find(name);
    if (found != all_groups.end())
        return &found->second;
    if (all_groups.size() >= limits.max_groups) {
        const Clock::time_point moment = now();
        for (auto i = all_groups.begin(); i != all_groups.end();) {
            settle(i->second, moment);
            if (i->second.contenders.empty()) {
                epoch_before_any = std::max(epoch_before_any, i->second.epoch);
                i = all_groups.erase(i);
            } else {
                ++i;
            }
        }
        if (all_groups.size() >= limits.max_groups)
            return nullptr;
    }
    Group* group = &all_groups[std::string(name)];
    group->epoch = epoch_before_any;
    return group;
}

vl_result ContentionService::regist_contender(std::string_view group_name,
                                              std::string_view contender_name,
                                              const Data& data, std::string_view role,
                                              std::int32_t priority)
{
    if (const vl_result result = check_names(group_name, contender_name); result != VL_OK)
        return result;
    if (role.size() > max_name_bytes)
        return PARAMETER_ERROR;
    if (data->size() > limits.data_bytes)
        return SIZE_IS_NOT_MATCH;
    const std::lock_guard<std::mutex> lock(mutex);
    Group* group = open_group(group_name);
    if (!group)
        return MEMORY_ALLOCATION_FAI;
    const Clock::time_point moment = now();
    settle(*group, moment);
    auto contender = group->contenders.find(contender_name);
    if (contender == group->contenders.end()) {
        if (group->contenders.size() >= limits.max_contenders)
            return MEMORY_ALLOCATION_FAI;
        contender = group->contenders.emplace(contender_name, Contender()).first;
        contender->second.arrival = ++arrivals;
    }
    contender->second.priority = priority;
    contender->second.role = role;
    contender->second.data = data;
    contender->second.lease_end = moment + limits.lease;
    elect(*group);
    return VL_OK;
}

vl_result ContentionService::find(std::string_view group_name,
                                  std::string_view contender_name, Standing& standing)
{
    if (const vl_result result = check_names(group_name, contender_name); result != VL_OK)
        return result;
    const auto group = all_groups.find(group_name);
    if (group == all_groups.end())
        return CONTENDER_IS_NUL;
    standing.group = &group->second;
    standing.moment = now();
    settle(*standing.group, standing.moment);
    standing.contender = standing.group->contenders.find(contender_name);
    return standing.contender == standing.group->contenders.end() ? CONTENDER_IS_NUL
                                                                  : VL_OK;
}

vl_result ContentionService::update_contender(std::string_view group,
                                              std::string_view contender)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Standing standing;
    const vl_result result = find(group, contender, standing);
    if (result == VL_OK)
        standing.contender->second.lease_end = standing.moment + limits.lease;
    return result;
}

vl_result ContentionService::out_contend(std::string_view group, std::string_view contender)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Standing standing;
    const vl_result result = find(group, contender, standing);
    if (result == VL_OK) {
        standing.group->contenders.erase(standing.contender);
        elect(*standing.group);
    }
    return result;
}

std::optional<GroupStatus> ContentionService::status(std::string_view name) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = all_groups.find(name);
    if (found == all_groups.end())
        return std::nullopt;
    const Clock::time_point moment = now();
    settle(found->second, moment);

    std::vector<const Contenders::value_type*> order;
    for (const auto& contender : found->second.contenders)
        order.push_back(&contender);
    std::sort(order.begin(), order.end(), [](const auto* a, const auto* b) {
        return goes_before(a->second, b->second);
    });
    GroupStatus status;
    status.epoch = found->second.epoch;
    for (const auto* entry : order) {
        const Contender& contender = entry->second;
        status.contenders.push_back(
            {entry->first, contender.priority, contender.role, contender.data,
             std::chrono::ceil<std::chrono::milliseconds>(contender.lease_end - moment)});
    }
    return status;
}

std::vector<std::string> ContentionService::groups() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<std::string> names;
    for (const auto& [name, group] : all_groups)
        names.push_back(name);
    return names;
}

void ContentionService::set_lease(std::chrono::milliseconds lease)
{
    const std::lock_guard<std::mutex> lock(mutex);
    limits.lease = lease;
}

std::size_t ContentionService::leases() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Clock::time_point moment = now();
    std::size_t count = 0;
    for (auto& [name, group] : all_groups) {
        settle(group, moment);
        count += group.contenders.size();
    }
    return count;
}

} // namespace velmo::model
