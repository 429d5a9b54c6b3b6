#include "server/journal/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "server/store/database.h"

namespace velmo::journal {

FileLock::FileLock(const std::filesystem::path& file)
    : descriptor(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600))
{
    if (descriptor >= 0 && flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return;
    const int error = errno;
    if (descriptor >= 0)
        close(descriptor);
    throw store::StoreError(file,
                            error == EWOULDBLOCK
                                ? "another velmod of this name keeps its state here"
                                : std::generic_category().message(error),
                            "lock file");
}

FileLock::~FileLock()
{
    close(descriptor);
}

} // namespace velmo::journal
