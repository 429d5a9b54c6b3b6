#include "quilp/line_text.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <string>

#include "quilp/utf8.h"

namespace {

using velmo::quilp::cut_mark;
using velmo::quilp::line_text;
using velmo::quilp::max_text;
using velmo::quilp::printable;

[[gnu::format(printf, 1, 2)]] std::string text(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string result = line_text(format, arguments);
    va_end(arguments);
    return result;
}

bool is_utf8(std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto character = velmo::quilp::first_character(bytes);
        if (!character.well_formed)
            return false;
        bytes.remove_prefix(character.length);
    }
    return true;
}

bool is_cut(const std::string& line)
{
    return line.size() > cut_mark.size() &&
           line.compare(line.size() - cut_mark.size(), cut_mark.size(), cut_mark) == 0;
}

TEST(LineText, PrintsItsArguments)
{
    EXPECT_EQ(text("send_packet %s %d", "failed", 112), "send_packet failed 112");
}

TEST(LineText, PercentSignsInArgumentsAreData)
{
    EXPECT_EQ(text("%s", "%s%n%x{}%"), "%s%n%x{}%");
}

TEST(LineText, PrintsTheErrorNumberOfTheCaller)
{
    const char* volatile error_number = "%m"; // not ISO C: out of the compiler's sight
    errno = ENOENT;
    EXPECT_EQ(text(error_number), "No such file or directory");
}

TEST(LineText, EscapesLineBreaksAndTabsByName)
{
    EXPECT_EQ(text("a\r\nb\tc"), "a\\r\\nb\\tc");
}

TEST(LineText, EscapesOtherControlCharactersByNumber)
{
    EXPECT_EQ(text("\x1b[31m \x7f \a"), "\\x1b[31m \\x7f \\x07");
    EXPECT_EQ(text("a%cb", '\0'), "a\\x00b");
}

TEST(LineText, EscapesControlCharactersOfTheUpperHalf)
{
    // U+009B begins a terminal's command as ESC [ does.
    EXPECT_EQ(text("\xC2\x9B%s", "31m"), "\\xc2\\x9b31m");
    EXPECT_EQ(text("\xC2\xA0"), "\xC2\xA0");
}

TEST(LineText, LeavesUtf8AsItIs)
{
    const std::string all = "ä € 漢字 \xF0\x9F\x98\x80 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(text("%s", all.c_str()), all);
}

TEST(LineText, EscapesBytesThatAreNotUtf8)
{
    EXPECT_EQ(printable("M\xFCller"), "M\\xfcller");                  // ISO 8859-1
    EXPECT_EQ(printable("\xC0\xAF"), "\\xc0\\xaf");                   // overlong
    EXPECT_EQ(printable("\xE0\x80\xAF"), "\\xe0\\x80\\xaf");          // overlong
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xed\\xa0\\x80");          // surrogate
    EXPECT_EQ(printable("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80"); // above U+10FFFF
    EXPECT_EQ(printable("\xE2\x82"), "\\xe2\\x82");                   // incomplete
    EXPECT_EQ(printable("\xE2\x82z"), "\\xe2\\x82z");
}

TEST(LineText, ALineOfTheLargestSizeStaysWhole)
{
    const std::string longest(max_text, 'x');
    EXPECT_EQ(text("%s", longest.c_str()), longest);
}

TEST(LineText, ALongerLineIsCutAndMarked)
{
    const std::string line = text("%s", std::string(max_text + 1, 'x').c_str());
    EXPECT_EQ(line, std::string(max_text - cut_mark.size(), 'x').append(cut_mark));
    EXPECT_EQ(text("%s", std::string(1 << 20, 'x').c_str()), line);
}

TEST(LineText, TheCutIsNotInsideACharacter)
{
    for (const char* character : {"ä", "€", "\xF0\x9F\x98\x80"}) {
        for (std::size_t shift = 0; shift < 4; ++shift) {
            std::string longer(shift, 'x');
            while (longer.size() <= 2 * max_text)
                longer += character;
            const std::string line = text("%s", longer.c_str());
            EXPECT_TRUE(is_cut(line));
            EXPECT_LE(line.size(), max_text);
            EXPECT_TRUE(is_utf8(line));
        }
    }
}

TEST(LineText, TheCutIsNotInsideAnEscapeSequence)
{
    const std::string line = text("%s", std::string(max_text, '\x1b').c_str());
    ASSERT_TRUE(is_cut(line));
    EXPECT_LE(line.size(), max_text);
    EXPECT_EQ((line.size() - cut_mark.size()) % std::string("\\x1b").size(), 0u);
}

TEST(LineText, ANullFormatIsReported)
{
    const char* volatile none = nullptr; // out of the compiler's sight
    EXPECT_NE(text(none).find("null"), std::string::npos);
}

TEST(LineText, ArgumentsThatCannotBePrintedAreReported)
{
    const wchar_t surrogate[] = {0xD800, 0};
    const std::string line = text("name\n%ls", surrogate);
    EXPECT_EQ(line.find("name\\n%ls (the arguments cannot be printed: "), 0u) << line;
}

} // namespace
