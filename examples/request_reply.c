/* Requests and replies: a service that several clients ask.
 *
 *     request_reply serve              answers requests in capitals, until one says "stop"
 *     request_reply ask CLIENT TEXT... sends each text and shows the reply; CLIENT is a
 *                                      number from 1 to 99, another one for each client
 *
 * Replies carry no number: a reply goes to the port that sent the oldest packet which was
 * received and not answered yet. So every client has a port of its own, and one program
 * answers.
 */
#include <ctype.h>
#include <string.h>

#include "example.h"

enum { SERVICE = 1100, CONNECT_PLAINLY = 30001, WAIT_MS = 10000 };

static int create(const char* port, unsigned int handle)
{
    return check(port, there_by_now(vl_create_port(port, handle, 0, NULL, NULL),
                                    OBJECT_ALREADY_EXSIT));
}

static int serve(void)
{
    int stop = 0;
    int code = create("example service", SERVICE);
    while (code == VL_OK && !stop) {
        void* data = NULL;
        unsigned int length = 0;
        code = vl_receive_packetv(SERVICE, NULL, &data, &length, WAIT_MS, NULL, NULL);
        if (code == TIME_OUT) { /* nobody asks: no reason to give up */
            code = VL_OK;
            continue;
        }
        if (check("receive", code) != VL_OK)
            break;
        char* text = data; /* the block is ours: it may be changed */
        stop = length == 4 && memcmp(text, "stop", 4) == 0;
        printf("asked: %.*s\n", (int)length, text);
        for (unsigned int i = 0; i < length; i++)
            text[i] = (char)toupper((unsigned char)text[i]);
        /* A client that has gone loses its reply: that does not concern the others. */
        check("reply", vl_reply_packet(SERVICE, text, (int)length, WAIT_MS, NULL, NULL));
        vl_free_memory(&data);
    }
    return code;
}

static int ask(unsigned int client, const char* text)
{
    void* data = NULL;
    unsigned int length = 0;
    int code =
        check("send", vl_send_packet(client, text, (int)strlen(text), WAIT_MS, NULL, NULL));
    if (code == VL_OK)
        code = check("receive the reply",
                     vl_receive_reply2(client, &data, &length, WAIT_MS, NULL, NULL));
    if (code != VL_OK)
        return code;
    printf("answer: %.*s\n", (int)length, (char*)data);
    vl_free_memory(&data);
    return VL_OK;
}

/* Either program may be the first: both create both ports. */
static int connect_client(unsigned int number, unsigned int handle)
{
    char name[32];
    snprintf(name, sizeof name, "example client %u", number);
    int code = create(name, handle);
    if (code == VL_OK)
        code = create("example service", SERVICE);
    if (code == VL_OK)
        code = check("connect",
                     there_by_now(vl_connect_port(name, "example service", CONNECT_PLAINLY,
                                                  0, "", NULL, NULL),
                                  ALREADY_CONNECTED));
    return code;
}

int main(int argc, char** argv)
{
    begin();
    const int number = argc > 3 ? atoi(argv[2]) : 0;
    if (argc == 2 && strcmp(argv[1], "serve") == 0)
        return serve() == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
    if (number < 1 || number > 99 || strcmp(argv[1], "ask") != 0) {
        fprintf(stderr, "usage: %s serve | ask CLIENT TEXT...\n", argv[0]);
        return 2;
    }
    const unsigned int handle = SERVICE + (unsigned int)number;
    int code = connect_client((unsigned int)number, handle);
    for (int i = 3; i < argc && code == VL_OK; i++)
        code = ask(handle, argv[i]);
    return code == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
