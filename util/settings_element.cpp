#include "util/settings_element.h"

namespace velmo::settings {

void load(pugi::xml_document& document, const std::string& text, Lines& lines)
{
    // As a fragment: else the parser skips what stands outside the root.
    const pugi::xml_parse_result result = document.load_buffer(
        text.data(), text.size(), pugi::parse_default | pugi::parse_fragment,
        pugi::encoding_utf8);
    if (!result)
        throw Fault(lines.at(result.offset),
                    std::string("not XML: ") + result.description());
}

void refuse_text(const pugi::xml_node& node, const std::string& text, Lines& lines)
{
    constexpr const char* white = " \t\r\n";
    const std::string_view value = node.value();
    const auto start = value.find_first_not_of(white);
    if (start == std::string_view::npos)
        return;
    // Where it is in the file: the value has line ends that are not there, of references
    // and of lone carriage returns.
    const std::size_t offset =
        text.find_first_not_of(white, static_cast<std::size_t>(node.offset_debug()));
    throw Fault(lines.at(static_cast<std::ptrdiff_t>(offset)),
                "text that does not belong here: " + quoted(value.substr(start)));
}

const std::string* Element::get(const std::string& name) const
{
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : &found->second;
}

std::optional<Sourced<Milliseconds>> Element::timeout(const std::string& name) const
{
    const std::string* text = get(name);
    if (!text)
        return std::nullopt;
    const auto value = to_timeout(*text);
    if (!value)
        throw fault(name + " is " + quoted(*text) +
                    ", not a number of milliseconds from 0 to " +
                    std::to_string(max_timeout.count()));
    return Sourced<Milliseconds>{*value, origin()};
}

Timeouts Element::timeouts() const
{
    return {timeout("call_timeout_ms"), timeout("naming_timeout_ms"),
            timeout("connect_timeout_ms")};
}

} // namespace velmo::settings
