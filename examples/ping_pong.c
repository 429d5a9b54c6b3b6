/* Two ports exchange packets and replies through a Velmo server.
 *
 *     ping_pong ping [COUNT]   sends COUNT packets (3) and collects the replies
 *     ping_pong pong [COUNT]   receives COUNT packets (3) and answers each
 *     ping_pong [COUNT]        both in one process, in turn
 *
 * Start "pong" and "ping" in two processes, in either order. The server is the one
 * that the settings name as this host's own; without settings, "0000" on this host.
 */
#include <string.h>

#include "example.h"

enum { PING = 1001, PONG = 1002, CONNECT_PLAINLY = 30001, WAIT_MS = 10000 };

static int set_up(void)
{
    int code =
        check("create ping", there_by_now(vl_create_port("ping", PING, 0, NULL, NULL),
                                          OBJECT_ALREADY_EXSIT));
    if (code == VL_OK)
        code =
            check("create pong", there_by_now(vl_create_port("pong", PONG, 0, NULL, NULL),
                                              OBJECT_ALREADY_EXSIT));
    if (code == VL_OK)
        code = check("connect ping to pong",
                     there_by_now(vl_connect_port("ping", "pong", CONNECT_PLAINLY, 0, "",
                                                  NULL, NULL),
                                  ALREADY_CONNECTED));
    return code;
}

static int send_ping(int number)
{
    char text[32];
    const int length = snprintf(text, sizeof text, "ping %d", number);
    const int code = check("send", vl_send_packet(PING, text, length, WAIT_MS, NULL, NULL));
    if (code == VL_OK)
        printf("ping: sent \"%s\"\n", text);
    return code;
}

static int answer_ping(void)
{
    void* data = NULL;
    unsigned int length = 0;
    char text[64];
    int code = check("receive",
                     vl_receive_packetv(PONG, NULL, &data, &length, WAIT_MS, NULL, NULL));
    if (code != VL_OK)
        return code;
    printf("pong: received \"%.*s\"\n", (int)length, (const char*)data);
    const int size =
        snprintf(text, sizeof text, "pong to \"%.*s\"", (int)length, (const char*)data);
    vl_free_memory(&data);
    return check("reply", vl_reply_packet(PONG, text, size, WAIT_MS, NULL, NULL));
}

static int collect_pong(void)
{
    void* data = NULL;
    unsigned int length = 0;
    const int code = check("receive reply",
                           vl_receive_reply2(PING, &data, &length, WAIT_MS, NULL, NULL));
    if (code != VL_OK)
        return code;
    printf("ping: the reply is: %.*s\n", (int)length, (const char*)data);
    vl_free_memory(&data);
    return VL_OK;
}

int main(int argc, char** argv)
{
    const int ping = argc > 1 && strcmp(argv[1], "ping") == 0;
    const int pong = argc > 1 && strcmp(argv[1], "pong") == 0;
    const char* argument =
        ping || pong ? (argc > 2 ? argv[2] : "3") : (argc > 1 ? argv[1] : "3");
    char* end = NULL;
    const long count = strtol(argument, &end, 10);
    if (count < 1 || *end != '\0') {
        fprintf(stderr, "usage: %s [ping|pong] [COUNT]\n", argv[0]);
        return 2;
    }

    begin();
    int code = set_up();
    for (long i = 1; i <= count && code == VL_OK; ++i) {
        if (!pong)
            code = send_ping((int)i);
        if (!ping && code == VL_OK)
            code = answer_ping();
        if (!pong && code == VL_OK)
            code = collect_pong();
    }
    return code == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
