// One process at a time.
#ifndef VELMO_SERVER_JOURNAL_FILE_LOCK_H
#define VELMO_SERVER_JOURNAL_FILE_LOCK_H

#include <filesystem>

namespace velmo::journal {

// Holds a file for this object alone, of all processes of this host. The file stays; the
// lock goes with the process at the latest.
class FileLock {
public:
    // Creates the file if it is not there. Throws store::StoreError when another one has
    // the lock.
    explicit FileLock(const std::filesystem::path& file);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int descriptor;
};

} // namespace velmo::journal

#endif
