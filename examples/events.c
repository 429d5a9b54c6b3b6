/* Events: something that happens, counted, with the data of the last time.
 *
 *     events raise REASON...  raises the event once for each reason
 *     events follow COUNT     shows what happens, until it has happened COUNT times since
 *                             the event was added
 */
#define _POSIX_C_SOURCE 200809L

#include <string.h>
#include <time.h>

#include "example.h"

enum { STOPPED = 1300 }; /* the number of this kind of event, agreed on by everybody */

static const char event[] = "example pump stopped";

/* Whoever comes first declares and adds it; for the others it is there already. */
static int set_up(void)
{
    const char usual[] = "no reason";
    int code =
        check("declare",
              there_by_now(vl_declare_event(STOPPED, usual, (int)strlen(usual), NULL, NULL),
                           OBJECT_ALREADY_EXSIT));
    if (code == VL_OK)
        code = check("add", there_by_now(vl_add_event(event, STOPPED, NULL, NULL),
                                         OBJECT_ALREADY_EXSIT));
    return code;
}

/* Nobody is called back for an event: who follows one looks at its count. */
static int follow(int until)
{
    const struct timespec pause = {0, 50 * 1000 * 1000};
    int seen = 0;
    while (seen < until) {
        int count = 0;
        int code = check("count", vl_event_count(event, &count, NULL, NULL));
        if (code != VL_OK)
            return code;
        if (count == seen) {
            nanosleep(&pause, NULL);
            continue;
        }
        /* The data are a point of the server's own, and never older than the count. Those
         * of the times in between are gone: where each matters, send packets. */
        char reason[256] = "";
        code = check("read",
                     vl_get_data_template_point("$SYS/events/example pump stopped/data",
                                                reason, sizeof reason - 1, NULL, NULL));
        if (code != VL_OK)
            return code;
        printf("happened %d times, the last time because of: %s\n", count, reason);
        seen = count;
    }
    return VL_OK;
}

int main(int argc, char** argv)
{
    begin();
    const int raise = argc > 2 && strcmp(argv[1], "raise") == 0;
    const int until = argc == 3 && strcmp(argv[1], "follow") == 0 ? atoi(argv[2]) : 0;
    if (!raise && until < 1) {
        fprintf(stderr, "usage: %s raise REASON... | follow COUNT\n", argv[0]);
        return 2;
    }
    int code = set_up();
    if (code == VL_OK && !raise)
        code = follow(until);
    for (int i = 2; i < argc && code == VL_OK && raise; i++)
        code =
            check("raise", vl_send_event(event, argv[i], (int)strlen(argv[i]), NULL, NULL));
    return code == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
