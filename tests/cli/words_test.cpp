#include "cli/words.h"

#include <gtest/gtest.h>

using velmo::cli::quoted;
using velmo::cli::split;

namespace {

using Words = std::vector<std::string>;

TEST(Words, AreSplitAtBlanks)
{
    EXPECT_EQ(split("").words, Words());
    EXPECT_EQ(split("  point\tget  level ").words, (Words{"point", "get", "level"}));
}

TEST(Words, HoldWhatIsQuoted)
{
    EXPECT_EQ(split(R"(a 'b c' "d \"e\" \f" g\ h '' i'j'"k")").words,
              (Words{"a", "b c", "d \"e\" \\f", "g h", "", "ijk"}));
    EXPECT_EQ(split("$SYS/x '$HOME'").words, (Words{"$SYS/x", "$HOME"}));
}

TEST(Words, EndWithAComment)
{
    EXPECT_EQ(split("a # b").words, Words{"a"});
    EXPECT_EQ(split("a#b '#c' \\#d").words, (Words{"a#b", "#c", "#d"}));
    EXPECT_EQ(split("# all").words, Words());
}

TEST(Words, TellWhatIsOpen)
{
    EXPECT_FALSE(split("a 'b'").is_open);
    for (const char* text : {"a 'b", "a \"b", "a b\\", "\"\\\""})
        EXPECT_TRUE(split(text).is_open) << text;
}

TEST(Words, TellWhereTheLastOneIs)
{
    EXPECT_TRUE(split("").is_between);
    EXPECT_TRUE(split("a ").is_between);
    EXPECT_EQ(split("a ").last_begin, 2u);
    EXPECT_FALSE(split("a 'b c").is_between);
    EXPECT_EQ(split("a 'b c").last_begin, 2u);
    EXPECT_EQ(split("a 'b c").words.back(), "b c");
}

TEST(Words, AreQuotedSoThatTheyComeBack)
{
    for (const std::string word : {"", "plain", "two words", "it's", "\"", "\\", "#", "a#",
                                   "\ttab", "$SYS", "'", "line\nend"}) {
        EXPECT_EQ(split(quoted(word)).words, Words{word});
        EXPECT_EQ(split("x " + quoted(word) + " y").words, (Words{"x", word, "y"}));
    }
    EXPECT_EQ(quoted("plain"), "plain");
}

} // namespace
