#include "orb/client.h"

#include <gtest/gtest.h>

using velmo::orb::describe;
using velmo::orb::is_timeout;

namespace {

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

TEST(Describe, TellsIdMinorCodeAndCompletionOfASystemException)
{
    const std::string text = describe(CORBA::TRANSIENT(0x1234, CORBA::COMPLETED_NO));
    EXPECT_EQ(text.find("system exception, ID 'IDL:omg.org/CORBA/TRANSIENT:1.0'"), 0u)
        << text;
    EXPECT_TRUE(contains(text, "minor code = ")) << text;
    EXPECT_TRUE(contains(text, "1234")) << text;
    EXPECT_TRUE(contains(text, "completed = NO")) << text;
    EXPECT_TRUE(
        contains(describe(CORBA::UNKNOWN(0, CORBA::COMPLETED_MAYBE)), "completed = MAYBE"));
    EXPECT_TRUE(
        contains(describe(CORBA::UNKNOWN(0, CORBA::COMPLETED_YES)), "completed = YES"));
}

TEST(Describe, TellsTheIdOfAUserException)
{
    const std::string text = describe(CosNaming::NamingContext::AlreadyBound());
    EXPECT_EQ(
        text.find(
            "user exception, ID 'IDL:omg.org/CosNaming/NamingContext/AlreadyBound:1.0'"),
        0u)
        << text;
}

TEST(IsTimeout, KnowsTimeoutsFromRefusals)
{
    EXPECT_TRUE(is_timeout(CORBA::TIMEOUT(0, CORBA::COMPLETED_MAYBE)));
    EXPECT_FALSE(is_timeout(CORBA::TRANSIENT(0, CORBA::COMPLETED_NO)));
}

TEST(Text, OfNullIsEmpty)
{
    EXPECT_STREQ(velmo::orb::text(nullptr), "");
    EXPECT_STREQ(velmo::orb::text("x"), "x");
}

} // namespace
