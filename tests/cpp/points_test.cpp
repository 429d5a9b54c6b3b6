// Points.
#include <array>
#include <cstdint>

#include "tests/e2e/one_server.h"
#include "velmo/velmo.hpp"

using namespace velmo::tests;

namespace {

class CppPoints : public OneServer {
protected:
    static Names strings(const velmo::Result<velmo::Names>& names)
    {
        return names ? Names(names->begin(), names->end())
                     : Names{in_brackets(names.code())};
    }

    velmo::Points points;
};

TEST_F(CppPoints, NumbersGoInAndOut)
{
    ASSERT_TRUE(points.create("level", "float64"));
    EXPECT_TRUE(points.get<double>("level").error() == velmo::Condition::no_data);
    EXPECT_EQ(points.get<double>("level").value_or(-1), -1);
    ASSERT_TRUE(points.set("level", 41.5));
    EXPECT_EQ(points.get<double>("level").value(), 41.5);
    EXPECT_TRUE(points.set("level", 41).error() == velmo::Condition::wrong_size)
        << "an int is not as long";
    EXPECT_TRUE(points.get<double>("nothing").error() == VARIABLE_IS_NOT_EXIST);
}

TEST_F(CppPoints, EveryByteIsABool)
{
    ASSERT_TRUE(points.create("flag", "bool"));
    ASSERT_TRUE(points.set("flag", true));
    EXPECT_EQ(points.get<bool>("flag").value(), true);
    ASSERT_TRUE(points.set("flag", std::uint8_t{7}));
    EXPECT_EQ(points.get<bool>("flag").value(), true);
    ASSERT_TRUE(points.set("flag", false));
    EXPECT_EQ(points.get<bool>("flag").value(), false);
}

TEST_F(CppPoints, ValuesOfAnyLengthAreBlocks)
{
    ASSERT_TRUE(points.create("note", "text"));
    ASSERT_TRUE(points.set("note", "short"));
    EXPECT_EQ(points.info("note")->value.text(), "short");
    const std::string longer(100000, 'x');
    ASSERT_TRUE(points.set("note", longer));
    EXPECT_EQ(points.info("note")->value.text(), longer);
    ASSERT_TRUE(points.set("note", ""));
    EXPECT_EQ(points.info("note")->value.text(), "");
    EXPECT_EQ(points.info("nothing").code(), VARIABLE_IS_NOT_EXIST);
    EXPECT_FALSE(points.info("nothing")->type);
}

TEST_F(CppPoints, ABufferIsFilledAsFarAsItGoes)
{
    ASSERT_TRUE(points.create("note", "text"));
    ASSERT_TRUE(points.set("note", "abcdef"));
    std::array<char, 4> buffer{};
    ASSERT_TRUE(points.read("note", buffer));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "abcd");
    ASSERT_TRUE(points.set("note", "Z"));
    ASSERT_TRUE(points.read("note", velmo::Buffer(buffer.data(), 2)));
    EXPECT_EQ(std::string(buffer.data(), buffer.size()), "Zbcd");
    EXPECT_EQ(points.get<std::uint32_t>("note").value(), std::uint32_t{'Z'})
        << "filled up with zeros";
}

TEST_F(CppPoints, AreDescribed)
{
    ASSERT_TRUE(points.create("level", "float64"));
    ASSERT_TRUE(points.describe("level", "of the boiler"));
    ASSERT_TRUE(points.set("level", 1.0));
    EXPECT_EQ(points.description("level").view(), "of the boiler");
    EXPECT_STREQ(points.type("level").c_str(), "float64");
    const auto info = points.info("level");
    EXPECT_EQ(info->type.view(), "float64");
    EXPECT_EQ(info->description.view(), "of the boiler");
    EXPECT_EQ(info->value.as<double>(), 1.0);
    const auto texts = points.texts("level");
    EXPECT_EQ(texts->type.view(), "float64");
    EXPECT_EQ(texts->description.view(), "of the boiler");
    EXPECT_TRUE(texts->value.empty());
    EXPECT_EQ(points.texts("nothing").code(), VARIABLE_IS_NOT_EXIST);
    EXPECT_TRUE(points.description("nothing"));
    EXPECT_EQ(points.type("nothing").view(), "");
}

TEST_F(CppPoints, TextsCanBeNoneMovedAndGivenAway)
{
    velmo::Text none = velmo::Points({"unknown"}).type("level");
    EXPECT_FALSE(none);
    EXPECT_STREQ(none.c_str(), "");
    ASSERT_TRUE(points.create("level", "float64"));
    velmo::Text type = points.type("level");
    none = std::move(type);
    EXPECT_EQ(std::string_view(none), "float64");
    vl_string_free(none.release());
    EXPECT_FALSE(none);
}

TEST_F(CppPoints, NamesAreLists)
{
    EXPECT_EQ(strings(points.all()), Names{});
    ASSERT_TRUE(points.create_set("motor", "float64", "speed\ntorque"));
    ASSERT_TRUE(points.create("note", "text"));
    ASSERT_TRUE(points.set("motor/speed", 5.0));
    EXPECT_EQ(strings(points.all()), (Names{"motor/speed", "motor/torque", "note"}));
    EXPECT_EQ(strings(points.of_type("text")), Names{"note"});
    EXPECT_EQ(strings(points.of_type("nothing")), Names{"[4000]"});
    EXPECT_EQ(strings(points.without_data()), (Names{"motor/torque", "note"}));
    EXPECT_GE(points.types()->size(), 13U);

    velmo::Names kept = points.all().value();
    EXPECT_STREQ(kept[1], "motor/torque");
    const velmo::Names moved = std::move(kept);
    EXPECT_EQ(moved.size(), 3U);
    EXPECT_TRUE(kept.empty()); // NOLINT(bugprone-use-after-move)
    std::string joined;
    for (const std::string_view name : *points.all())
        joined += std::string(name) + ";";
    EXPECT_EQ(joined, "motor/speed;motor/torque;note;");

    ASSERT_TRUE(points.remove("note"));
    EXPECT_TRUE(points.remove("note").error() == velmo::Condition::not_found);
    EXPECT_EQ(points.all()->size(), 2U);
}

TEST_F(CppPoints, ALengthThatAnIntCannotHoldIsRefused)
{
    ASSERT_TRUE(points.create("note", "text"));
    const char byte = 0;
    EXPECT_EQ(points.set("note", velmo::Bytes(&byte, std::size_t{1} << 32)).code(), 103);
}

} // namespace
