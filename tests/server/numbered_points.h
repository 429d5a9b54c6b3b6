// Points that tell which snapshot they are of.
#ifndef VELMO_TESTS_SERVER_NUMBERED_POINTS_H
#define VELMO_TESTS_SERVER_NUMBERED_POINTS_H

#include "server/store/snapshot_store.h"
#include "tests/server/images.h"

namespace velmo::tests {

// Not two numbers in a row have the same count.
inline std::size_t count_of_points(int number)
{
    return 100 + static_cast<std::size_t>(number % 4) * 450;
}

inline void save_numbered(store::SnapshotStore& snapshots, int number)
{
    snapshots.save_points("", [&](const store::SnapshotStore::VisitPoint& visit) {
        const model::Data value = bytes_of(std::to_string(number));
        for (std::size_t i = 0; i < count_of_points(number); ++i)
            visit({"p" + std::to_string(i), "text", std::string(1500, 'd'), value});
    });
}

// The number; none when it is not one whole snapshot.
inline std::optional<int> number_of(const store::SnapshotStore::Points& points)
{
    if (points.empty())
        return std::nullopt;
    const model::Data& value = points.front().value;
    const int number = std::stoi(std::string(value->begin(), value->end()));
    for (const model::PointImage& point : points)
        if (!(*point.value == *value))
            return std::nullopt;
    return points.size() == count_of_points(number) ? std::optional<int>(number)
                                                    : std::nullopt;
}

} // namespace velmo::tests

#endif
