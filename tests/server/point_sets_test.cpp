// Sets of points, created together.
#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class PointSets : public PointFixture {};

TEST_F(PointSets, EachLineIsAPointBelowTheSetsName)
{
    EXPECT_EQ(points.create_set("tank", "float32", "level\ntemperature\nin/flow\n"), VL_OK);
    EXPECT_EQ(points.names(), (Names{"tank/in/flow", "tank/level", "tank/temperature"}));
    EXPECT_EQ(of_type("float32"), "tank/in/flow tank/level tank/temperature");
    EXPECT_EQ(points.size(), 3u);
}

TEST_F(PointSets, TheLastLineMayLackItsEnd)
{
    EXPECT_EQ(points.create_set("a", "text", "1\n2"), VL_OK);
    EXPECT_EQ(points.create_set("b", "text", "1"), VL_OK);
    EXPECT_EQ(points.names(), (Names{"a/1", "a/2", "b/1"}));
}

TEST_F(PointSets, ASetGrowsWithTheNextOneOfItsName)
{
    EXPECT_EQ(points.create_set("s", "text", "1"), VL_OK);
    EXPECT_EQ(points.create_set("s", "int8", "2"), VL_OK);
    EXPECT_EQ(points.names(), (Names{"s/1", "s/2"}));
}

TEST_F(PointSets, TheMembersHaveTheInitialValue)
{
    model::TemplateDefinition on = definition("on", "bool");
    on.initial = "true";
    templates.add(on);
    EXPECT_EQ(points.create_set("s", "on", "1\n2"), VL_OK);
    EXPECT_EQ(get("s/1"), "\x01");
    EXPECT_EQ(get("s/2"), "\x01");
}

TEST_F(PointSets, BadSetsCreateNothing)
{
    create({"s/taken"});
    const std::string longest(250, 'n');
    EXPECT_EQ(points.create_set("", "text", "1"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "", "1"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "no such", "1"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points.create_set("s", "text", ""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "text", "\n"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "text", "1\n\n2"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "text", "1\n2\n\n"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create_set("s", "text", "1\n2\n1"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points.create_set("s", "text", "1\n2\ntaken"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points.create_set("12345", "text", "1\n" + longest), PARAMETER_ERROR);
    EXPECT_EQ(points.create_set("s", "text", std::string("1\n2\0x", 5)), PARAMETER_ERROR);
    EXPECT_EQ(points.create_set("$SYS", "text", "1"), PARAMETER_ERROR);
    EXPECT_EQ(points.create_set("$SYS/s", "text", "1"), PARAMETER_ERROR);
    EXPECT_EQ(points.names(), Names{"s/taken"});
    EXPECT_EQ(points.size(), 1u);
    EXPECT_EQ(points.create_set("1234", "text", "1\n" + longest), VL_OK);
}

TEST_F(PointSets, OfManyMembers)
{
    std::string members;
    for (int i = 0; i < 100000; ++i)
        members += "member " + std::to_string(i) + "\n";
    EXPECT_EQ(points.create_set("s", "int32", members), VL_OK);
    EXPECT_EQ(points.size(), 100000u);
    EXPECT_EQ(set("s/member 99999", "1234"), VL_OK);
    EXPECT_EQ(points.create_set("s", "int32", "new\nmember 5"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(get("s/new"), "[4002]");
}

} // namespace
