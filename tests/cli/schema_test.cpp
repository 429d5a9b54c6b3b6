// That a document of another shape is found out.
#include "tests/cli/schema.h"

#include <gtest/gtest.h>

using nlohmann::json;
using velmo::tests::difference;

namespace {

const json schema = R"({
    "type": "object",
    "properties": {
        "name": {"type": "string", "pattern": "^[a-z]+$"},
        "size": {"type": ["integer", "null"], "minimum": 0},
        "kind": {"enum": ["a", "b"]},
        "list": {"type": "array", "items": {"anyOf": [{"const": 1}, {"type": "boolean"}]},
                 "minItems": 1}
    },
    "required": ["name"],
    "additionalProperties": false
})"_json;

TEST(Schema, TakesWhatIsOfItsShape)
{
    EXPECT_EQ(difference(schema, R"({"name": "x"})"_json), "");
    EXPECT_EQ(difference(schema, R"({"name": "x", "size": null, "kind": "b"})"_json), "");
    EXPECT_EQ(difference(schema, R"({"name": "x", "size": 7, "list": [1, true]})"_json),
              "");
}

TEST(Schema, TellsWhatIsNot)
{
    for (const char* wrong :
         {R"([])", R"({})", R"({"name": 1})", R"({"name": "X"})",
          R"({"name": "x", "size": 1.5})", R"({"name": "x", "size": -1})",
          R"({"name": "x", "kind": "c"})", R"({"name": "x", "list": []})",
          R"({"name": "x", "list": [1, 2]})", R"({"name": "x", "more": 1})"})
        EXPECT_NE(difference(schema, json::parse(wrong)), "") << wrong;
}

TEST(Schema, RefusesKeywordsThatItDoesNotKnow)
{
    EXPECT_THROW(difference(R"({"maximum": 1})"_json, 1), std::invalid_argument);
}

} // namespace
