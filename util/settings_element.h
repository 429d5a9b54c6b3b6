// The elements of a settings file.
#ifndef VELMO_UTIL_SETTINGS_ELEMENT_H
#define VELMO_UTIL_SETTINGS_ELEMENT_H

#include <algorithm>
#include <map>
#include <optional>
#include <string>

#include <pugixml.hpp>

#include "util/settings_text.h"
#include "util/settings_values.h"

namespace velmo::settings {

// Parses a text whose characters have been checked. Throws Fault.
void load(pugi::xml_document& document, const std::string& text, Lines& lines);

// Throws Fault for a node of text, which belongs nowhere, unless it is white space. text,
// lines: of the whole file.
void refuse_text(const pugi::xml_node& node, const std::string& text, Lines& lines);

// An element with its line and its attributes, of which it has known ones only,
// each at most once.
class Element {
public:
    // known: a container of the attributes' names. Throws Fault.
    template <class Names>
    Element(const pugi::xml_node& node, int at_line, const Names& known) : line(at_line)
    {
        for (const pugi::xml_attribute& attribute : node.attributes()) {
            const std::string name = attribute.name();
            if (std::find(std::begin(known), std::end(known), name) == std::end(known))
                throw fault("unknown attribute " + quoted(name) + " of " + node.name());
            if (!attributes.emplace(name, attribute.value()).second)
                throw fault("attribute " + quoted(name) + " twice");
        }
    }

    // Null when it is not there.
    const std::string* get(const std::string& name) const;

    std::optional<Sourced<Milliseconds>> timeout(const std::string& name) const;
    Timeouts timeouts() const;

    Fault fault(const std::string& reason) const { return Fault(line, reason); }
    std::string origin() const { return "line " + std::to_string(line); }

    const int line;

private:
    std::map<std::string, std::string> attributes;
};

} // namespace velmo::settings

#endif
