#include "bench/measure.h"

#include <sched.h>

#include <algorithm>
#include <cstdio>

namespace velmo::bench {

void pin_to_one_processor()
{
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int processor = 0;
    while (!CPU_ISSET(processor, &allowed))
        ++processor;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(processor, &one);
    sched_setaffinity(0, sizeof one, &one);
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double time_of(int calls, const std::function<void()>& call)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
        call();
    return Nanoseconds(std::chrono::steady_clock::now() - start).count() / calls;
}

double ratio(const std::vector<double>& times, const std::vector<double>& others)
{
    std::vector<double> ratios(times.size());
    std::transform(times.begin(), times.end(), others.begin(), ratios.begin(),
                   std::divides<>());
    return median(std::move(ratios));
}

void print(const Row& row)
{
    nlohmann::json line = row.more;
    line["group"] = row.group;
    line["row"] = row.name;
    line["metric"] = row.metric;
    line["value"] = row.value;
    std::puts(line.dump().c_str());
    std::fflush(stdout);
}

nlohmann::json bar(double limit, const char* better)
{
    return {{"bar", limit}, {"better", better}};
}

std::string in_words(std::size_t bytes)
{
    if (bytes >= 1u << 20)
        return std::to_string(bytes >> 20) + " MiB";
    if (bytes >= 1u << 10)
        return std::to_string(bytes >> 10) + " KiB";
    return std::to_string(bytes) + " B";
}

} // namespace velmo::bench
