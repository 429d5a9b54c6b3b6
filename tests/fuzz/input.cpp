#include "tests/fuzz/input.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <random>

namespace velmo::tests {

namespace {

constexpr std::size_t long_length = 1 << 20;
constexpr std::size_t tail_length = 600; // some calls

// The fuzzer's own bytes repeat themselves too much for every argument to meet every
// answer: they begin a sequence that others continue.
std::vector<std::uint8_t> with_tail(std::vector<std::uint8_t> bytes)
{
    std::minstd_rand more(std::accumulate(
        bytes.begin(), bytes.end(), 1u,
        [](unsigned int sum, std::uint8_t byte) { return sum * 31 + byte; }));
    std::generate_n(std::back_inserter(bytes), tail_length,
                    [&more] { return static_cast<std::uint8_t>(more() >> 8); });
    return bytes;
}

} // namespace

Input::Input(const std::uint8_t* given, std::size_t size)
    : supply(with_tail({given, given + size})), source(supply.data(), supply.size())
{
}

bool Input::once_in(unsigned int times)
{
    return source.ConsumeIntegralInRange<unsigned int>(0, times - 1) == times - 1;
}

std::size_t Input::index(std::size_t count)
{
    return source.ConsumeIntegralInRange<std::size_t>(0, count - 1);
}

std::int32_t Input::number()
{
    static const std::int32_t usual[] = {0,    1,    -1,    2,          7,
                                         2001, 2012, 30004, 0x7fffffff, INT32_MIN};
    return once_in(4) ? source.ConsumeIntegral<std::int32_t>()
                      : source.PickValueInArray(usual);
}

// Long values cost the fuzzer few bytes: a unit, repeated.
std::string Input::enlarged(std::string unit)
{
    if (unit.empty() || !once_in(32))
        return unit;
    const std::size_t length = index(once_in(16) ? long_length : long_length / 256);
    std::string longer;
    while (longer.size() < length)
        longer += unit;
    return longer;
}

std::string Input::bytes()
{
    return enlarged(source.ConsumeBytesAsString(index(once_in(8) ? 64 : 8)));
}

std::string Input::string()
{
    std::string text = bytes();
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    return text;
}

std::vector<std::string> Input::strings()
{
    std::vector<std::string> all(index(3));
    for (std::string& one : all)
        one = string();
    if (once_in(64))
        all.resize(index(10000), "another");
    return all;
}

const char* Input::text()
{
    if (once_in(8))
        return nullptr;
    const std::string value = string();
    kept.emplace_back(value.c_str(), value.c_str() + value.size() + 1);
    return kept.back().data();
}

Data Input::data()
{
    if (once_in(8))
        return {nullptr, number()};
    const std::string value = bytes();
    kept.emplace_back(value.begin(), value.end());
    kept.back().shrink_to_fit();
    const auto length = static_cast<int>(value.size());
    return {kept.back().data(), once_in(8) ? -1 - length : length};
}

} // namespace velmo::tests
