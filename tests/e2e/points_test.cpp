// Points, from their creation to their end.
#include <algorithm>
#include <cstring>
#include <fstream>
#include <map>

#include "tests/e2e/one_server.h"
#include "tests/support/temporary_folder.h"

using namespace velmo::tests;

namespace {

const std::string too_long(256, 'n');
const std::string megabyte(1 << 20, 'n');

int describe(const std::string& name, const std::string& text)
{
    return vl_set_data_template_point_description(name.c_str(), text.c_str(), nullptr,
                                                  nullptr);
}

std::string description(const std::string& name)
{
    return taken(vl_get_data_template_point_description(name.c_str(), nullptr, nullptr));
}

std::string type(const std::string& name)
{
    return taken(vl_get_data_template_point_type(name.c_str(), nullptr, nullptr));
}

int remove(const std::string& name)
{
    return vl_remove_template_point(name.c_str(), nullptr, nullptr);
}

class Points : public OneServer {};

TEST_F(Points, FromTheirCreationToTheirEnd)
{
    ASSERT_EQ(create_point("p", "int32"), VL_OK);
    EXPECT_EQ(get_point("p"), "[2001]");
    EXPECT_EQ(point_info("p"), "int32||");
    EXPECT_EQ(set_point("p", "1234"), VL_OK);
    EXPECT_EQ(describe("p", "a number"), VL_OK);
    EXPECT_EQ(get_point("p"), "1234");
    EXPECT_EQ(type("p"), "int32");
    EXPECT_EQ(description("p"), "a number");
    EXPECT_EQ(point_info("p"), "int32|a number|1234");
    EXPECT_EQ(remove("p"), VL_OK);
    EXPECT_EQ(remove("p"), VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(get_point("p"), "[4002]");
    EXPECT_EQ(create_point("p", "text"), VL_OK) << "the name is free again";
    EXPECT_EQ(point_info("p"), "text||");
}

TEST_F(Points, ThatCannotBeCreated)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(create_point("p"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_point("p", "int8"), OBJECT_ALREADY_EXSIT);
    EXPECT_EQ(create_point(""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_point("q", ""), INVAILD_NULL_PARAMETER);
    EXPECT_EQ(vl_create_data_template_point(nullptr, "text", nullptr, nullptr),
              INVAILD_NULL_PARAMETER);
    EXPECT_EQ(vl_create_data_template_point("q", nullptr, nullptr, nullptr),
              INVAILD_NULL_PARAMETER);
    EXPECT_EQ(create_point("q", "no such"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(create_point("q", megabyte), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(create_point(too_long), PARAMETER_ERROR);
    EXPECT_EQ(create_point(megabyte), PARAMETER_ERROR);
    EXPECT_EQ(create_point("$SYS/p"), PARAMETER_ERROR);
    EXPECT_EQ(create_point("$SYS/p", ""), INVAILD_NULL_PARAMETER) << "looked at first";
    EXPECT_EQ(create_point("$SYS/p", "no such"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(create_point("", "no such"), ABSTRACT_DATA_TYPE_NULL);
    EXPECT_EQ(all_points(), Names{"p"});
    EXPECT_EQ(point_info("p"), "text||");
}

TEST_F(Points, ThatAreUnknown)
{
    for (const std::string& name : {std::string(), std::string("q"), megabyte}) {
        EXPECT_EQ(get_point(name), "[4002]");
        EXPECT_EQ(set_point(name, "x"), VARIABLE_IS_NOT_EXIST);
        EXPECT_EQ(describe(name, "x"), VARIABLE_IS_NOT_EXIST);
        EXPECT_EQ(remove(name), VARIABLE_IS_NOT_EXIST);
        EXPECT_EQ(point_info(name), "[4002]");
        EXPECT_EQ(type(name), "");
        EXPECT_EQ(description(name), "");
    }
}

TEST_F(Points, UnusualNamesAreNamesLikeOthers)
{
    for (const std::string& name : unusual_names) {
        ASSERT_EQ(create_point(name), VL_OK) << name;
        EXPECT_EQ(set_point(name, "value of " + name), VL_OK);
        EXPECT_EQ(describe(name, name), VL_OK);
    }
    for (const std::string& name : unusual_names)
        EXPECT_EQ(point_info(name), "text|" + name + "|value of " + name);
    Names sorted = unusual_names;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(all_points(), sorted);
}

TEST_F(Points, HaveTheSizeOfTheirTemplate)
{
    const std::map<std::string, std::size_t> sizes{
        {"bool", 1},   {"int8", 1},    {"uint8", 1},  {"int16", 2},
        {"uint16", 2}, {"int32", 4},   {"uint32", 4}, {"int64", 8},
        {"uint64", 8}, {"float32", 4}, {"float64", 8}};
    for (const auto& [name, size] : sizes) {
        ASSERT_EQ(create_point(name, name), VL_OK);
        const std::string value(size, '\xA5');
        EXPECT_EQ(set_point(name, value), VL_OK);
        for (const std::size_t wrong : {std::size_t{0}, size - 1, size + 1})
            EXPECT_EQ(set_point(name, std::string(wrong, 'x')), SIZE_IS_NOT_MATCH)
                << name << " " << wrong;
        EXPECT_EQ(get_point(name), value) << "it is still there";
    }
    for (const char* name : {"text", "bytes"}) {
        ASSERT_EQ(create_point(name, name), VL_OK);
        for (const std::size_t size :
             {std::size_t{0}, std::size_t{1}, std::size_t{3} << 20}) {
            EXPECT_EQ(set_point(name, std::string(size, '\0')), VL_OK);
            EXPECT_TRUE(get_point(name) == std::string(size, '\0')) << name << " " << size;
        }
    }
}

TEST_F(Points, AValueIsCutToItsBuffer)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    ASSERT_EQ(set_point("p", "12345"), VL_OK);
    const auto read = [](int size) {
        char buffer[9] = "........";
        EXPECT_EQ(vl_get_data_template_point("p", buffer, size, nullptr, nullptr), VL_OK);
        return std::string(buffer);
    };
    EXPECT_EQ(read(0), "........");
    EXPECT_EQ(read(3), "123.....");
    EXPECT_EQ(read(8), "12345...");
    EXPECT_EQ(read(-1), "12345...") << "all of it";
    EXPECT_EQ(vl_get_data_template_point("p", nullptr, 8, nullptr, nullptr), 102);
}

TEST_F(Points, BadDataAreRefused)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    ASSERT_EQ(set_point("p", "before"), VL_OK);
    EXPECT_EQ(vl_set_data_template_point("p", nullptr, 1, nullptr, nullptr), 103);
    EXPECT_EQ(vl_set_data_template_point("p", "x", -1, nullptr, nullptr), 103);
    EXPECT_EQ(get_point("p"), "before");
    EXPECT_EQ(vl_set_data_template_point("p", nullptr, 0, nullptr, nullptr), VL_OK);
    EXPECT_EQ(get_point("p"), "");
}

TEST_F(Points, DescriptionsHaveALimit)
{
    const std::string longest(4096, 'd');
    ASSERT_EQ(create_point("p"), VL_OK);
    EXPECT_EQ(describe("p", longest), VL_OK);
    EXPECT_EQ(describe("p", longest + "d"), PARAMETER_ERROR);
    EXPECT_EQ(describe("p", megabyte), PARAMETER_ERROR);
    EXPECT_EQ(describe("none", longest + "d"), PARAMETER_ERROR);
    EXPECT_EQ(description("p"), longest);
    EXPECT_EQ(vl_set_data_template_point_description("p", nullptr, nullptr, nullptr),
              VL_OK);
    EXPECT_EQ(description("p"), "");
}

TEST_F(Points, InformationReplacesTheBlockOfTheCallBefore)
{
    ASSERT_EQ(create_point("empty"), VL_OK);
    ASSERT_EQ(create_point("p"), VL_OK);
    ASSERT_EQ(set_point("p", "value"), VL_OK);
    char* type = nullptr;
    char* text = nullptr;
    void* data = nullptr;
    unsigned int length = 99;
    ASSERT_EQ(get_dtp_info2("empty", &type, &text, &data, &length, nullptr, nullptr),
              VL_OK);
    EXPECT_NE(data, nullptr) << "no data have a block as well";
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(taken(type) + taken(text), "text");
    ASSERT_EQ(get_dtp_info("p", &type, &text, &data, nullptr, nullptr), VL_OK);
    EXPECT_EQ(std::memcmp(data, "value", 5), 0);
    EXPECT_EQ(taken(type) + taken(text), "text");

    void* const before = data;
    EXPECT_EQ(get_dtp_info2("none", &type, &text, &data, &length, nullptr, nullptr),
              VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(type, nullptr);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(get_dtp_info("none", &type, &text, &data, nullptr, nullptr),
              VARIABLE_IS_NOT_EXIST);
    EXPECT_EQ(data, before);
    EXPECT_EQ(length, 0u);
    vl_free_memory(&data);
}

TEST_F(Points, InformationNeedsAllItsPlaces)
{
    ASSERT_EQ(create_point("p"), VL_OK);
    char* type = nullptr;
    char* text = nullptr;
    void* data = nullptr;
    unsigned int length = 0;
    EXPECT_EQ(get_dtp_info("p", nullptr, &text, &data, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info("p", &type, nullptr, &data, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info("p", &type, &text, nullptr, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info2("p", nullptr, &text, &data, &length, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info2("p", &type, nullptr, &data, &length, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info2("p", &type, &text, nullptr, &length, nullptr, nullptr), 150);
    EXPECT_EQ(get_dtp_info2("p", &type, &text, &data, nullptr, nullptr, nullptr), 150);
    EXPECT_EQ(data, nullptr);
}

// With templates of a configuration.
class PointsOfOwnTemplates : public ::testing::Test {
protected:
    PointsOfOwnTemplates()
    {
        std::ofstream(file()) << R"(<velmo><velmod><templates>
            <template name="switch" type="bool" initial="true" description="on or off"/>
            <template name="label" type="text" max-size="3"/>
            <template name="pair" type="bytes" size="2" initial="4142"/>
            </templates></velmod></velmo>)";
    }

    std::string file() const { return (folder.path() / "velmod.xml").string(); }

    const TemporaryFolder folder;
};

TEST_F(PointsOfOwnTemplates, BeginAsTheTemplateSays)
{
    Velmod velmod({"--config", file()});
    SettingsFile settings("local=\"S\"", {{"S", velmod.naming_url()}});
    const Names types = listed(
        [](NameList* list) { return vl_get_query_data_type(list, nullptr, nullptr); });
    EXPECT_EQ(types, (Names{"bool", "bytes", "float32", "float64", "int16", "int32",
                            "int64", "int8", "label", "pair", "switch", "text", "uint16",
                            "uint32", "uint64", "uint8"}));
    ASSERT_EQ(create_set("s", "switch", "1\n2"), VL_OK);
    EXPECT_EQ(point_info("s/1"), "switch|on or off|\x01");
    EXPECT_EQ(description("s/2"), "on or off");
    EXPECT_EQ(describe("s/2", "its own"), VL_OK);
    EXPECT_EQ(description("s/2"), "its own");
    EXPECT_EQ(describe("s/2", ""), VL_OK);
    EXPECT_EQ(description("s/2"), "on or off");
    ASSERT_EQ(create_point("l", "label"), VL_OK);
    EXPECT_EQ(get_point("l"), "[2001]");
    EXPECT_EQ(set_point("l", "abc"), VL_OK);
    EXPECT_EQ(set_point("l", "abcd"), SIZE_IS_NOT_MATCH);
    EXPECT_EQ(get_point("l"), "abc");
    ASSERT_EQ(create_point("p", "pair"), VL_OK);
    EXPECT_EQ(get_point("p"), "AB");
    EXPECT_EQ(set_point("p", "a"), SIZE_IS_NOT_MATCH);
}

} // namespace
