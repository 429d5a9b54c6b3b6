#include "cli/text.h"

#include <gtest/gtest.h>

using namespace velmo::cli;

namespace {

TEST(Text, TellsUtf8FromOtherBytes)
{
    for (const char* good : {"", "plain", "ä", "€", "😀", "\xed\x9f\xbf"})
        EXPECT_TRUE(is_utf8(good)) << good;
    for (const char* bad :
         {"\xe4", "\xc0\x80", "\xe2\x82", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xff",
          "\x80", "\xe0\x80\x80", "\xf0\x8f\xbf\xbf"})
        EXPECT_FALSE(is_utf8(bad)) << to_hex(bad);
}

TEST(Text, IsReadableWithoutControlCharacters)
{
    EXPECT_TRUE(is_readable("two\nlines\tand ä"));
    EXPECT_FALSE(is_readable("\033[2J"));
    EXPECT_FALSE(is_readable("\xc2\x9b")) << "a control character beyond ASCII";
    EXPECT_FALSE(is_readable(std::string(1, '\0')));
}

TEST(Text, BecomesHarmless)
{
    EXPECT_EQ(harmless("ä\033\xff\xc2\x9b"), "ä\\x1b\\xff\\xc2\\x9b");
}

TEST(Text, WideOneBecomesUtf8)
{
    EXPECT_EQ(to_utf8(L"a\u00e4\u20ac\U0001f600"), "aä€😀");
}

TEST(Hex, GoesBothWays)
{
    EXPECT_EQ(to_hex(std::string("\x00\xff\x10", 3)), "00ff10");
    EXPECT_EQ(from_hex("00fF10"), std::string("\x00\xff\x10", 3));
    EXPECT_EQ(from_hex(" 00 ff:10\n"), std::string("\x00\xff\x10", 3));
    EXPECT_EQ(from_hex(""), "");
    for (const char* bad : {"0", "0 0", "0g", "00 f", "0x00"})
        EXPECT_EQ(from_hex(bad), std::nullopt) << bad;
}

TEST(Counted, KnowsThePlural)
{
    EXPECT_EQ(counted(1, "point"), "1 point");
    EXPECT_EQ(counted(0, "point"), "0 points");
}

} // namespace
