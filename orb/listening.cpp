#include "orb/listening.h"

#include <sys/socket.h>

#include <cstdlib>
#include <filesystem>

namespace velmo::orb {

namespace {

bool listens(int descriptor)
{
    int answer = 0;
    socklen_t length = sizeof answer;
    return getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &answer, &length) == 0 &&
           answer != 0;
}

} // namespace

void lengthen_queues()
{
    std::error_code ignored;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
        const auto descriptor =
            static_cast<int>(std::strtol(entry.path().filename().c_str(), nullptr, 10));
        if (listens(descriptor))
            listen(descriptor, SOMAXCONN); // once more, for the number alone
    }
}

} // namespace velmo::orb
