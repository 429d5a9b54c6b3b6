// Result codes as std::error_code.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "velmo/velmo.hpp"

namespace {

std::error_code error_of(int code)
{
    return velmo::Result<>(code).error();
}

class Language {
public:
    explicit Language(const char* language) { setenv("VELMO_LANG", language, 1); }
    ~Language() { unsetenv("VELMO_LANG"); }
};

// Of ASCII alone.
std::string narrow(const wchar_t* text)
{
    return {text, text + std::wcslen(text)};
}

TEST(CppError, SuccessIsNoError)
{
    EXPECT_FALSE(error_of(VL_OK));
    EXPECT_EQ(error_of(VL_OK), std::error_code(VL_OK));
}

TEST(CppError, ACodeKeepsItsNumberAndComparesWithItsName)
{
    const std::error_code error = error_of(TIME_OUT);
    EXPECT_TRUE(error);
    EXPECT_EQ(error.value(), 2000);
    EXPECT_TRUE(error == TIME_OUT);
    EXPECT_FALSE(error == EMPTY_QUEUE);
    EXPECT_STREQ(error.category().name(), "velmo");
    EXPECT_NE(error, std::error_code(2000, std::generic_category()));
}

TEST(CppError, EveryMessageIsTheTextOfTheCode)
{
    const Language english("en");
#define CODE(name, code)                                                                   \
    EXPECT_EQ(error_of(name).message(), narrow(get_error_string(code)));
    VL_RESULT_CODES(CODE)
#undef CODE
    EXPECT_EQ(error_of(99).message(),
              "The server does not answer. Is it running, and can it be reached?");
    EXPECT_EQ(error_of(12345).message(), "UNKNOWN_ERROR");
}

TEST(CppError, WideCharactersBecomeUtf8)
{
    EXPECT_EQ(velmo::detail::utf8(L""), "");
    EXPECT_EQ(velmo::detail::utf8(L"a\x7F\x80\x7FF\x800\xFFFF\U00010000\U0010FFFF"),
              "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
              "\xF4\x8F\xBF\xBF");
}

TEST(CppError, EveryCodeHasOneConditionAtMost)
{
    using velmo::Condition;
    const Condition all[] = {
        Condition::timed_out,   Condition::would_block,    Condition::no_data,
        Condition::not_found,   Condition::already_exists, Condition::invalid_argument,
        Condition::wrong_size,  Condition::no_room,        Condition::not_reached,
        Condition::call_failed, Condition::other};
    for (int code = 1; code < 5000; ++code) {
        int fitting = 0;
        for (const Condition condition : all)
            fitting += error_of(code) == condition;
        EXPECT_EQ(fitting, 1) << code;
    }
    for (const Condition condition : all) {
        EXPECT_FALSE(error_of(VL_OK) == condition);
        EXPECT_FALSE(std::error_code(2000, std::generic_category()) == condition);
        EXPECT_FALSE(std::error_condition(condition).message().empty());
    }
}

TEST(CppError, ConditionsAreWhatIsInCommon)
{
    using velmo::Condition;
    for (const int code : {2000, 2016, 2017})
        EXPECT_TRUE(error_of(code) == Condition::timed_out) << code;
    for (const int code : {2007, 2009, 3011, 3012, 4000, 4002, 4003})
        EXPECT_TRUE(error_of(code) == Condition::not_found) << code;
    for (const int code : {99, 3000, 3001})
        EXPECT_TRUE(error_of(code) == Condition::not_reached) << code;
    for (const int code : {100, 112, 169})
        EXPECT_TRUE(error_of(code) == Condition::call_failed) << code;
    for (const int code : {98, 170, 1})
        EXPECT_TRUE(error_of(code) == Condition::other) << code;
    EXPECT_TRUE(error_of(2014) == Condition::already_exists);
    EXPECT_TRUE(error_of(2001) == Condition::no_data);
    EXPECT_TRUE(error_of(5) == Condition::no_room);
}

TEST(CppError, SomeConditionsAreThoseOfTheStandardLibrary)
{
    EXPECT_TRUE(error_of(SENDMSG_TIMEOUT) == std::errc::timed_out);
    EXPECT_TRUE(error_of(EMPTY_QUEUE) == std::errc::operation_would_block);
    EXPECT_TRUE(error_of(PARAMETER_ERROR) == std::errc::invalid_argument);
    EXPECT_TRUE(error_of(SIZE_IS_NOT_MATCH) == std::errc::message_size);
    EXPECT_FALSE(error_of(VARIABLE_IS_NOT_EXIST) == std::errc::timed_out);
    EXPECT_EQ(error_of(VARIABLE_IS_NOT_EXIST).default_error_condition().value(), 4002);
}

} // namespace
