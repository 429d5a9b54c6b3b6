// The values of points: what people, JSON and the server's bytes have in common.
#ifndef VELMO_CLI_VALUE_H
#define VELMO_CLI_VALUE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output.h"

namespace velmo::cli {

enum class Kind {
    int8,
    uint8,
    int16,
    uint16,
    int32,
    uint32,
    int64,
    uint64,
    float32,
    float64,
    boolean,
    text,
    bytes
};

// As templates and --as name them, in their order.
const std::vector<std::string>& kind_names();

// None for the name of a template that is not one of the kinds.
std::optional<Kind> kind_of(std::string_view name);

// A value's bytes from what a person has typed: a number in decimal (a float in C's ways),
// true or false; text and bytes as they are. Throws Failure.
std::string encode(Kind kind, const std::string& typed);

// For a person, without a line's end: bytes as text when they can be read, else in
// hexadecimal. Throws Failure when the size is not that of the kind.
std::string format(Kind kind, std::string_view bytes);

// Numbers, true, false, text. Floats that are no numbers are "nan", "inf" and "-inf", and
// bytes, like text that is not UTF-8, {"hex": "00ff"}. Throws as format().
Json to_json(Kind kind, std::string_view bytes);

// The bytes of what to_json() gives. Throws Failure.
std::string from_json(Kind kind, const Json& value);

} // namespace velmo::cli

#endif
