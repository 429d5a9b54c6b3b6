#include "vl_api.h"

#include "tests/api/record_layouts.h"

/* The header in use, as a C program has it. */
extern int vl_api_from_c(ConnectionList* list);

int vl_api_from_c(ConnectionList* list)
{
    const ServerRecord own = vl_get_servername("own");
    vl_destory_connection_seq(list);
    return own.count > 0 ? vl_mid_connect(own.names[0]) : NULL_SERVER_NAME;
}
