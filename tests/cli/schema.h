// Whether JSON documents are of the shape that they should be.
#ifndef VELMO_TESTS_CLI_SCHEMA_H
#define VELMO_TESTS_CLI_SCHEMA_H

#include <string>

#include <nlohmann/json.hpp>

namespace velmo::tests {

// What of JSON Schema (draft 2020-12) the files in schemas/ use: type, const, enum,
// properties, required, additionalProperties (a boolean), items, minItems, minimum,
// pattern and anyOf. Gives where and how a document differs, "" when it does not. Throws
// std::invalid_argument for a schema with anything else in it.
std::string difference(const nlohmann::json& schema, const nlohmann::json& document,
                       const std::string& where = "$");

} // namespace velmo::tests

#endif
