#include "cli/contenders.h"

#include <cstdlib>

#include "cli/system_points.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

constexpr const char* digits = "0123456789ABCDEF";

bool stands_for_itself(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte != 0x7f && c != '/' && c != '%';
}

} // namespace

std::optional<GroupState> group_state(const Session& session, const std::string& group)
{
    const auto state = system_value(session, group_point(group, "state"));
    if (!state)
        return std::nullopt;
    const std::size_t space = state->find(' ');
    return GroupState{std::strtoull(state->c_str(), nullptr, 10),
                      space == std::string::npos ? "" : state->substr(space + 1)};
}

std::string group_point(const std::string& group, const std::string& property)
{
    return contention_points + group + "/" + property;
}

std::string contender_point(const std::string& group, const std::string& contender,
                            const std::string& property)
{
    return group_point(group, "contenders/" + escaped(contender) + "/" + property);
}

std::string escaped(const std::string& name)
{
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (stands_for_itself(c))
            text += c;
        else
            text.append({'%', digits[byte >> 4], digits[byte & 0xf]});
    }
    return text;
}

std::string unescaped(const std::string& text)
{
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte =
            text[i] == '%' ? from_hex(text.substr(i + 1, 2)) : std::optional<std::string>();
        name += byte ? *byte : text.substr(i, 1);
        i += byte ? 2 : 0;
    }
    return name;
}

} // namespace velmo::cli
