#include "cli/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "cli/failure.h"
#include "cli/text.h"

namespace velmo::cli {

namespace {

// Calls use(T{}) with the type of numbers of that kind.
template <class Use>
auto with_number_type(Kind kind, Use use)
{
    switch (kind) {
    case Kind::int8:
        return use(std::int8_t{});
    case Kind::uint8:
    case Kind::boolean:
        return use(std::uint8_t{});
    case Kind::int16:
        return use(std::int16_t{});
    case Kind::uint16:
        return use(std::uint16_t{});
    case Kind::int32:
        return use(std::int32_t{});
    case Kind::uint32:
        return use(std::uint32_t{});
    case Kind::int64:
        return use(std::int64_t{});
    case Kind::uint64:
        return use(std::uint64_t{});
    case Kind::float32:
        return use(float{});
    default:
        return use(double{});
    }
}

bool is_number(Kind kind)
{
    return kind < Kind::boolean;
}

std::string name_of(Kind kind)
{
    return kind_names()[static_cast<std::size_t>(kind)];
}

// Little-endian, whatever this machine is.
template <class Number>
std::string to_bytes(Number number)
{
    std::string bytes(reinterpret_cast<const char*>(&number), sizeof number);
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class Number>
Number from_bytes(Kind kind, std::string_view value)
{
    if (value.size() != sizeof(Number))
        throw misuse("the value has " + counted(value.size(), "byte") + ", " +
                         name_of(kind) + " would have " + std::to_string(sizeof(Number)),
                     "choose another kind with --as");
    std::string bytes(value);
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
        std::reverse(bytes.begin(), bytes.end());
    Number number;
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(&number));
    return number;
}

template <class Number>
std::string encode_number(Kind kind, std::string_view typed)
{
    Number number{};
    const std::size_t sign = !typed.empty() && typed.front() == '+' ? 1 : 0;
    const char* const end = typed.data() + typed.size();
    const auto parsed = std::from_chars(typed.data() + sign, end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end)
        throw misuse(in_quotes(typed) +
                     (parsed.ec == std::errc::result_out_of_range
                          ? " is beyond the range of "
                          : " is no ") +
                     name_of(kind));
    return to_bytes(number);
}

std::string encode_boolean(std::string_view typed)
{
    if (typed == "true" || typed == "1")
        return std::string(1, '\1');
    if (typed == "false" || typed == "0")
        return std::string(1, '\0');
    throw misuse(in_quotes(typed) + " is neither true nor false");
}

// The end of a line, which a pipe brings along.
std::string_view without_line_end(std::string_view typed)
{
    while (!typed.empty() && (typed.back() == '\n' || typed.back() == '\r'))
        typed.remove_suffix(1);
    return typed;
}

template <class Number>
std::string decimal(Number number)
{
    char buffer[64];
    const auto written = std::to_chars(buffer, buffer + sizeof buffer, number);
    return std::string(buffer, written.ptr);
}

Json hex_document(std::string_view bytes)
{
    return {{"hex", to_hex(bytes)}};
}

} // namespace

const std::vector<std::string>& kind_names()
{
    static const std::vector<std::string> names = {
        "int8",   "uint8",   "int16",   "uint16", "int32", "uint32", "int64",
        "uint64", "float32", "float64", "bool",   "text",  "bytes"};
    return names;
}

std::optional<Kind> kind_of(std::string_view name)
{
    const auto found = std::find(kind_names().begin(), kind_names().end(), name);
    if (found == kind_names().end())
        return std::nullopt;
    return static_cast<Kind>(found - kind_names().begin());
}

std::string encode(Kind kind, const std::string& typed)
{
    if (kind == Kind::text || kind == Kind::bytes)
        return typed;
    const std::string_view word = without_line_end(typed);
    if (kind == Kind::boolean)
        return encode_boolean(word);
    return with_number_type(
        kind, [&](auto type) { return encode_number<decltype(type)>(kind, word); });
}

std::string format(Kind kind, std::string_view bytes)
{
    if (kind == Kind::bytes)
        return is_readable(bytes) ? std::string(bytes) : to_hex(bytes);
    if (kind == Kind::text)
        return std::string(bytes);
    if (kind == Kind::boolean)
        return from_bytes<std::uint8_t>(kind, bytes) ? "true" : "false";
    return with_number_type(
        kind, [&](auto type) { return decimal(from_bytes<decltype(type)>(kind, bytes)); });
}

Json to_json(Kind kind, std::string_view bytes)
{
    if (kind == Kind::bytes || (kind == Kind::text && !is_utf8(bytes)))
        return hex_document(bytes);
    if (kind == Kind::text)
        return Json(bytes);
    if (kind == Kind::boolean)
        return from_bytes<std::uint8_t>(kind, bytes) != 0;
    return with_number_type(kind, [&](auto type) -> Json {
        const auto number = from_bytes<decltype(type)>(kind, bytes);
        if constexpr (std::is_floating_point_v<decltype(type)>) {
            const std::string shortest =
                decimal(number); // JSON would show a double's digits
            return std::isfinite(number) ? Json::parse(shortest) : Json(shortest);
        } else {
            return number;
        }
    });
}

std::string from_json(Kind kind, const Json& value)
{
    if (value.is_object() && value.size() == 1 && value.contains("hex") &&
        value["hex"].is_string()) {
        if (const auto bytes = from_hex(value["hex"].get<std::string>()))
            return *bytes;
    } else if (value.is_string()) {
        return encode(kind, value.get<std::string>());
    } else if ((kind == Kind::boolean && value.is_boolean()) ||
               (is_number(kind) && value.is_number())) {
        return encode(kind, value.dump());
    }
    throw misuse(value.dump() + " is no value of kind " + name_of(kind));
}

} // namespace velmo::cli
