// Values out of the bytes that the fuzzer invents.
#ifndef VELMO_TESTS_FUZZ_INPUT_H
#define VELMO_TESTS_FUZZ_INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "tests/fuzz/require.h"

namespace velmo::tests {

// Data as applications hand them over, good or bad.
struct Data {
    const void* pointer;
    int length;

    bool good() const { return length >= 0 && (pointer || length == 0); }
};

// A buffer of exactly its size, somewhere even when that is 0.
class Buffer {
public:
    explicit Buffer(std::size_t size) : length(size), bytes(std::make_unique<char[]>(size))
    {
        std::fill_n(bytes.get(), size, untouched);
    }

    std::size_t size() const { return length; }
    char* pointer() { return bytes.get(); }

    // Whether it begins with the data, as far as they fit, and is untouched behind.
    void require_beginning(const std::string& data) const
    {
        std::string expected = data.substr(0, length);
        expected.resize(length, untouched);
        require(std::equal(expected.begin(), expected.end(), bytes.get()),
                "the buffer holds the data and nothing else");
    }

private:
    static constexpr char untouched = '\x5a';

    std::size_t length;
    std::unique_ptr<char[]> bytes;
};

// The given bytes and more that follow from them. Gives zeros and empty values when
// they are used up.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size);

    bool used_up() { return source.remaining_bytes() == 0; }

    // True once in so many times.
    bool once_in(unsigned int times);
    std::size_t index(std::size_t count); // below count
    std::int32_t number();                // any, the usual ones more often
    unsigned int handle() { return static_cast<unsigned int>(number()); }

    std::string bytes();  // up to 1 MiB
    std::string string(); // likewise, without NUL
    std::vector<std::string> strings();

    // What is pointed to lives as long as the input and is no longer than it says.
    const char* text(); // or null
    Data data();

private:
    std::string enlarged(std::string unit);

    const std::vector<std::uint8_t> supply;
    FuzzedDataProvider source;
    std::list<std::vector<char>> kept;
};

} // namespace velmo::tests

#endif
