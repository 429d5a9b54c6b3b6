// A write-ahead log that was damaged in arbitrary ways, beside a sound state file: velmod
// refuses it, or recovers what was so after one of the changes, whole.
//
// The log is changed step by step as the input says; three numbers of three bytes each
// follow the byte that chooses what is done.

#include <algorithm>
#include <cstdint>
#include <string>

#include "tests/fuzz/require.h"
#include "tests/server/journal/groups.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using tests::require;

namespace {

constexpr int groups = 6;

// The files of a server that was killed after its last group.
struct Left {
    Left()
    {
        const tests::TemporaryFolder folder;
        tests::KeptRealm realm(folder.path());
        for (int group = 1; group <= groups; ++group)
            require(tests::write_group(realm, group), "groups are written");
        const std::filesystem::path file = journal::state_file(folder.path(), "S");
        state = tests::read_file(file);
        log = tests::read_file(tests::log_of(file));
    }

    std::string state;
    std::string log;
};

class Steps {
public:
    Steps(const std::uint8_t* first, std::size_t size) : next(first), end(first + size) {}

    void damage(std::string& log)
    {
        while (next != end) {
            const unsigned int what = byte();
            const std::size_t at = number() % (log.size() + 1);
            const std::size_t other = number() % (log.size() + 1);
            const std::size_t length = std::min(number(), log.size() - std::max(at, other));
            step(log, what, at, other, length);
        }
    }

private:
    static void step(std::string& log, unsigned int what, std::size_t at, std::size_t other,
                     std::size_t length)
    {
        switch (what % 5) {
        case 0: // cut
            log.resize(at);
            break;
        case 1: // torn: what was not written yet is zeros
            std::fill_n(log.begin() + static_cast<std::ptrdiff_t>(at), length, '\0');
            break;
        case 2: // one place's bytes at another
            log.replace(at, length, log.substr(other, length));
            break;
        case 3: // a flipped bit
            if (at < log.size())
                log[at] = static_cast<char>(log[at] ^ 1 << length % 8);
            break;
        default: // more behind the end
            log += log.substr(at, length);
        }
    }

    unsigned int byte() { return next == end ? 0u : *next++; }
    std::size_t number()
    {
        std::size_t value = 0;
        for (int i = 0; i < 3; ++i)
            value = value << 8 | byte();
        return value;
    }

    const std::uint8_t* next;
    const std::uint8_t* const end;
};

void check(tests::KeptRealm& realm)
{
    model::Data number;
    model::Data large;
    const vl_result found = realm->points.get("p", number);
    require(found == realm->points.get("large", large), "a group has both of its points");
    if (found != VL_OK)
        return; // before the first one
    const int group = std::stoi(model::as_text(number));
    require(group >= 1 && group <= groups, "the group is one that was written");
    require(*large == *tests::large_of(group), "what a group wrote belongs together");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const Left left;
    const tests::TemporaryFolder folder;
    std::string log = left.log;
    Steps(bytes, size).damage(log);
    const std::filesystem::path file = journal::state_file(folder.path(), "S");
    tests::write_file(file, left.state);
    tests::write_file(tests::log_of(file), log);
    try {
        tests::KeptRealm realm(folder.path());
        check(realm);
    } catch (const store::StoreError& error) {
        require(std::string(error.what()).find("S.state") != std::string::npos,
                "a log is refused by its name");
        require(tests::read_file(file) == left.state,
                "files that are refused are left alone");
    }
    return 0;
}
