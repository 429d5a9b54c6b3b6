/* Both headers in one C11 program, whichever comes first. */
#include "vl_util.h"
#include "vl_api.h"
#include "vl_util.h"

#include <stdio.h>

#include "tests/util/vl_util_from_c.h"

int print_servers_from_c(const char* path, char* text, unsigned int size)
{
    vl_settings* settings = vl_settings_open(path);
    const int count = vl_settings_error(settings) ? -1 : vl_settings_server_count(settings);
    unsigned int used = 0;
    text[0] = '\0';
    for (int i = 0; i < count; ++i) {
        vl_settings_server server;
        if (vl_settings_get_server(settings, i, &server) == VL_OK && used < size)
            used += (unsigned int)snprintf(text + used, size - used, "%s=%s ", server.name,
                                           server.naming_url);
    }
    vl_settings_close(settings);
    return count;
}
