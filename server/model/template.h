// Templates: the named types of points.
#ifndef VELMO_SERVER_MODEL_TEMPLATE_H
#define VELMO_SERVER_MODEL_TEMPLATE_H

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "server/model/data.h"

namespace velmo::model {

// The kinds of values. A value is what clients make of its bytes: the server itself
// takes numbers for little-endian ones where it turns an initial value into bytes, and
// otherwise looks at sizes only.
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
    boolean, // one byte, 0 or 1
    text,    // without an end mark
    bytes
};

std::string_view name_of(Kind kind);

// A template as people write it, and as snapshots keep it. Nothing here is checked.
struct TemplateDefinition {
    std::string name;
    std::string kind; // int8 ... uint64, float32, float64, bool, text, bytes
    std::optional<std::uint64_t> size;     // of every value; text and bytes only
    std::optional<std::uint64_t> max_size; // likewise
    // None: a new point has no data. A number in decimal (a float in C's ways), "true"
    // or "false", a text as it is, bytes as pairs of hexadecimal digits.
    std::optional<std::string> initial;
    std::string description;

    bool operator==(const TemplateDefinition& other) const;
};

// What is wrong with a definition: a phrase that names the template.
class TemplateError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A checked definition. Never changed once made.
class Template {
public:
    // Throws TemplateError: the name is empty, longer than max_name_bytes or the one
    // that system points have; the kind is unknown; there is a size for a scalar, two
    // sizes, or one larger than max_value_bytes; the initial value is none of the kind,
    // or of a size that does not fit.
    Template(TemplateDefinition definition, std::size_t max_value_bytes);

    const std::string& name() const { return written.name; }
    const std::string& description() const { return written.description; }
    const TemplateDefinition& definition() const { return written; }
    Kind kind() const { return its_kind; }

    // The value that a new point has; null for none.
    const Data& initial() const { return initial_value; }

    // Whether a value may have this size.
    bool accepts(std::size_t size) const { return least <= size && size <= most; }

private:
    void check_sizes(std::size_t scalar_size, std::size_t max_value_bytes);
    void check_initial();
    [[noreturn]] void refuse(const std::string& reason) const;

    TemplateDefinition written;
    Kind its_kind = Kind::bytes;
    std::size_t least = 0;
    std::size_t most = 0;
    Data initial_value;
};

// The definitions that every server has: one for each kind, named like it, without a
// size (of text and bytes), an initial value or a description.
std::vector<TemplateDefinition> built_in_templates();

} // namespace velmo::model

#endif
