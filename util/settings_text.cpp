#include "util/settings_text.h"

#include <algorithm>
#include <charconv>
#include <cwchar>
#include <locale>

#include "util/settings_values.h"

namespace velmo::settings {
namespace {

std::ptrdiff_t valid_utf8_bytes(const std::string& text)
{
    struct Utf8 : std::codecvt<char32_t, char, std::mbstate_t> {};
    std::mbstate_t state{};
    return Utf8().length(state, text.data(), text.data() + text.size(), text.size());
}

bool is_character(unsigned int code)
{
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    return code != 0 && code <= 0x10ffff && !surrogate;
}

// Whether the reference that starts at an offset with "&#" names a character.
bool is_reference_to_character(const std::string& text, std::size_t at)
{
    const bool hexadecimal = text.compare(at + 2, 1, "x") == 0;
    const char* const digits = text.data() + at + (hexadecimal ? 3 : 2);
    const char* const end = text.data() + text.size();
    unsigned int code = 0;
    const auto parsed = std::from_chars(digits, end, code, hexadecimal ? 16 : 10);
    return parsed.ec == std::errc() && is_character(code);
}

} // namespace

int Lines::at(std::ptrdiff_t wanted)
{
    wanted =
        std::clamp<std::ptrdiff_t>(wanted, 0, static_cast<std::ptrdiff_t>(text.size()));
    if (wanted < offset) {
        offset = 0;
        line = 1;
    }
    line +=
        static_cast<int>(std::count(text.begin() + offset, text.begin() + wanted, '\n'));
    offset = wanted;
    return line;
}

void check_characters(const std::string& text, Lines& lines)
{
    const auto line_of = [&](std::size_t at) {
        return lines.at(static_cast<std::ptrdiff_t>(at));
    };
    if (const auto nul = text.find('\0'); nul != std::string::npos)
        throw Fault(line_of(nul), "a NUL byte");
    const auto valid = static_cast<std::size_t>(valid_utf8_bytes(text));
    if (valid != text.size())
        throw Fault(line_of(valid), "bytes that are not UTF-8");
    for (auto at = text.find("&#"); at != std::string::npos; at = text.find("&#", at + 1)) {
        if (!is_reference_to_character(text, at))
            throw Fault(line_of(at), "a reference to a character that does not exist");
    }
}

} // namespace velmo::settings
