#include "server/model/system_path.h"

namespace velmo::model {

namespace {

constexpr std::string_view digits = "0123456789ABCDEF";

bool stands_for_itself(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte != 0x7F && c != '/' && c != '%';
}

} // namespace

std::string escaped(std::string_view name)
{
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (stands_for_itself(c))
            text += c;
        else
            text.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return text;
}

std::optional<std::string> unescaped(std::string_view text)
{
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            name += text[i];
            continue;
        }
        if (text.size() - i < 3)
            return std::nullopt;
        const std::size_t high = digits.find(text[i + 1]);
        const std::size_t low = digits.find(text[i + 2]);
        if (high == std::string_view::npos || low == std::string_view::npos)
            return std::nullopt;
        name += static_cast<char>(high << 4 | low);
        i += 2;
    }
    // There is one way to write a name.
    return escaped(name) == text ? std::optional(name) : std::nullopt;
}

} // namespace velmo::model
