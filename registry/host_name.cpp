#include "registry/host_name.h"

#include <cerrno>

#include <ace/OS_NS_unistd.h>

#if defined(_WIN32)
#include <windows.h>
#endif

void local_host_name(char (&name)[host_name_size])
{
    name[0] = '\0';
    if (ACE_OS::hostname(name, host_name_size) != 0) {
        name[0] = '\0';
#if defined(_WIN32)
        // gethostname() needs the socket library to have been started.
        DWORD size = host_name_size;
        if (!GetComputerNameA(name, &size))
            errno = static_cast<int>(GetLastError());
#endif
    }
    name[host_name_size - 1] = '\0'; // a longer name is cut without one
}
