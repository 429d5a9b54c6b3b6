// All points at one moment, and back.
#include <stdexcept>

#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;
using model::PointImage;

namespace {

using All = std::map<std::string, std::string>;

class PointMoments : public PointFixture {
protected:
    // "p0", "p1" ...: more of them than the service keeps under one lock.
    void create_many()
    {
        for (int i = 0; i < count; ++i)
            create({"p" + std::to_string(i)}, i % 2 == 0 ? "text" : "bytes");
        for (int i = 0; i < count; i += 3)
            ASSERT_EQ(set("p" + std::to_string(i), "value " + std::to_string(i)), VL_OK);
        for (int i = 0; i < count; i += 5)
            ASSERT_EQ(points.set_description("p" + std::to_string(i), "described"), VL_OK);
    }

    All all_infos() const
    {
        All all;
        for (const char* name : points.names())
            all[name] = info(name);
        return all;
    }

    // Some are written, some described, some removed, some of those created again, and
    // others come.
    void change_all()
    {
        vl_result worst = VL_OK;
        for (int i = 0; i < count; ++i) {
            const std::string name = "p" + std::to_string(i);
            if (i % 4 != 0)
                worst = std::max(worst, set(name, "changed"));
            if (i % 4 != 1)
                worst = std::max(worst, points.set_description(name, "changed"));
            if (i % 4 >= 2)
                worst = std::max(worst, points.remove(name));
            if (i % 4 == 3)
                worst = std::max(worst, points.create(name, "bytes"));
            if (i % 8 == 7)
                worst = std::max(worst, points.remove(name));
            worst = std::max(worst, points.create("new" + std::to_string(i), "text"));
        }
        EXPECT_EQ(worst, VL_OK);
    }

    std::vector<PointImage> images()
    {
        std::vector<PointImage> all;
        points.visit_moment([&](const PointImage& image) { all.push_back(image); });
        return all;
    }

    static constexpr int count = 1000;
};

TEST_F(PointMoments, OfNoPointsIsEmpty)
{
    EXPECT_TRUE(moment().empty());
}

TEST_F(PointMoments, HoldsEveryPointOnce)
{
    create_many();
    const All all = moment();
    EXPECT_EQ(all.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(all, all_infos());
    EXPECT_EQ(moment(), all);
}

TEST_F(PointMoments, WhatChangesMeanwhileIsSeenAsItWas)
{
    create_many();
    const All before = all_infos();
    All after;
    const All seen = moment([&](const PointImage&) {
        if (!after.empty())
            return;
        change_all();
        EXPECT_EQ(points.create_set("set", "text", "1\n2\n3"), VL_OK);
        after = all_infos();
    });
    EXPECT_EQ(seen, before);
    EXPECT_NE(after, before);
    EXPECT_EQ(all_infos(), after);
    EXPECT_EQ(moment(), after);
}

TEST_F(PointMoments, AVisitThatFailsLeavesNothingBehind)
{
    create_many();
    int visits = 0;
    const auto fail = [&](const PointImage&) {
        if (++visits == count / 2)
            throw std::runtime_error("disk full");
        EXPECT_EQ(set("p1", std::to_string(visits)), VL_OK);
    };
    EXPECT_THROW(points.visit_moment(fail), std::runtime_error);
    EXPECT_EQ(set("p1", "last"), VL_OK);
    EXPECT_EQ(points.remove("p2"), VL_OK);
    EXPECT_EQ(moment(), all_infos());
}

TEST_F(PointMoments, ImagesMakeEqualPoints)
{
    create_many();
    const All before = all_infos();
    const std::vector<PointImage> saved = images();
    for (const char* name : points.names())
        ASSERT_EQ(points.remove(name), VL_OK);
    create({"other"});
    ASSERT_EQ(restore(saved), VL_OK) << problem;
    EXPECT_EQ(all_infos(), before);
    EXPECT_EQ(points.size(), before.size());
    EXPECT_EQ(get("other"), "[4002]");
    EXPECT_EQ(set("p0", "changed"), VL_OK);
    EXPECT_EQ(saved.size(), before.size());
    ASSERT_EQ(restore(saved), VL_OK) << problem;
    EXPECT_EQ(all_infos(), before);
}

TEST_F(PointMoments, ABadImageChangesNothing)
{
    create({"p", "q"});
    const All before = all_infos();
    const PointImage good{"good", "text", "", bytes_of("x")};
    const std::vector<std::pair<PointImage, vl_result>> bad{
        {{"bad", "no such", "", nullptr}, ABSTRACT_DATA_TYPE_NULL},
        {{"bad", "int32", "", bytes_of("123")}, SIZE_IS_NOT_MATCH},
        {{"good", "text", "", nullptr}, OBJECT_ALREADY_EXSIT},
        {{"", "text", "", nullptr}, INVAILD_NULL_PARAMETER},
        {{std::string(256, 'n'), "text", "", nullptr}, PARAMETER_ERROR},
        {{"bad", "text", std::string(4097, 'd'), nullptr}, PARAMETER_ERROR}};
    for (const auto& [image, code] : bad) {
        EXPECT_EQ(restore({good, image, good}), code);
        EXPECT_EQ(problem, "point \"" + image.name + "\" of template \"" +
                               image.template_name + "\": result " + std::to_string(code));
        EXPECT_EQ(all_infos(), before);
        EXPECT_EQ(points.size(), 2u);
    }
}

class FewMoments : public PointFixture {
protected:
    static model::PointLimits few()
    {
        model::PointLimits limits;
        limits.max_points = 2;
        return limits;
    }
    FewMoments() : PointFixture(few()) {}
};

TEST_F(FewMoments, NoMorePointsThanMayBeAreRestored)
{
    create({"p"});
    const PointImage a{"a", "text", "", nullptr}, b{"b", "text", "", nullptr},
        c{"c", "text", "", nullptr};
    EXPECT_EQ(restore({a, b, c}), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(problem, "3 points are too many");
    EXPECT_EQ(points.names(), Names{"p"});
    EXPECT_EQ(restore({a, b}), VL_OK);
    EXPECT_EQ(points.create("c", "text"), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(points.remove("a"), VL_OK);
    create({"c"});
}

} // namespace
