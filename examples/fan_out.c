/* One sender, several receivers: each gets a copy, or each packet goes to one of them.
 *
 *     fan_out
 *
 * All ports are used by one process here; usually each belongs to another.
 */
#include <string.h>

#include "example.h"

enum { NEWS = 1200, READERS = 3, CONNECT_PLAINLY = 30001 };

static const char* const readers[READERS] = {"example reader 1", "example reader 2",
                                             "example reader 3"};

static int set_up(void)
{
    int code = check("create news",
                     there_by_now(vl_create_port("example news", NEWS, 0, NULL, NULL),
                                  OBJECT_ALREADY_EXSIT));
    for (unsigned int i = 0; i < READERS && code == VL_OK; i++) {
        code = check("create",
                     there_by_now(vl_create_port(readers[i], NEWS + 1 + i, 0, NULL, NULL),
                                  OBJECT_ALREADY_EXSIT));
        if (code == VL_OK)
            code = check("connect",
                         there_by_now(vl_connect_port("example news", readers[i],
                                                      CONNECT_PLAINLY, 0, "", NULL, NULL),
                                      ALREADY_CONNECTED));
    }
    return code;
}

/* Who is connected to whom: a list of the library's, freed as a whole. */
static int show_connections(void)
{
    ConnectionList list;
    const int code = check("list", vl_get_connection_info(&list, NULL, NULL));
    if (code == VL_OK)
        for (const ConnectionBlock* block = list.first; block; block = block->next)
            if (strcmp(block->first_text, "example news") == 0)
                printf("%s -> %s\n", block->first_text, block->second_text);
    vl_destory_connection_seq(&list);
    return code;
}

static int send(const char* text)
{
    /* When one receiver has no room nobody gets the packet; 0: we do not wait for it. */
    return check("send", vl_send_packet(NEWS, text, (int)strlen(text), 0, NULL, NULL));
}

/* What every reader has by now. */
static int show_readers(void)
{
    for (unsigned int i = 0; i < READERS; i++) {
        int code;
        printf("%s:", readers[i]);
        for (;;) {
            void* data = NULL;
            unsigned int length = 0;
            code = vl_receive_packetv(NEWS + 1 + i, NULL, &data, &length, 0, NULL, NULL);
            if (code != VL_OK)
                break;
            printf(" %.*s", (int)length, (char*)data);
            vl_free_memory(&data);
        }
        printf("\n");
        if (code != EMPTY_QUEUE)
            return check("receive", code);
    }
    return VL_OK;
}

/* copies: 1 for each reader a copy, 0 for each packet one reader. */
static int deliver(unsigned int copies)
{
    int code = check("choose", enableCopy("example news", copies, NULL, NULL));
    if (code == VL_OK)
        code = send("one");
    if (code == VL_OK)
        code = send("two");
    if (code == VL_OK)
        code = send("three");
    return code == VL_OK ? show_readers() : code;
}

int main(void)
{
    begin();
    int code = set_up();
    if (code == VL_OK)
        code = show_connections();
    if (code == VL_OK)
        code = deliver(1);
    if (code == VL_OK) {
        printf("and now in turn\n");
        code = deliver(0);
    }
    return code == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
