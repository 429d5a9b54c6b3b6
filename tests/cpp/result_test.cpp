// A value and a code.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "velmo/velmo.hpp"

namespace {

using velmo::Result;

TEST(CppResult, IsTrueForSuccess)
{
    EXPECT_TRUE(Result<>(VL_OK));
    EXPECT_FALSE(Result<>(VL_FAIL));
    EXPECT_EQ(Result<>(112).code(), 112);
    EXPECT_TRUE(Result<int>(VL_OK, 7));
    EXPECT_FALSE(Result<int>(VL_FAIL, 7));
}

TEST(CppResult, OnlyValueThrowsAndOnlyForAFailure)
{
    EXPECT_NO_THROW(Result<>(VL_OK).value());
    EXPECT_EQ(Result<int>(VL_OK, 7).value(), 7);
    try {
        Result<std::string>(VARIABLE_IS_NOT_EXIST).value();
        FAIL() << "it has not thrown";
    } catch (const std::system_error& error) {
        EXPECT_TRUE(error.code() == VARIABLE_IS_NOT_EXIST);
        EXPECT_EQ(error.what(), error.code().message());
    }
    EXPECT_THROW(Result<>(99).value(), std::system_error);
    const Result<int> failed(99);
    EXPECT_THROW(failed.value(), std::system_error);
    EXPECT_EQ(*failed, 0) << "empty, but there";
}

TEST(CppResult, AFailureCanHaveAnotherValue)
{
    EXPECT_EQ(Result<int>(VL_OK, 7).value_or(8), 7);
    EXPECT_EQ(Result<int>(NON_EXIST_DATA).value_or(8), 8);
    const Result<std::string> failed(NON_EXIST_DATA);
    EXPECT_EQ(failed.value_or("none"), "none");
}

TEST(CppResult, SomeCodesMayBeAsGoodAsSuccess)
{
    EXPECT_TRUE(Result<>(VL_OK).or_good(OBJECT_ALREADY_EXSIT));
    EXPECT_TRUE(Result<>(2014).or_good(ALREADY_CONNECTED, OBJECT_ALREADY_EXSIT));
    EXPECT_EQ(Result<>(2007).or_good(OBJECT_ALREADY_EXSIT).code(), 2007);
    EXPECT_EQ(Result<int>(VL_OK, 7).or_good(NON_EXIST_DATA).value(), 7);
    EXPECT_EQ(Result<int>(NON_EXIST_DATA).or_good(NON_EXIST_DATA).value(), 0);
    EXPECT_EQ(Result<int>(TIME_OUT).or_good(NON_EXIST_DATA).code(), TIME_OUT);
}

TEST(CppResult, ValuesThatCannotBeCopiedAreMoved)
{
    Result<std::unique_ptr<int>> result(VL_OK, std::make_unique<int>(7));
    EXPECT_EQ(**result, 7);
    const std::unique_ptr<int> taken = std::move(result).value();
    EXPECT_EQ(*taken, 7);
    EXPECT_EQ(*(*Result<std::unique_ptr<int>>(VL_OK, std::make_unique<int>(8))), 8);
}

} // namespace
