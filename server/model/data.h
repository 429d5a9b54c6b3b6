// Bytes as the services keep them.
#ifndef VELMO_SERVER_MODEL_DATA_H
#define VELMO_SERVER_MODEL_DATA_H

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>

namespace velmo::model {

// Bytes that stay as they have been made: copied, or in a block that somebody else has
// allocated and that is taken over.
class Bytes {
public:
    using Byte = std::uint8_t;
    using Release = void (*)(Byte* block);

    explicit Bytes(std::size_t length, Byte value = 0) : Bytes(uninitialised(length))
    {
        std::fill_n(block.get(), length, value);
    }

    template <class Iterator>
    Bytes(Iterator first, Iterator last)
        : Bytes(uninitialised(static_cast<std::size_t>(std::distance(first, last))))
    {
        std::copy(first, last, block.get());
    }

    // Takes over a block, which release frees.
    Bytes(Byte* its_block, std::size_t length, Release release)
        : block(its_block, release), count(length)
    {
    }

    std::size_t size() const { return count; }
    bool empty() const { return count == 0; }
    const Byte* data() const { return block.get(); }
    const Byte* begin() const { return data(); }
    const Byte* end() const { return data() + size(); }

private:
    // As make_unique() does, but for the zeros.
    static Bytes uninitialised(std::size_t length)
    {
        return Bytes(new Byte[length], length, [](Byte* bytes) { delete[] bytes; });
    }

    std::unique_ptr<Byte[], Release> block;
    std::size_t count;
};

// Copies share their bytes.
using Data = std::shared_ptr<const Bytes>;

inline bool operator==(const Bytes& a, const Bytes& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

inline std::string as_text(const Data& data)
{
    return std::string(data->begin(), data->end());
}

// A port's number, chosen by the client that creates it.
using Handle = std::uint32_t;

constexpr std::size_t max_name_bytes = 255; // of ports, points, events, groups ...

} // namespace velmo::model

#endif
