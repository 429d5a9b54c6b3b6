// All points of a service, to be compared.
#ifndef VELMO_TESTS_SERVER_POINTS_OF_H
#define VELMO_TESTS_SERVER_POINTS_OF_H

#include <algorithm>
#include <vector>

#include "server/model/point_service.h"
#include "tests/server/images.h"

namespace velmo::tests {

// Sorted, since points are visited in no particular order.
inline std::vector<model::PointImage> points_of(model::PointService& service)
{
    std::vector<model::PointImage> points;
    service.visit_moment([&](const model::PointImage& point) { points.push_back(point); });
    std::sort(points.begin(), points.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    return points;
}

} // namespace velmo::tests

#endif
