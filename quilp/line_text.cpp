#include "quilp/line_text.h"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "quilp/utf8.h"

namespace velmo::quilp {

namespace {

bool is_control(char32_t code)
{
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

void append_escaped(std::string& to, char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    switch (byte) {
    case '\n':
        to += "\\n";
        break;
    case '\r':
        to += "\\r";
        break;
    case '\t':
        to += "\\t";
        break;
    default:
        const auto value = static_cast<unsigned char>(byte);
        to += {'\\', 'x', digits[value >> 4], digits[value & 0xF]};
    }
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    std::size_t cut_at = 0; // the end of the last character that leaves room for the mark
    while (!text.empty()) {
        const Utf8Character character = first_character(text);
        const std::string_view bytes = text.substr(0, character.length);
        if (character.well_formed && !is_control(character.code))
            result += bytes;
        else
            for (const char byte : bytes)
                append_escaped(result, byte);
        text.remove_prefix(character.length);

        if (result.size() <= max_text - cut_mark.size())
            cut_at = result.size();
        if (result.size() > max_text) {
            result.resize(cut_at);
            return result.append(cut_mark);
        }
    }
    return result;
}

std::string line_text(const char* format, std::va_list arguments)
{
    if (!format)
        return "(no text: the format is a null pointer)";
    // Larger than what is kept, so that the last character kept is whole.
    char text[max_text + 8];
    const int length = std::vsnprintf(text, sizeof text, format, arguments);
    if (length < 0) {
        const std::string reason = std::generic_category().message(errno);
        return printable(std::string(format) +
                         " (the arguments cannot be printed: " + reason + ")");
    }
    const auto whole = static_cast<std::size_t>(length);
    return printable({text, whole < sizeof text ? whole : sizeof text - 1});
}

} // namespace velmo::quilp
