// Points, one at a time and listed.
#include "tests/server/point_fixture.h"

using namespace velmo;
using namespace velmo::tests;

namespace {

class Points : public PointFixture {};

TEST_F(Points, AValueIsReadAsItWasWritten)
{
    create({"p"});
    EXPECT_EQ(get("p"), "[2001]");
    EXPECT_EQ(set("p", "first"), VL_OK);
    EXPECT_EQ(set("p", "second"), VL_OK);
    EXPECT_EQ(get("p"), "second");
    EXPECT_EQ(get("p"), "second");
}

TEST_F(Points, AnEmptyValueIsDataToo)
{
    create({"p"});
    EXPECT_EQ(set("p", ""), VL_OK);
    EXPECT_EQ(get("p"), "");
    EXPECT_TRUE(points.names_without_data().empty());
}

TEST_F(Points, CreatingTakesANameAndATemplateThatExist)
{
    create({"p"});
    EXPECT_EQ(points.create("p", "text"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points.create("p", "int8"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points.create("q", "no such"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points.create("q", std::string(1u << 20, 't')), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(points.create("q", ""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.create("", "text"), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(points.names(), Names{"p"});
}

TEST_F(Points, NamesAreBytesOfAnyKindUpTo255)
{
    const Names odd{"a/b", "line\nbreak", "\xff\xfe", "$SYS", std::string(255, 'n')};
    create(odd);
    for (const std::string& name : odd) {
        EXPECT_EQ(set(name, name), VL_OK);
        EXPECT_EQ(get(name), name);
    }
    EXPECT_EQ(points.create(std::string(256, 'n'), "text"), PARAMETER_ERROR);
    EXPECT_EQ(points.create(std::string(1u << 20, 'n'), "text"), PARAMETER_ERROR);
    EXPECT_EQ(points.size(), odd.size());
}

TEST_F(Points, AnUnknownPointHasACode)
{
    const std::string unknown = "no such";
    EXPECT_EQ(get(unknown), "[4002]");
    EXPECT_EQ(set(unknown, "x"), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(info(unknown), "[4002]");
    EXPECT_EQ(points.remove(unknown), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(points.set_description(unknown, "x"), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(get(""), "[4002]");
}

TEST_F(Points, AFailureLeavesTheResultAsItWas)
{
    create({"p"});
    model::Data data = bytes_of("before");
    EXPECT_EQ(points.get("p", data), NON_EXIST_DATA);
    EXPECT_EQ(points.get("q", data), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(text_of(data), "before");
}

TEST_F(Points, ARemovedPointIsGoneAndItsNameFree)
{
    create({"p"});
    EXPECT_EQ(set("p", "x"), VL_OK);
    EXPECT_EQ(points.remove("p"), VL_OK);
    EXPECT_EQ(get("p"), "[4002]");
    EXPECT_EQ(points.remove("p"), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(points.size(), 0u);
    create({"p"}, "int8");
    EXPECT_EQ(get("p"), "[2001]");
    EXPECT_EQ(info("p"), "int8||no data");
}

TEST_F(Points, AValueThatDoesNotFitIsRefusedAndTheOldOneStays)
{
    model::TemplateDefinition up_to_3 = definition("up to 3", "bytes");
    up_to_3.max_size = 3;
    templates.add(up_to_3);
    create({"i"}, "int32");
    create({"b"}, "up to 3");
    EXPECT_EQ(set("i", "1234"), VL_OK);
    EXPECT_EQ(set("b", "123"), VL_OK);
    for (const std::string size : {"", "123", "12345"})
        EXPECT_EQ(set("i", size), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(set("b", "1234"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(get("i"), "1234");
    EXPECT_EQ(get("b"), "123");
    EXPECT_EQ(set("b", ""), VL_OK);
}

TEST_F(Points, ANewPointHasTheInitialValueOfItsTemplate)
{
    model::TemplateDefinition seven = definition("seven", "text");
    seven.initial = "7";
    templates.add(seven);
    create({"p", "q"}, "seven");
    EXPECT_EQ(set("q", "8"), VL_OK);
    EXPECT_EQ(get("p"), "7");
    EXPECT_EQ(get("q"), "8");
    EXPECT_TRUE(points.names_without_data().empty());
}

TEST_F(Points, APointIsDescribedByItsTemplateUntilSomebodyDoes)
{
    model::TemplateDefinition pump = definition("pump", "text");
    pump.description = "a pump";
    templates.add(pump);
    create({"p", "q"}, "pump");
    EXPECT_EQ(points.set_description("p", "the first\npump"), VL_OK);
    EXPECT_EQ(info("p"), "pump|the first\npump|no data");
    EXPECT_EQ(info("q"), "pump|a pump|no data");
    EXPECT_EQ(points.set_description("p", ""), VL_OK);
    EXPECT_EQ(info("p"), "pump|a pump|no data");
}

TEST_F(Points, ADescriptionHasALimit)
{
    create({"p"});
    EXPECT_EQ(points.set_description("p", std::string(4096, 'd')), VL_OK);
    EXPECT_EQ(points.set_description("p", std::string(4097, 'e')), PARAMETER_ERROR);
    EXPECT_EQ(info("p"), "text|" + std::string(4096, 'd') + "|no data");
}

TEST_F(Points, InfoTellsEverything)
{
    create({"p"});
    EXPECT_EQ(set("p", "value"), VL_OK);
    EXPECT_EQ(points.set_description("p", "description"), VL_OK);
    EXPECT_EQ(info("p"), "text|description|value");
}

TEST_F(Points, NamesComeInByteOrder)
{
    Names names;
    for (int i = 0; i < 1000; ++i)
        names.push_back("p" + std::to_string(i));
    names.insert(names.end(), {"\xc3\xa4", "P", "p", "~"});
    create(names);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(points.names(), names);
    EXPECT_EQ(points.size(), names.size());
    EXPECT_EQ(names.back(), "\xc3\xa4");
}

TEST_F(Points, NamesByTypeAndThoseWithoutData)
{
    create({"c", "a"}, "text");
    create({"b"}, "int8");
    EXPECT_EQ(of_type("text"), "a c");
    EXPECT_EQ(of_type("int8"), "b");
    EXPECT_EQ(of_type("int16"), "");
    EXPECT_EQ(of_type("no such"), "[4000]");
    EXPECT_EQ(of_type(""), "[4000]");
    EXPECT_EQ(points.names_without_data(), (Names{"a", "b", "c"}));
    EXPECT_EQ(set("a", ""), VL_OK);
    EXPECT_EQ(points.names_without_data(), (Names{"b", "c"}));
}

TEST_F(Points, APointOutlivesItsTemplate)
{
    ASSERT_EQ(templates.restore({definition("old", "text")}, problem), VL_OK);
    create({"p"}, "old");
    ASSERT_EQ(templates.restore({}, problem), VL_OK);
    EXPECT_EQ(points.create("q", "old"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(set("p", "x"), VL_OK);
    EXPECT_EQ(info("p"), "old||x");
    EXPECT_EQ(of_type("old"), "p");
}

class FewPoints : public PointFixture {
protected:
    static model::PointLimits few()
    {
        model::PointLimits limits;
        limits.max_points = 3;
        limits.max_value_bytes = 10;
        return limits;
    }
    FewPoints() : PointFixture(few()) {}
};

TEST_F(FewPoints, NoMoreThanMayBe)
{
    create({"a", "b", "c"});
    EXPECT_EQ(points.create("d", "text"), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(points.create("a", "text"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(points.remove("b"), VL_OK);
    create({"d"});
    EXPECT_EQ(points.create("e", "text"), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(points.names(), (Names{"a", "c", "d"}));
}

TEST_F(FewPoints, NoValueLargerThanMayBe)
{
    create({"a"});
    EXPECT_EQ(set("a", std::string(10, 'x')), VL_OK);
    EXPECT_EQ(set("a", std::string(11, 'y')), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(get("a"), std::string(10, 'x'));
}

TEST_F(FewPoints, ASetThatIsTooLargeIsNotCreatedAtAll)
{
    create({"a"});
    EXPECT_EQ(points.create_set("s", "text", "1\n2\n3"), CREATE_DATAPOINT_FAI);
    EXPECT_EQ(points.names(), Names{"a"});
    EXPECT_EQ(points.create_set("s", "text", "1\n2"), VL_OK);
    EXPECT_EQ(points.names(), (Names{"a", "s/1", "s/2"}));
}

} // namespace
