// The format is that of https://www.sqlite.org/fileformat2.html#walformat.
#include "server/journal/log_check.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "server/store/database.h"

namespace velmo::journal {

namespace {

constexpr std::size_t header_bytes = 32;
constexpr std::size_t frame_header_bytes = 24;
constexpr std::uint32_t magic_little = 0x377F0682; // checksums of little-endian words
constexpr std::uint32_t magic_big = 0x377F0683;

using Bytes = std::vector<unsigned char>;

std::uint32_t word(const Bytes& bytes, std::size_t at, bool little = false)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | bytes[at + (little ? 3 - i : i)];
    return value;
}

// Goes on from one frame to the next.
class Checksum {
public:
    explicit Checksum(bool little_endian) : little(little_endian) {}

    void add(const Bytes& bytes, std::size_t begin, std::size_t end)
    {
        for (std::size_t i = begin; i < end; i += 8) {
            sums[0] += word(bytes, i, little) + sums[1];
            sums[1] += word(bytes, i + 4, little) + sums[0];
        }
    }

    bool is(const Bytes& bytes, std::size_t at) const
    {
        return sums[0] == word(bytes, at) && sums[1] == word(bytes, at + 4);
    }

private:
    bool little;
    std::array<std::uint32_t, 2> sums{};
};

class Log {
public:
    explicit Log(const std::filesystem::path& log) : path(log), file(log, std::ios::binary)
    {
    }

    void check()
    {
        if (!read(header, header_bytes) || header == Bytes(header_bytes))
            return;
        const std::uint32_t magic = word(header, 0);
        Checksum checksum(magic == magic_little);
        checksum.add(header, 0, 24);
        if ((magic != magic_little && magic != magic_big) || !checksum.is(header, 24))
            fail("its beginning is damaged");

        std::size_t good = 0;
        while (read_frame() && continues(checksum))
            ++good;
        std::size_t commits = 0;
        for (; file; read_frame())
            if (of_this_log() && ends_transaction())
                ++commits;
        if (commits > 1)
            fail("it is damaged from byte " +
                 std::to_string(header_bytes + good * frame.size()) +
                 " on, and complete changes follow");
    }

private:
    bool read(Bytes& into, std::size_t size)
    {
        into.resize(size);
        file.read(reinterpret_cast<char*>(into.data()), static_cast<std::streamsize>(size));
        return file.good();
    }

    bool read_frame() { return read(frame, frame_header_bytes + word(header, 8)); }

    // Frames of an earlier use of the file have other salts.
    bool of_this_log() const
    {
        return word(frame, 8) == word(header, 16) && word(frame, 12) == word(header, 20);
    }

    bool ends_transaction() const { return word(frame, 4) != 0; }

    bool continues(Checksum& checksum) const
    {
        checksum.add(frame, 0, 8);
        checksum.add(frame, frame_header_bytes, frame.size());
        return of_this_log() && checksum.is(frame, 16);
    }

    [[noreturn]] void fail(const std::string& reason) const
    {
        throw store::StoreError(path, reason, "state log");
    }

    const std::filesystem::path path;
    std::ifstream file;
    Bytes header;
    Bytes frame;
};

} // namespace

void check_log(const std::filesystem::path& log)
{
    Log(log).check();
}

} // namespace velmo::journal
