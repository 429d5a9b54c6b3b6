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

class ContentionService::Changing {
public:
    explicit Changing(const ContentionService& its_service)
        : lock(its_service.mutex), service(its_service)
    {
    }
    ~Changing() { service.recorder.close(); }

private:
    const std::lock_guard<std::mutex> lock;
    const ContentionService& service;
};

bool ContentionService::goes_before(const Contender& one, const Contender& other)
{
    return one.priority != other.priority ? one.priority > other.priority
                                          : one.arrival < other.arrival;
}

void ContentionService::elect(Groups::value_type& entry) const
{
    Group& group = entry.second;
    const auto first = std::min_element(
        group.contenders.begin(), group.contenders.end(),
        [](const auto& a, const auto& b) { return goes_before(a.second, b.second); });
    if (first == group.contenders.end()) {
        group.master.reset();
    } else if (group.master != first->first) {
        group.master = first->first;
        recorder.add(GroupImage{entry.first, ++group.epoch});
    }
}

void ContentionService::settle(Groups::value_type& entry, Clock::time_point moment) const
{
    Contenders& contenders = entry.second.contenders;
    for (auto i = contenders.begin(); i != contenders.end();) {
        const auto contender = i++;
        if (contender->second.lease_end <= moment)
            take_out(entry, contender);
    }
    // One that comes back in this very call has been out, and needs a new epoch.
    elect(entry);
}

void ContentionService::take_out(Groups::value_type& entry,
                                 Contenders::iterator contender) const
{
    if (recorder.on())
        recorder.add(ContenderRemoved{entry.first, contender->first});
    entry.second.contenders.erase(contender);
}

// Makes room, when it must, by forgetting groups that nobody stands in.
ContentionService::Groups::value_type* ContentionService::open_group(std::string_view name)
{
    const auto found = all_groups.find(name);
    if (found != all_groups.end())
        return &*found;
    if (all_groups.size() >= limits.max_groups)
        forget_empty_groups();
    if (all_groups.size() >= limits.max_groups)
        return nullptr;
    Groups::value_type& group = *all_groups.try_emplace(std::string(name)).first;
    group.second.epoch = epoch_before_any;
    return &group;
}

void ContentionService::forget_empty_groups()
{
    const Clock::time_point moment = now();
    for (auto i = all_groups.begin(); i != all_groups.end();) {
        settle(*i, moment);
        if (!i->second.contenders.empty()) {
            ++i;
            continue;
        }
        epoch_before_any = std::max(epoch_before_any, i->second.epoch);
        recorder.add(GroupRemoved{i->first});
        i = all_groups.erase(i);
    }
    recorder.add(GroupImage{"", epoch_before_any});
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
    const Changing lock(*this);
    Groups::value_type* group = open_group(group_name);
    if (!group)
        return MEMORY_ALLOCATION_FAI;
    const Clock::time_point moment = now();
    settle(*group, moment);
    Contenders& contenders = group->second.contenders;
    auto contender = contenders.find(contender_name);
    if (contender == contenders.end()) {
        if (contenders.size() >= limits.max_contenders)
            return MEMORY_ALLOCATION_FAI;
        contender = contenders.emplace(contender_name, Contender()).first;
        contender->second.arrival = ++arrivals;
    }
    contender->second.priority = priority;
    contender->second.role = role;
    contender->second.data = data;
    contender->second.lease_end = moment + limits.lease;
    if (recorder.on())
        recorder.add(ContenderImage{group->first, contender->first, priority,
                                    contender->second.arrival, std::string(role), data});
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
    standing.group = &*group;
    standing.moment = now();
    settle(*standing.group, standing.moment);
    Contenders& contenders = group->second.contenders;
    standing.contender = contenders.find(contender_name);
    return standing.contender == contenders.end() ? CONTENDER_IS_NUL : VL_OK;
}

vl_result ContentionService::update_contender(std::string_view group,
                                              std::string_view contender)
{
    const Changing lock(*this);
    Standing standing;
    const vl_result result = find(group, contender, standing);
    if (result == VL_OK)
        standing.contender->second.lease_end = standing.moment + limits.lease;
    return result;
}

vl_result ContentionService::out_contend(std::string_view group, std::string_view contender)
{
    const Changing lock(*this);
    Standing standing;
    const vl_result result = find(group, contender, standing);
    if (result == VL_OK) {
        take_out(*standing.group, standing.contender);
        elect(*standing.group);
    }
    return result;
}

std::optional<GroupStatus> ContentionService::status(std::string_view name) const
{
    const Changing lock(*this);
    const auto found = all_groups.find(name);
    if (found == all_groups.end())
        return std::nullopt;
    const Clock::time_point moment = now();
    settle(*found, moment);

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
    const Changing lock(*this);
    const Clock::time_point moment = now();
    std::size_t count = 0;
    for (Groups::value_type& group : all_groups) {
        settle(group, moment);
        count += group.second.contenders.size();
    }
    return count;
}

} // namespace velmo::model
