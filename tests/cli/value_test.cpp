#include "cli/value.h"

#include <gtest/gtest.h>

#include "cli/failure.h"
#include "cli/text.h"

using namespace velmo::cli;

namespace {

// What a value of a kind is as bytes, in JSON and for a person, from what was typed.
struct Case {
    const char* kind;
    std::string typed;
    std::string hex;
    std::string json;
    std::string shown;
};

class Values : public ::testing::TestWithParam<Case> {
protected:
    const Case& the = GetParam();
    Kind kind = kind_of(the.kind).value();
    std::string bytes = from_hex(the.hex).value();
};

TEST_P(Values, AreEncoded)
{
    EXPECT_EQ(to_hex(encode(kind, the.typed)), the.hex);
}

TEST_P(Values, AreShown)
{
    EXPECT_EQ(format(kind, bytes), the.shown);
    EXPECT_EQ(to_json(kind, bytes).dump(), the.json);
}

TEST_P(Values, ComeBackFromJson)
{
    EXPECT_EQ(to_hex(from_json(kind, Json::parse(the.json))), the.hex);
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, Values,
    ::testing::Values(Case{"int8", "-128", "80", "-128", "-128"},
                      Case{"uint8", "+255", "ff", "255", "255"},
                      Case{"int16", "-2", "feff", "-2", "-2"},
                      Case{"uint16", "258", "0201", "258", "258"},
                      Case{"int32", "16909060\n", "04030201", "16909060", "16909060"},
                      Case{"uint32", "4294967295", "ffffffff", "4294967295", "4294967295"},
                      Case{"int64", "-9223372036854775808", "0000000000000080",
                           "-9223372036854775808", "-9223372036854775808"},
                      Case{"uint64", "18446744073709551615", "ffffffffffffffff",
                           "18446744073709551615", "18446744073709551615"},
                      Case{"float32", "1.5", "0000c03f", "1.5", "1.5"},
                      Case{"float64", "-0.1", "9a9999999999b9bf", "-0.1", "-0.1"},
                      Case{"float64", "inf", "000000000000f07f", "\"inf\"", "inf"},
                      Case{"bool", "true", "01", "true", "true"},
                      Case{"bool", "0", "00", "false", "false"},
                      Case{"text", "hä\n", "68c3a40a", "\"hä\\n\"", "hä\n"},
                      Case{"text", "", "", "\"\"", ""},
                      Case{"text", "\xff", "ff", "{\"hex\":\"ff\"}", "\xff"},
                      Case{"bytes", "abc", "616263", "{\"hex\":\"616263\"}", "abc"},
                      Case{"bytes", "\x01", "01", "{\"hex\":\"01\"}", "01"}));

TEST(Value, OfAnotherKindIsRefused)
{
    for (const auto& [kind, typed] :
         std::initializer_list<std::pair<Kind, const char*>>{{Kind::int8, "128"},
                                                             {Kind::uint8, "-1"},
                                                             {Kind::int32, ""},
                                                             {Kind::int32, "1 2"},
                                                             {Kind::int32, "1.5"},
                                                             {Kind::int32, "0x10"},
                                                             {Kind::float32, "1e99"},
                                                             {Kind::float64, "1,5"},
                                                             {Kind::boolean, "yes"}})
        EXPECT_THROW(encode(kind, typed), Failure) << typed;
}

TEST(Value, OfAnotherSizeIsRefused)
{
    EXPECT_THROW(format(Kind::int32, "12345"), Failure);
    EXPECT_THROW(to_json(Kind::float64, ""), Failure);
}

TEST(Value, InJsonOfAnotherKindIsRefused)
{
    for (const char* json : {"null", "[]", "true", "{\"hex\": \"0\"}", "{\"hex\": 1}",
                             "{\"hex\": \"00\", \"more\": 1}", "1.5", "300"})
        EXPECT_THROW(from_json(Kind::int8, Json::parse(json)), Failure) << json;
    EXPECT_THROW(from_json(Kind::text, Json(1)), Failure);
}

TEST(Value, KindsAreThoseOfTheTemplates)
{
    EXPECT_EQ(kind_of("float64"), Kind::float64);
    EXPECT_EQ(kind_of("bool"), Kind::boolean);
    EXPECT_EQ(kind_of("bytes"), Kind::bytes);
    EXPECT_EQ(kind_of("speed"), std::nullopt);
}

} // namespace
