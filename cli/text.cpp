#include "cli/text.h"

#include <algorithm>

namespace velmo::cli {

namespace {

constexpr const char* digits = "0123456789abcdef";

unsigned int byte(char c)
{
    return static_cast<unsigned char>(c);
}

bool continues(std::string_view text, std::size_t at)
{
    return at < text.size() && (byte(text[at]) & 0xc0u) == 0x80u;
}

// The bytes of the character at the beginning; 0 when they are not UTF-8.
std::size_t character_length(std::string_view text)
{
    const unsigned int first = byte(text[0]);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || !continues(text, 1))
        return 0;
    const unsigned int second = byte(text[1]);
    // Overlong, surrogates, beyond the last character.
    if ((first == 0xe0 && second < 0xa0) || (first == 0xed && second >= 0xa0) ||
        (first == 0xf0 && second < 0x90) || (first == 0xf4 && second >= 0x90))
        return 0;
    for (std::size_t i = 2; i < length; ++i)
        if (!continues(text, i))
            return 0;
    return length;
}

// Also the C1 controls, U+0080 to U+009F, which some terminals obey.
bool is_control(std::string_view character)
{
    const unsigned int first = byte(character[0]);
    return first < 0x20 || first == 0x7f ||
           (first == 0xc2 && character.size() == 2 && byte(character[1]) < 0xa0);
}

// Calls visit(character) for each, where bytes that are not UTF-8 count as one each,
// with false for its second argument.
template <class Visit>
void for_characters(std::string_view text, Visit visit)
{
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        const std::size_t taken = std::max<std::size_t>(length, 1);
        visit(text.substr(0, taken), length > 0);
        text.remove_prefix(taken);
    }
}

int digit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

void append_utf8(std::string& text, unsigned long c)
{
    const auto tail = [&](int shift) {
        text += static_cast<char>(0x80 | ((c >> shift) & 0x3f));
    };
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xc0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        text += static_cast<char>(0xe0 | (c >> 12));
        tail(6), tail(0);
    } else {
        text += static_cast<char>(0xf0 | (c >> 18));
        tail(12), tail(6), tail(0);
    }
}

} // namespace

std::string to_utf8(const wchar_t* text)
{
    std::string result;
    for (; *text; ++text)
        append_utf8(result, static_cast<unsigned long>(*text));
    return result;
}

bool is_utf8(std::string_view text)
{
    bool good = true;
    for_characters(text, [&](std::string_view, bool valid) { good = good && valid; });
    return good;
}

bool is_readable(std::string_view text)
{
    bool good = true;
    for_characters(text, [&](std::string_view character, bool valid) {
        const bool blank = character == "\n" || character == "\t";
        good = good && valid && (blank || !is_control(character));
    });
    return good;
}

std::string harmless(std::string_view text)
{
    std::string result;
    for_characters(text, [&](std::string_view character, bool valid) {
        if (valid && !is_control(character))
            result += character;
        else
            for (const char c : character)
                result += std::string("\\x") + to_hex(std::string_view(&c, 1));
    });
    return result;
}

std::size_t width(std::string_view text)
{
    std::size_t columns = 0;
    for_characters(text, [&](std::string_view, bool) { ++columns; });
    return columns;
}

bool has_nul(std::string_view text)
{
    return text.find('\0') != std::string_view::npos;
}

std::string to_hex(std::string_view bytes)
{
    std::string result;
    result.reserve(2 * bytes.size());
    for (const char c : bytes) {
        result += digits[byte(c) >> 4];
        result += digits[byte(c) & 0xf];
    }
    return result;
}

std::optional<std::string> from_hex(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (std::string_view(" \t\r\n:").find(text[i]) != std::string_view::npos)
            continue;
        const int high = digit(text[i]);
        const int low = i + 1 < text.size() ? digit(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes += static_cast<char>(16 * high + low);
        ++i;
    }
    return bytes;
}

std::string in_quotes(std::string_view text)
{
    return "\"" + harmless(text) + "\"";
}

std::string counted(std::size_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

} // namespace velmo::cli
