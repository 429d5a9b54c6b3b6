// Groups of changes, each of which is on the disk as a whole or not at all; and the files
// that they are in.
#ifndef VELMO_TESTS_SERVER_JOURNAL_GROUPS_H
#define VELMO_TESTS_SERVER_JOURNAL_GROUPS_H

#include <fstream>
#include <iterator>
#include <string>

#include "tests/server/journal/kept_realm.h"

namespace velmo::tests {

// What the point "large" has after a group: several pages that no other group has.
inline model::Data large_of(int group)
{
    return binary(9000, static_cast<std::size_t>(group));
}

// Makes the group's number the text of the point "p", and writes "large" with it; whether
// that is on the disk.
inline bool write_group(KeptRealm& realm, int group)
{
    std::string problem;
    return realm->points.restore({{"p", "text", "", bytes_of(std::to_string(group))},
                                  {"large", "bytes", "", large_of(group)}},
                                 problem) == VL_OK &&
           realm.confirmed();
}

// The write-ahead log of a state file.
inline std::filesystem::path log_of(const std::filesystem::path& state_file)
{
    return state_file.string() + "-wal";
}

inline std::string read_file(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void write_file(const std::filesystem::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

} // namespace velmo::tests

#endif
