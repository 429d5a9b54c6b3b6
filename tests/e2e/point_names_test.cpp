// Many points: lists of their names, sets, and the server's own.
#include "tests/e2e/one_server.h"

using namespace velmo::tests;

namespace {

class PointNames : public OneServer {};

Names without_data()
{
    return listed(
        [](NameList* list) { return vl_check_null_data(list, nullptr, nullptr); });
}

TEST_F(PointNames, AreInByteOrder)
{
    EXPECT_EQ(all_points(), Names{});
    EXPECT_EQ(points_of("text"), Names{});
    EXPECT_EQ(without_data(), Names{});
    for (const char* name : {"b", "\xFF", "a/b", "a", "B", "a b"})
        ASSERT_EQ(create_point(name), VL_OK);
    ASSERT_EQ(create_point("number", "int8"), VL_OK);
    ASSERT_EQ(set_point("a", ""), VL_OK);
    ASSERT_EQ(set_point("number", "1"), VL_OK);
    EXPECT_EQ(all_points(), (Names{"B", "a", "a b", "a/b", "b", "number", "\xFF"}));
    EXPECT_EQ(points_of("text"), (Names{"B", "a", "a b", "a/b", "b", "\xFF"}));
    EXPECT_EQ(points_of("int8"), Names{"number"});
    EXPECT_EQ(points_of("int16"), Names{});
    EXPECT_EQ(without_data(), (Names{"B", "a b", "a/b", "b", "\xFF"}));
}

TEST_F(PointNames, ListsThatCannotBe)
{
    for (const std::string& type :
         {std::string(), std::string("no such"), std::string(1 << 20, 'n')})
        EXPECT_EQ(points_of(type), Names{"[4000]"});
    NameList list{99, nullptr};
    EXPECT_EQ(vl_get_all_point_by_typename(&list, nullptr, nullptr, nullptr),
              ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(list.count, 0u) << "filled, with no name";
    vl_free_memory(reinterpret_cast<void**>(&list.names));
    EXPECT_EQ(vl_get_all_point_name(nullptr, nullptr, nullptr), 145);
    EXPECT_EQ(vl_get_all_point_by_typename(nullptr, "text", nullptr, nullptr), 147);
    EXPECT_EQ(vl_check_null_data(nullptr, nullptr, nullptr), 146);
    EXPECT_EQ(vl_get_query_data_type(nullptr, nullptr, nullptr), 140);
}

TEST_F(PointNames, OfManyThousandPointsComeInOneList)
{
    std::string members;
    Names expected;
    for (int i = 10000; i < 30000; ++i) {
        members += std::to_string(i) + "\n";
        expected.push_back("s/" + std::to_string(i));
    }
    ASSERT_EQ(create_set("s", "int32", members), VL_OK);
    EXPECT_TRUE(all_points() == expected);
    EXPECT_TRUE(points_of("int32") == expected);
    EXPECT_TRUE(without_data() == expected);
}

TEST_F(PointNames, ASetIsPointsBelowItsName)
{
    EXPECT_EQ(create_set("motor", "float64", "speed\ntorque\n"), VL_OK);
    EXPECT_EQ(create_set("motor", "text", "name/short"), VL_OK);
    EXPECT_EQ(all_points(), (Names{"motor/name/short", "motor/speed", "motor/torque"}));
    EXPECT_EQ(points_of("float64"), (Names{"motor/speed", "motor/torque"}));
    EXPECT_EQ(set_point("motor/torque", "12345678"), VL_OK);
}

TEST_F(PointNames, ASetThatCannotBeCreatesNothing)
{
    ASSERT_EQ(create_point("s/taken"), VL_OK);
    EXPECT_EQ(create_set("s", "text", "1\n2\ntaken"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_set("s", "text", "1\n2\n1"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_set("", "text", "1"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_set("s", "", "1"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_set("s", "text", ""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_set("s", "text", "1\n\n2"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(vl_create_set(nullptr, nullptr, nullptr, 0, nullptr, nullptr),
              INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_set("s", "no such", "1"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(create_set("$SYS", "text", "1"), PARAMETER_ERROR);
    EXPECT_EQ(create_set("s", "text", "1\n" + std::string(254, 'n')), PARAMETER_ERROR);
    EXPECT_EQ(create_set(std::string(1 << 20, 'n'), "text", "1"), PARAMETER_ERROR);
    EXPECT_EQ(create_set("s", "text", "1\n" + std::string(1 << 20, 'n')), PARAMETER_ERROR);
    EXPECT_EQ(create_set("s", "text", std::string("1\n2\0x\n3", 8)), PARAMETER_ERROR);
    EXPECT_EQ(vl_create_set("s", "text", nullptr, 1, nullptr, nullptr), 142);
    EXPECT_EQ(vl_create_set("s", "text", "1", -1, nullptr, nullptr), 142);
    EXPECT_EQ(all_points(), Names{"s/taken"});
}

TEST_F(PointNames, TheServersOwnPointsCanBeReadAndNothingElse)
{
    ASSERT_EQ(create_port("line/1", 7), VL_OK);
    ASSERT_EQ(create_point("p"), VL_OK);
    const std::string name = "$SYS/ports/line/1/handle";
    EXPECT_EQ(get_point(name), "7");
    EXPECT_EQ(point_info(name), "$SYS||7");
    EXPECT_EQ(taken(vl_get_data_template_point_type(name.c_str(), nullptr, nullptr)),
              "$SYS");
    EXPECT_EQ(taken(vl_get_data_template_point_description(name.c_str(), nullptr, nullptr)),
              "");
    for (const std::string& each : {name, std::string("$SYS/none")}) {
        EXPECT_EQ(set_point(each, "8"), PARAMETER_ERROR);
        EXPECT_EQ(
            vl_set_data_template_point_description(each.c_str(), "x", nullptr, nullptr),
            PARAMETER_ERROR);
        EXPECT_EQ(vl_remove_template_point(each.c_str(), nullptr, nullptr),
                  PARAMETER_ERROR);
        EXPECT_EQ(create_point(each), PARAMETER_ERROR);
    }
    EXPECT_EQ(get_point("$SYS/none"), "[4002]");
    EXPECT_EQ(point_info("$SYS/none"), "[4002]");
    EXPECT_EQ(all_points(), Names{"p"});
    EXPECT_EQ(without_data(), Names{"p"});
    const std::string port = "$SYS/ports/line/1/";
    EXPECT_EQ(points_of("$SYS"),
              (Names{port + "bytes", port + "capacity", port + "depth", port + "handle",
                     port + "host", port + "replies", port + "waiting"}));
    EXPECT_EQ(get_point(name), "7");
}

} // namespace
