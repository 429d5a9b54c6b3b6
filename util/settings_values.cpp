#include "util/settings_values.h"

#include <charconv>

namespace velmo::settings {

Sourced<Milliseconds>
first_set(std::initializer_list<std::optional<Sourced<Milliseconds>>> places,
          Milliseconds otherwise)
{
    for (const auto& place : places) {
        if (place)
            return *place;
    }
    return {otherwise, "default"};
}

std::optional<Milliseconds> to_timeout(std::string_view text)
{
    unsigned int number = 0;
    const char* const end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || number > max_timeout.count())
        return std::nullopt;
    return Milliseconds(number);
}

std::string naming_url(const std::string& host, unsigned int port)
{
    // 1.2: below that version of GIOP characters beyond ASCII do not pass.
    const bool ipv6 = host.find(':') != std::string::npos;
    return "corbaloc::1.2@" + (ipv6 ? "[" + host + "]" : host) + ":" +
           std::to_string(port) + "/NameService";
}

std::string quoted(std::string_view text)
{
    constexpr std::size_t limit = 80;
    std::string result = "\"";
    for (const char c : text.substr(0, limit)) {
        const bool control = static_cast<unsigned char>(c) < ' ' || c == '\x7f';
        result += control ? '?' : c;
    }
    return result + (text.size() > limit ? "...\"" : "\"");
}

} // namespace velmo::settings
