// How long many calls took, in little memory.
#ifndef VELMO_CLI_HISTOGRAM_H
#define VELMO_CLI_HISTOGRAM_H

#include <array>
#include <chrono>
#include <cstdint>
#include <vector>

namespace velmo::cli {

// Counts durations in buckets, each at most 1/32 wider than where it begins.
class Histogram {
public:
    using Duration = std::chrono::nanoseconds;

    struct Bucket {
        Duration end; // durations in it are below
        std::uint64_t count;
    };

    void add(Duration duration);
    void add(const Histogram& other);

    std::uint64_t count() const { return total; }
    Duration sum() const { return summed; }
    Duration max() const { return longest; }

    // What the share of all, from 0 to 1, did not exceed, up to a bucket's width; 0 when
    // there are none.
    Duration quantile(double share) const;

    // Those that are not empty, in ascending order.
    std::vector<Bucket> buckets() const;

private:
    static constexpr std::size_t steps = 32; // in each power of two

    static std::size_t index(std::uint64_t value);
    static Duration end(std::size_t index);

    std::array<std::uint64_t, steps * 60> counts{};
    std::uint64_t total = 0;
    Duration summed{0};
    Duration longest{0};
};

} // namespace velmo::cli

#endif
