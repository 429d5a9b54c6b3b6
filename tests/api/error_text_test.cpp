// The texts of the result codes.

#include <climits>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/lang_stand_in.h"
#include "vl_api.h"

namespace velmo::tests {

namespace {

const std::map<int, std::string> names = {
    {0, "VL_OK"},
    {2, "VL_FAIL"},
    {3, "NULL_OBJECT"},
    {4, "PARAMETER_ERROR"},
    {5, "MEMORY_ALLOCATION_FAI"},
    {6, "ALREADY_EXIST_OBJECT"},
    {2000, "TIME_OUT"},
    {2001, "NON_EXIST_DATA"},
    {2002, "EMPTY_QUEUE"},
    {2003, "WOULD_BLOCK"},
    {2004, "ALREADY_CONNECTED"},
    {2005, "NOT_CONNECTED"},
    {2006, "RECEIVER_IS_NOT_READY"},
    {2007, "INVAILD_PORT_HANDLE"},
    {2008, "INVAILD_SINK_MODE"},
    {2009, "RECEIVER_IS_NOT_EXIST"},
    {2010, "ALL_SELECT_DISCONNECTED"},
    {2011, "VL_MUTEX_RETURN"},
    {2012, "PARAMETER_NOT_MATCH"},
    {2014, "OBJECT_ALREADY_EXSIT"},
    {2015, "MIDDLEWARE_NOT_CONNECTED"},
    {2016, "REPLAY_TIMEOUT"},
    {2017, "SENDMSG_TIMEOUT"},
    {2022, "OBJECT_PATCH_FAI"},
    {3000, "NULL_SERVER_NAME"},
    {3001, "NAMING_SERVER_NOT_ONLINE"},
    {3002, "HOST_IS_NOT_EXIST"},
    {3003, "PROGRAM_IS_NOT_EXIST"},
    {3004, "MODULE_NAME_IS_NOT_EXIST"},
    {3005, "FAIL_TO_CREATE_DATA_TYPE"},
    {3006, "TYPE_LIST_IS_NUL"},
    {3007, "INVAILD_NULL_PARAMETER"},
    {3008, "CREATE_DATAPOINT_FAI"},
    {3009, "CONSUMER_IS_NUL"},
    {3010, "RELEAM_IS_NUL"},
    {3011, "EVENT_DECLARE_NUL"},
    {3012, "NO_MATCH_EVENT_CODE"},
    {3013, "FAIL_TO_REGISTER_SERVER"},
    {3014, "MIDPLUSDATA_IS_BAD"},
    {4000, "ABSTRACT_DATA_TYPE_NULL"},
    {4001, "SIZE_IS_NOT_MATCH"},
    {4002, "VARIABLE_IS_NOT_EXIST"},
    {4003, "CONTENDER_IS_NUL"},
};

const std::wstring unknown = L"UNKNOWN_ERROR";

class ErrorTextTest : public ::testing::Test {
protected:
    ErrorTextTest() { take_text_away(""); }
    ~ErrorTextTest() override { take_text_away(""); }
};

TEST_F(ErrorTextTest, of_0_is_the_text_of_VL_OK)
{
    EXPECT_STREQ(get_error_string(0), L"text of VL_OK");
}

TEST_F(ErrorTextTest, of_every_code_from_99_to_169_is_the_text_of_SERVER_NOT_ONLINE)
{
    for (int code = 99; code <= 169; ++code)
        EXPECT_STREQ(get_error_string(code), L"text of SERVER_NOT_ONLINE") << code;
}

TEST_F(ErrorTextTest, of_98_and_170_is_the_fallback)
{
    EXPECT_EQ(get_error_string(98), unknown);
    EXPECT_EQ(get_error_string(170), unknown);
}

TEST_F(ErrorTextTest, of_codes_without_a_name_is_the_fallback)
{
    for (const int code : {1, 2013, 2018, 2019, 2020, 2021, -1, 7, 4004, INT_MAX, INT_MIN})
        EXPECT_EQ(get_error_string(code), unknown) << code;
}

TEST_F(ErrorTextTest, of_every_other_code_is_that_of_its_name)
{
    for (int code = -10; code <= 5000; ++code) {
        if (code >= 99 && code <= 169)
            continue;
        const auto named = names.find(code);
        const std::wstring expected =
            named == names.end() ? unknown : stand_in_text(named->second);
        EXPECT_EQ(get_error_string(code), expected) << code;
    }
}

TEST_F(ErrorTextTest, that_the_table_lacks_is_whatever_the_table_gives_instead)
{
    take_text_away("VL_FAIL");
    EXPECT_EQ(get_error_string(2), stand_in_text_for_missing("VL_FAIL"));
    take_text_away("SERVER_NOT_ONLINE");
    EXPECT_EQ(get_error_string(112), stand_in_text_for_missing("SERVER_NOT_ONLINE"));
}

TEST_F(ErrorTextTest, stays_valid)
{
    const wchar_t* const known = get_error_string(0);
    const wchar_t* const fallback = get_error_string(1);
    EXPECT_EQ(known, get_error_string(0));
    EXPECT_EQ(fallback, get_error_string(2013));
}

TEST_F(ErrorTextTest, the_fallback_is_not_translated)
{
    take_text_away("UNKNOWN_ERROR");
    EXPECT_EQ(get_error_string(1), unknown);
}

} // namespace

} // namespace velmo::tests
