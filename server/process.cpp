#include "server/process.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <algorithm>
#include <bitset>
#include <ctime>

namespace velmo::server {

namespace {

constexpr int descriptors_known = 65536;
std::bitset<descriptors_known> open_at_start;

// No more than system calls: libraries have not been initialised yet.
void look_at_descriptors(int, char**, char**)
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", O_RDWR); // gets this number, the first free one
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const auto end = std::min<rlim_t>(limit.rlim_cur, descriptors_known);
    for (int descriptor = 0; descriptor < static_cast<int>(end); ++descriptor)
        if (fcntl(descriptor, F_GETFD) >= 0)
            open_at_start.set(static_cast<std::size_t>(descriptor));
}

// Runs before the initialisers of shared libraries, some of which open pipes.
[[gnu::section(".preinit_array"),
  gnu::used]] void (*const first_of_all)(int, char**, char**) = look_at_descriptors;

} // namespace

bool is_given_for_writing(int descriptor)
{
    if (descriptor < 0 || descriptor >= descriptors_known ||
        !open_at_start.test(static_cast<std::size_t>(descriptor)))
        return false;
    const int flags = fcntl(descriptor, F_GETFL);
    return flags >= 0 && (flags & O_ACCMODE) != O_RDONLY;
}

void raise_descriptor_limit()
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

void keep_freed_memory()
{
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread yet
    mallopt(M_MMAP_THRESHOLD, 4 << 20); // larger blocks are given back at once
    mallopt(M_TRIM_THRESHOLD, 32 << 20);
    // NOLINTEND(concurrency-mt-unsafe)
}

void notify_ready(const std::string& status)
{
    sd_notifyf(0, "READY=1\nSTATUS=%s\nMAINPID=%ld", status.c_str(),
               static_cast<long>(getpid()));
}

void notify_reloading()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const long long microseconds = now.tv_sec * 1000000ll + now.tv_nsec / 1000;
    sd_notifyf(0, "RELOADING=1\nMONOTONIC_USEC=%lld\nSTATUS=Reading the configuration",
               microseconds);
}

void notify_stopping()
{
    sd_notify(0, "STOPPING=1\nSTATUS=Stopping");
}

} // namespace velmo::server
