#include "tests/cli/schema.h"

#include <regex.h>

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>

namespace velmo::tests {

namespace {

using Json = nlohmann::json;

bool is_of_type(const Json& document, const std::string& type)
{
    if (type == "integer")
        return document.is_number_integer();
    if (type == "number")
        return document.is_number();
    return document.type_name() == type;
}

std::string check_type(const Json& types, const Json& document, const std::string& where)
{
    const Json list = types.is_array() ? types : Json::array({types});
    for (const Json& type : list)
        if (is_of_type(document, type.get<std::string>()))
            return "";
    return where + " is " + document.dump() + ", not of type " + types.dump();
}

std::string check_properties(const Json& schema, const Json& document,
                             const std::string& where)
{
    if (!document.is_object())
        return "";
    const Json properties = schema.value("properties", Json::object());
    for (const auto& [name, value] : document.items()) {
        if (properties.contains(name)) {
            const std::string found =
                difference(properties[name], value, where + "." + name);
            if (!found.empty())
                return found;
        } else if (!schema.value("additionalProperties", true)) {
            return where + " has \"" + name + "\"";
        }
    }
    return "";
}

std::string check_required(const Json& names, const Json& document,
                           const std::string& where)
{
    if (document.is_object())
        for (const Json& name : names)
            if (!document.contains(name.get<std::string>()))
                return where + " has no " + name.dump();
    return "";
}

std::string check_items(const Json& schema, const Json& document, const std::string& where)
{
    if (document.is_array())
        for (std::size_t i = 0; i < document.size(); ++i) {
            const std::string found =
                difference(schema, document[i], where + "[" + std::to_string(i) + "]");
            if (!found.empty())
                return found;
        }
    return "";
}

std::string check_any(const Json& schemas, const Json& document, const std::string& where)
{
    std::string all;
    for (const Json& schema : schemas) {
        const std::string found = difference(schema, document, where);
        if (found.empty())
            return "";
        all += (all.empty() ? "" : ", and ") + found;
    }
    return all;
}

// As POSIX has it, which is enough for the schemas.
bool matches(const std::string& pattern, const std::string& text)
{
    regex_t compiled;
    if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        throw std::invalid_argument("the schema has the pattern \"" + pattern + "\"");
    const int result = regexec(&compiled, text.c_str(), 0, nullptr, 0);
    regfree(&compiled);
    return result == 0;
}

std::string unless(bool good, const std::string& where, const Json& document,
                   const std::string& what)
{
    return good ? "" : where + " is " + document.dump() + ", not " + what;
}

} // namespace

std::string difference(const Json& schema, const Json& document, const std::string& where)
{
    using Check = std::function<std::string(const Json& value)>;
    const Check nothing = [](const Json&) { return ""; };
    const Check properties = [&](const Json&) {
        return check_properties(schema, document, where);
    };
    const std::map<std::string, Check> checks = {
        {"$schema", nothing},
        {"title", nothing},
        {"description", nothing},
        {"type", [&](const Json& v) { return check_type(v, document, where); }},
        {"properties", properties},
        {"additionalProperties", properties},
        {"required", [&](const Json& v) { return check_required(v, document, where); }},
        {"items", [&](const Json& v) { return check_items(v, document, where); }},
        {"anyOf", [&](const Json& v) { return check_any(v, document, where); }},
        {"const",
         [&](const Json& v) { return unless(document == v, where, document, v.dump()); }},
        {"enum",
         [&](const Json& v) {
             const bool listed = std::find(v.begin(), v.end(), document) != v.end();
             return unless(listed, where, document, "one of " + v.dump());
         }},
        {"minItems",
         [&](const Json& v) {
             const bool good = !document.is_array() || document.size() >= v;
             return unless(good, where, document, "of " + v.dump() + " items");
         }},
        {"minimum",
         [&](const Json& v) {
             const bool good = !document.is_number() || document >= v;
             return unless(good, where, document, v.dump() + " or more");
         }},
        {"pattern",
         [&](const Json& v) {
             const bool good = !document.is_string() ||
                               matches(v.get<std::string>(), document.get<std::string>());
             return unless(good, where, document, "like " + v.dump());
         }},
    };
    for (const auto& [keyword, value] : schema.items()) {
        const auto check = checks.find(keyword);
        if (check == checks.end())
            throw std::invalid_argument("the schema has \"" + keyword + "\"");
        const std::string found = check->second(value);
        if (!found.empty())
            return found;
    }
    return "";
}

} // namespace velmo::tests
