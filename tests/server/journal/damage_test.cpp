// A state file that was cut or changed from outside: the last write may be torn, all
// before it may not.
#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/server/journal/groups.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::tests;

namespace fs = std::filesystem;

namespace {

constexpr int groups = 8;

// In memory, where there is such a place: hundreds of files are opened.
const bool in_memory = [] {
    return fs::is_directory("/dev/shm") && setenv("TMPDIR", "/dev/shm", 0) == 0;
}();

// The files as a server leaves them behind that is killed after its last group.
class Damage : public ::testing::Test {
protected:
    Damage()
    {
        const TemporaryFolder origin;
        KeptRealm realm(origin.path());
        const fs::path file = journal::state_file(origin.path(), "S");
        const auto length = [&] { return fs::file_size(log_of(file)); };
        EXPECT_TRUE(realm.confirmed());
        ends.push_back(length());
        for (int i = 1; i <= groups; ++i) {
            EXPECT_TRUE(write_group(realm, i));
            ends.push_back(length());
        }
        state = read_file(file);
        log = read_file(log_of(file));
    }

    // What is found with such a log: the number of the last group, or why not.
    std::string found_with(const std::string& a_log, const std::string& a_state)
    {
        const TemporaryFolder folder;
        const fs::path file = journal::state_file(folder.path(), "S");
        write_file(file, a_state);
        write_file(log_of(file), a_log);
        try {
            KeptRealm realm(folder.path());
            model::Data value;
            if (realm->points.get("p", value) != VL_OK)
                return "0";
            const std::string number = model::as_text(value);
            model::Data large;
            EXPECT_EQ(realm->points.get("large", large), VL_OK);
            EXPECT_TRUE(*large == *large_of(std::stoi(number))) << "a mixture";
            return number;
        } catch (const store::StoreError& error) {
            return error.what();
        }
    }
    std::string found_with(const std::string& a_log) { return found_with(a_log, state); }

    // The last group that is whole in so many bytes of the log.
    std::string whole_in(std::size_t bytes) const
    {
        int last = 0;
        while (last < groups && ends[static_cast<std::size_t>(last) + 1] <= bytes)
            ++last;
        return std::to_string(last);
    }

    std::string with_flipped(std::string bytes, std::size_t at)
    {
        bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
        return bytes;
    }

    std::vector<std::size_t> ends; // of the groups in the log; the first one is the start's
    std::string state;
    std::string log;
};

TEST_F(Damage, ALogCutAnywhereHasTheGroupsThatAreWhole)
{
    std::vector<std::size_t> cuts;
    for (std::size_t cut = 0; cut < log.size(); cut += in_memory ? 331 : 4001)
        cuts.push_back(cut);
    for (const std::size_t end : ends)
        for (std::size_t cut = end - 3; cut <= end + 3 && cut <= log.size(); ++cut)
            cuts.push_back(cut);
    for (const std::size_t cut : cuts) {
        SCOPED_TRACE(cut);
        if (cut >= ends.front()) {
            ASSERT_EQ(found_with(log.substr(0, cut)), whole_in(cut));
        } else {
            ASSERT_EQ(found_with(log.substr(0, cut)), "0");
        }
    }
}

TEST_F(Damage, ATornLastGroupIsLeftOut)
{
    const std::size_t begin = ends[groups - 1];
    for (std::size_t at = begin; at < log.size(); at += 509) {
        EXPECT_EQ(found_with(with_flipped(log, at)), std::to_string(groups - 1)) << at;
        std::string zeros = log;
        std::fill(zeros.begin() + static_cast<std::ptrdiff_t>(at), zeros.end(), '\0');
        EXPECT_EQ(found_with(zeros), std::to_string(groups - 1)) << at;
    }
}

TEST_F(Damage, InTheMiddleItIsRefused)
{
    for (std::size_t at = ends[1]; at < ends[groups - 2]; at += 1021) {
        const std::string reason = found_with(with_flipped(log, at));
        EXPECT_NE(reason.find("S.state-wal"), std::string::npos) << reason;
        EXPECT_NE(reason.find("it is damaged from byte "), std::string::npos)
            << at << ": " << reason;
    }
}

TEST_F(Damage, AtTheBeginningOfTheLogItIsRefused)
{
    for (std::size_t at = 0; at < 32; ++at) {
        const std::string reason = found_with(with_flipped(log, at));
        EXPECT_NE(reason.find("its beginning is damaged"), std::string::npos) << reason;
    }
}

TEST_F(Damage, AnywhereInTheFileItIsRefusedOrOfNoConsequence)
{
    // A restart puts all of it into the file.
    const TemporaryFolder folder;
    const fs::path file = journal::state_file(folder.path(), "S");
    write_file(file, state);
    write_file(log_of(file), log);
    {
        KeptRealm realm(folder.path());
    }
    const std::string whole = read_file(file);
    ASSERT_EQ(found_with("", whole), std::to_string(groups));
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); at += in_memory ? 211 : 4099) {
        const std::string found = found_with("", with_flipped(whole, at));
        if (found.find("S.state") != std::string::npos)
            ++refused;
        else
            EXPECT_EQ(found, std::to_string(groups)) << at;
    }
    EXPECT_GT(refused, 0u);
    // A byte within a value, where SQLite itself does not notice.
    const model::Data large = large_of(groups);
    const std::string part(large->begin() + 5000, large->begin() + 5100);
    const std::size_t at = whole.find(part);
    ASSERT_NE(at, std::string::npos);
    const std::string reason = found_with("", with_flipped(whole, at));
    EXPECT_NE(reason.find("a row of table points is damaged"), std::string::npos) << reason;
}

TEST_F(Damage, AnotherProgramsFileIsLeftAlone)
{
    const TemporaryFolder folder;
    const fs::path file = journal::state_file(folder.path(), "S");
    const std::string text(5000, 'x');
    write_file(file, text);
    EXPECT_THROW(KeptRealm(folder.path()), store::StoreError);
    EXPECT_EQ(read_file(file), text);
}

} // namespace
