// A disk that is soon full.
#ifndef VELMO_TESTS_SERVER_SMALL_DISK_H
#define VELMO_TESTS_SERVER_SMALL_DISK_H

#include <sched.h>
#include <sys/mount.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace velmo::tests {

// A file system of a few megabytes. Only this process sees it; it goes with it at the
// latest.
class SmallDisk {
public:
    SmallDisk()
        : mounted(unshare(CLONE_NEWNS) == 0 &&
                  mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                  mount("tmpfs", path().c_str(), "tmpfs", 0, "size=4m") == 0)
    {
    }
    ~SmallDisk()
    {
        if (mounted)
            umount2(path().c_str(), MNT_DETACH);
    }

    bool available() const { return mounted; } // only root may mount
    const std::filesystem::path& path() const { return folder.path(); }

    void make_read_only()
    {
        ASSERT_EQ(mount("tmpfs", path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr),
                  0);
    }

private:
    TemporaryFolder folder;
    bool mounted;
};

} // namespace velmo::tests

#endif
