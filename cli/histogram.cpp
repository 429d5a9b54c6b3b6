#include "cli/histogram.h"

#include <algorithm>
#include <cmath>

namespace velmo::cli {

void Histogram::add(Duration duration)
{
    const auto value =
        static_cast<std::uint64_t>(std::max<Duration::rep>(duration.count(), 0));
    ++counts[index(value)];
    ++total;
    summed += duration;
    longest = std::max(longest, duration);
}

void Histogram::add(const Histogram& other)
{
    for (std::size_t i = 0; i < counts.size(); ++i)
        counts[i] += other.counts[i];
    total += other.total;
    summed += other.summed;
    longest = std::max(longest, other.longest);
}

Histogram::Duration Histogram::quantile(double share) const
{
    const auto rank =
        static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(total)));
    std::uint64_t below = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        below += counts[i];
        if (below >= rank && below > 0)
            return std::min(end(i), longest);
    }
    return Duration(0);
}

std::vector<Histogram::Bucket> Histogram::buckets() const
{
    std::vector<Bucket> result;
    for (std::size_t i = 0; i < counts.size(); ++i)
        if (counts[i] > 0)
            result.push_back({end(i), counts[i]});
    return result;
}

// Values below 64 have buckets of their own; above, each power of two has 32 of them.
std::size_t Histogram::index(std::uint64_t value)
{
    std::size_t power = 0;
    while ((value >> power) >= 2 * steps)
        ++power;
    return std::min(steps * power + (value >> power), steps * 60 - 1);
}

Histogram::Duration Histogram::end(std::size_t index)
{
    const std::size_t power = index < 2 * steps ? 0 : index / steps - 1;
    return Duration(static_cast<Duration::rep>((index - steps * power + 1) << power));
}

} // namespace velmo::cli
