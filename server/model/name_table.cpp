#include "server/model/name_table.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velmo::model {

namespace {

constexpr std::size_t block_bytes = 64u << 10;

struct Keyed {
    std::uint64_t key;
    const char* name;
};

// The first bytes of a text as a number that is in their order.
std::uint64_t key_of(const char* text)
{
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < sizeof key; ++i) {
        key = key << 8 | static_cast<unsigned char>(*text);
        text += *text != '\0';
    }
    return key;
}

} // namespace

void NameTable::add(std::string_view name)
{
    const std::size_t needed = name.size() + 1;
    if (room < needed) {
        room = std::max(block_bytes, needed);
        next = blocks.emplace_back(std::make_unique<char[]>(room)).get();
    }
    names.push_back(next);
    next = std::copy(name.begin(), name.end(), next);
    *next++ = '\0';
    room -= needed;
}

void NameTable::sort()
{
    if (names.empty())
        return;
    // What all names begin with tells none of them apart; the bytes that follow mostly
    // do, and are compared where they lie side by side.
    const char* const any = names.front();
    std::size_t common = std::strlen(any);
    for (const char* name : names)
        common =
            static_cast<std::size_t>(std::mismatch(any, any + common, name).first - any);
    std::vector<Keyed> keyed;
    keyed.reserve(names.size());
    for (const char* name : names)
        keyed.push_back({key_of(name + common), name});
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        return a.key != b.key ? a.key < b.key : std::strcmp(a.name, b.name) < 0;
    });
    std::transform(keyed.begin(), keyed.end(), names.begin(),
                   [](const Keyed& entry) { return entry.name; });
}

} // namespace velmo::model
