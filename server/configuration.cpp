#include "server/configuration.h"

#include <charconv>
#include <limits>
#include <map>

#include "util/settings_element.h"
#include "util/settings_file.h"
#include "util/settings_source.h"

namespace velmo::server {

namespace {

using settings::Element;
using settings::quoted;
using Words = std::vector<std::string>;

// Of a size, as a template has it.
std::optional<std::uint64_t> size_of(const Element& element, const std::string& name)
{
    const std::string* text = element.get(name);
    if (!text)
        return std::nullopt;
    std::uint64_t size = 0;
    const char* const end = text->data() + text->size();
    const auto parsed = std::from_chars(text->data(), end, size);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        throw element.fault(name + " is " + quoted(*text) + ", not a number of bytes");
    return size;
}

class Parser {
public:
    Parser(const std::string& of_text, const Words& option_names)
        : text(of_text), lines(of_text), names(option_names)
    {
    }

    Configuration parse()
    {
        settings::load(document, text, lines);
        pugi::xml_node section;
        for (const pugi::xml_node& node : document.document_element()) {
            if (node.name() != std::string_view(settings::daemon_section))
                continue;
            if (section)
                throw settings::Fault(line_of(node), "a second section velmod");
            section = node;
        }
        if (section)
            take_section(section);
        return std::move(configuration);
    }

private:
    void take_section(const pugi::xml_node& section)
    {
        const Element element(section, line_of(section), names);
        for (const std::string& name : names)
            take_option(element, name, name);
        for_elements(section, [this](const pugi::xml_node& node) {
            const std::string_view name = node.name();
            if (name == "listen")
                take_option(leaf(node, {"address"}), "listen", "address");
            else if (name == "realm")
                take_option(leaf(node, {"name"}), "realm", "name");
            else if (name == "templates")
                take_templates(node);
            else
                refuse(node);
        });
    }

    void take_option(const Element& element, const std::string& option,
                     const std::string& attribute)
    {
        const std::string* value = element.get(attribute);
        if (value && value->empty())
            throw element.fault(attribute + " is empty");
        if (value)
            configuration.options.push_back({element.line, option, *value});
        else if (option != attribute)
            throw element.fault(option + " without " + attribute);
    }

    void take_templates(const pugi::xml_node& node)
    {
        const Element element(node, line_of(node), Words());
        for_elements(node, [this](const pugi::xml_node& child) {
            if (child.name() != std::string_view("template"))
                refuse(child);
            take_template(leaf(
                child, {"name", "type", "size", "max-size", "initial", "description"}));
        });
    }

    void take_template(const Element& element)
    {
        model::TemplateDefinition definition;
        for (const auto& [attribute, target] :
             {std::pair{"name", &definition.name}, {"type", &definition.kind}}) {
            const std::string* value = element.get(attribute);
            if (!value)
                throw element.fault(std::string("a template without ") + attribute);
            *target = *value;
        }
        definition.size = size_of(element, "size");
        definition.max_size = size_of(element, "max-size");
        if (const std::string* initial = element.get("initial"))
            definition.initial = *initial;
        if (const std::string* description = element.get("description"))
            definition.description = *description;
        const auto [known, is_new] =
            line_of_template.emplace(definition.name, element.line);
        if (!is_new)
            throw element.fault("the template " + quoted(definition.name) +
                                " is already there on line " +
                                std::to_string(known->second));
        check(definition, element);
        configuration.templates.push_back(std::move(definition));
    }

    void check(const model::TemplateDefinition& definition, const Element& element) const
    {
        try {
            const model::Template checked(definition,
                                          std::numeric_limits<std::size_t>::max());
        } catch (const model::TemplateError& error) {
            throw element.fault(error.what());
        }
        for (const model::TemplateDefinition& other : model::built_in_templates())
            if (other.name == definition.name)
                throw element.fault("the template " + quoted(definition.name) +
                                    " is built in");
    }

    // An element without anything inside.
    Element leaf(const pugi::xml_node& node, const Words& attributes)
    {
        for_elements(node, [this](const pugi::xml_node& child) { refuse(child); });
        return Element(node, line_of(node), attributes);
    }

    template <class Take>
    void for_elements(const pugi::xml_node& parent, Take take)
    {
        for (const pugi::xml_node& node : parent) {
            if (node.type() == pugi::node_element)
                take(node);
            else
                settings::refuse_text(node, text, lines);
        }
    }

    [[noreturn]] void refuse(const pugi::xml_node& node)
    {
        throw settings::Fault(line_of(node), "unknown element " + quoted(node.name()) +
                                                 " in " + node.parent().name());
    }

    int line_of(const pugi::xml_node& node) { return lines.at(node.offset_debug()); }

    const std::string& text;
    settings::Lines lines;
    const Words& names;
    pugi::xml_document document;
    std::map<std::string, int> line_of_template;
    Configuration configuration;
};

} // namespace

Configuration read_configuration(const std::string& path, const Words& names)
{
    const std::string text = settings::text_of(path);
    settings::parse_file(text, {});
    return Parser(text, names).parse();
}

} // namespace velmo::server
