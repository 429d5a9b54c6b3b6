// A contention service with a clock that the test moves, and the short words in which
// tests talk to it.
#ifndef VELMO_TESTS_SERVER_CONTENTION_FIXTURE_H
#define VELMO_TESTS_SERVER_CONTENTION_FIXTURE_H

#include <gtest/gtest.h>

#include "server/model/contention_points.h"
#include "tests/server/images.h"

namespace velmo::tests {

class ContentionFixture : public ::testing::Test {
protected:
    using Duration = std::chrono::milliseconds;

    static constexpr Duration lease{100};

    static model::ContentionLimits hundred_milliseconds()
    {
        model::ContentionLimits limits;
        limits.lease = lease;
        return limits;
    }

    explicit ContentionFixture(
        const model::ContentionLimits& limits = hundred_milliseconds())
        : contention(
              limits, [this] { return now; }, 1)
    {
    }

    vl_result regist(const std::string& contender, std::int32_t priority = 0,
                     const std::string& group = "g")
    {
        return contention.regist_contender(
            group, contender, bytes_of("data of " + contender), "role", priority);
    }

    vl_result update(const std::string& contender, const std::string& group = "g")
    {
        return contention.update_contender(group, contender);
    }

    vl_result out(const std::string& contender, const std::string& group = "g")
    {
        return contention.out_contend(group, contender);
    }

    std::string point(const std::string& name) const
    {
        return model::ContentionPoints(contention)
            .read("$SYS/contention/" + name)
            .value_or("none");
    }

    // "EPOCH MASTER"
    std::string state(const std::string& group = "g") const
    {
        return point(group + "/state");
    }

    void pass(Duration time) { now += time; }

    model::ContentionService::Clock::time_point now{};
    model::ContentionService contention;
};

} // namespace velmo::tests

#endif
