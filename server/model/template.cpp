#include "server/model/template.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "server/model/names.h"
#include "server/model/system_points.h"

namespace velmo::model {

namespace {

using Octets = std::vector<std::uint8_t>;

struct KindTraits {
    Kind kind;
    std::string_view name;
    std::size_t size; // 0: any
};

constexpr KindTraits kinds[] = {
    {Kind::int8, "int8", 1},       {Kind::uint8, "uint8", 1},
    {Kind::int16, "int16", 2},     {Kind::uint16, "uint16", 2},
    {Kind::int32, "int32", 4},     {Kind::uint32, "uint32", 4},
    {Kind::int64, "int64", 8},     {Kind::uint64, "uint64", 8},
    {Kind::float32, "float32", 4}, {Kind::float64, "float64", 8},
    {Kind::boolean, "bool", 1},    {Kind::text, "text", 0},
    {Kind::bytes, "bytes", 0},
};

const KindTraits& traits(Kind kind)
{
    return *std::find_if(std::begin(kinds), std::end(kinds),
                         [kind](const KindTraits& known) { return known.kind == kind; });
}

// All of the text, which stands for a value of the type in range, or none.
template <class Number>
std::optional<Number> parse(std::string_view text, int base = 10)
{
    Number number{};
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>)
        result = std::from_chars(text.data(), text.data() + text.size(), number);
    else
        result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    return number;
}

template <std::size_t size>
struct Bits;
template <>
struct Bits<1> {
    using Type = std::uint8_t;
};
template <>
struct Bits<2> {
    using Type = std::uint16_t;
};
template <>
struct Bits<4> {
    using Type = std::uint32_t;
};
template <>
struct Bits<8> {
    using Type = std::uint64_t;
};

template <class Number>
std::optional<Octets> number_bytes(std::string_view text)
{
    const std::optional<Number> number = parse<Number>(text);
    if (!number)
        return std::nullopt;
    typename Bits<sizeof(Number)>::Type bits;
    std::memcpy(&bits, &*number, sizeof bits);
    Octets bytes;
    for (std::size_t i = 0; i < sizeof bits; ++i)
        bytes.push_back(static_cast<std::uint8_t>(std::uint64_t{bits} >> 8 * i));
    return bytes;
}

std::optional<Octets> truth_bytes(std::string_view text)
{
    if (text != "true" && text != "false")
        return std::nullopt;
    return Octets{text == "true"};
}

std::optional<Octets> hexadecimal_bytes(std::string_view text)
{
    if (text.size() % 2 != 0)
        return std::nullopt;
    Octets bytes;
    for (; !text.empty(); text.remove_prefix(2)) {
        const auto byte = parse<std::uint8_t>(text.substr(0, 2), 16);
        if (!byte)
            return std::nullopt;
        bytes.push_back(*byte);
    }
    return bytes;
}

// None when the text stands for no value of the kind.
std::optional<Octets> value_of(Kind kind, std::string_view text)
{
    switch (kind) {
    case Kind::int8:
        return number_bytes<std::int8_t>(text);
    case Kind::uint8:
        return number_bytes<std::uint8_t>(text);
    case Kind::int16:
        return number_bytes<std::int16_t>(text);
    case Kind::uint16:
        return number_bytes<std::uint16_t>(text);
    case Kind::int32:
        return number_bytes<std::int32_t>(text);
    case Kind::uint32:
        return number_bytes<std::uint32_t>(text);
    case Kind::int64:
        return number_bytes<std::int64_t>(text);
    case Kind::uint64:
        return number_bytes<std::uint64_t>(text);
    case Kind::float32:
        return number_bytes<float>(text);
    case Kind::float64:
        return number_bytes<double>(text);
    case Kind::boolean:
        return truth_bytes(text);
    case Kind::text:
        return Octets(text.begin(), text.end());
    case Kind::bytes:
        return hexadecimal_bytes(text);
    }
    return std::nullopt;
}

} // namespace

std::string_view name_of(Kind kind)
{
    return traits(kind).name;
}

bool TemplateDefinition::operator==(const TemplateDefinition& other) const
{
    return name == other.name && kind == other.kind && size == other.size &&
           max_size == other.max_size && initial == other.initial &&
           description == other.description;
}

Template::Template(TemplateDefinition definition, std::size_t max_value_bytes)
    : written(std::move(definition))
{
    if (check_name(written.name) != VL_OK)
        refuse("a name has 1 to " + std::to_string(max_name_bytes) + " bytes");
    if (written.name == system_type)
        refuse("the name is the server's own");
    const auto known =
        std::find_if(std::begin(kinds), std::end(kinds),
                     [this](const KindTraits& kind) { return kind.name == written.kind; });
    if (known == std::end(kinds))
        refuse("there is no kind \"" + written.kind + "\"");
    its_kind = known->kind;
    check_sizes(known->size, max_value_bytes);
    check_initial();
}

void Template::check_sizes(std::size_t scalar_size, std::size_t max_value_bytes)
{
    if (scalar_size != 0 && (written.size || written.max_size))
        refuse("the size of a value of kind " + written.kind + " is known");
    if (written.size && written.max_size)
        refuse("there is a size or a maximum size, not both");
    const std::uint64_t largest = written.size.value_or(written.max_size.value_or(0));
    if (largest > max_value_bytes)
        refuse("no value may have more than " + std::to_string(max_value_bytes) + " bytes");
    least = static_cast<std::size_t>(written.size.value_or(scalar_size));
    if (scalar_size != 0)
        most = scalar_size;
    else if (written.size || written.max_size)
        most = static_cast<std::size_t>(largest);
    else
        most = max_value_bytes;
}

void Template::check_initial()
{
    if (!written.initial)
        return;
    std::optional<Octets> bytes = value_of(its_kind, *written.initial);
    if (!bytes)
        refuse("the initial value \"" + *written.initial + "\" is none of kind " +
               written.kind);
    if (!accepts(bytes->size()))
        refuse("the initial value has " + std::to_string(bytes->size()) +
               " bytes, which do not fit");
    initial_value = std::make_shared<const Bytes>(bytes->begin(), bytes->end());
}

void Template::refuse(const std::string& reason) const
{
    throw TemplateError("template \"" + written.name + "\": " + reason);
}

std::vector<TemplateDefinition> built_in_templates()
{
    std::vector<TemplateDefinition> definitions;
    for (const KindTraits& kind : kinds) {
        TemplateDefinition definition;
        definition.name = definition.kind = kind.name;
        definitions.push_back(std::move(definition));
    }
    return definitions;
}

} // namespace velmo::model
