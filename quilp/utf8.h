// Reading UTF-8, whatever the locale.
#ifndef VELMO_QUILP_UTF8_H
#define VELMO_QUILP_UTF8_H

#include <cstddef>
#include <string_view>

namespace velmo::quilp {

// The character that a text begins with.
struct Utf8Character {
    char32_t code;      // U+FFFD for a byte that begins no well-formed sequence
    std::size_t length; // in bytes; 1 for such a byte
    bool well_formed;
};

// text must not be empty. Overlong forms, surrogates and values above U+10FFFF
// are not well-formed.
inline Utf8Character first_character(std::string_view text)
{
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    constexpr Utf8Character malformed{0xFFFD, 1, false};
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4)
        return malformed;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length)
        return malformed;
    char32_t code = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return malformed;
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (overlong || surrogate || code > 0x10FFFF)
        return malformed;
    return {code, length, true};
}

} // namespace velmo::quilp

#endif
