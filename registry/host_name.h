#ifndef VELMO_REGISTRY_HOST_NAME_H
#define VELMO_REGISTRY_HOST_NAME_H

#include <cstddef>

constexpr std::size_t host_name_size = 256;

// The local host's name, NUL-terminated. When the system gives none, errno says
// why and the buffer holds "".
void local_host_name(char (&name)[host_name_size]);

#endif
