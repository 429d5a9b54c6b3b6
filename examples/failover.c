/* Failover: of several programs one is master and gives orders to a drive; when it goes,
 * another one takes over, and what the old one still sends is refused.
 *
 *     failover drive                       carries orders out
 *     failover NAME PRIORITY [LEASE_MS]    stands in the group, and orders while it is
 * master; LEASE_MS as the server's --lease (10000)
 *
 * Start the drive and two others; kill the master, or suspend it for longer than a lease.
 */
#define _POSIX_C_SOURCE 200809L

#include <inttypes.h>
#include <signal.h>
#include <string.h>
#include <time.h>

#include "example.h"

enum { DRIVE = 1400 };

static const char group[] = "example drive"; /* the drive's port has this name, too */

struct Order { /* one layout for all: same machine type, fixed sizes */
    uint64_t epoch;
    char from[32];
};

static volatile sig_atomic_t stop;

static void asked_to_stop(int signal)
{
    (void)signal;
    stop = 1;
}

static int64_t now_ms(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (int64_t)now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

static int create_drive(void)
{
    return check("create", there_by_now(vl_create_port(group, DRIVE, 0, NULL, NULL),
                                        OBJECT_ALREADY_EXSIT));
}

/* The drive is what makes it safe: it refuses whoever is master no more. */
static int drive(void)
{
    uint64_t highest = 0; /* has to survive a restart of the drive, if orders can */
    while (!stop) {
        struct Order order;
        const int code =
            vl_receive_packet(DRIVE, NULL, &order, sizeof order, 500, NULL, NULL);
        if (code == TIME_OUT)
            continue;
        if (check("receive", code) != VL_OK)
            return code;
        if (order.epoch > highest)
            printf("follows %s from epoch %" PRIu64 " on\n", order.from, order.epoch);
        if (order.epoch < highest)
            printf("refused %s: its epoch %" PRIu64 " is over\n", order.from, order.epoch);
        else
            highest = order.epoch;
    }
    return VL_OK;
}

/* The epoch of this contender while it is master, else 0: one read, so that it cannot mix
 * what belongs to two masters. */
static uint64_t epoch_of(const char* name)
{
    char point[300];
    char text[21] = "";
    snprintf(point, sizeof point, "$SYS/contention/%s/contenders/%s/token", group, name);
    return vl_get_data_template_point(point, text, sizeof text - 1, NULL, NULL) == VL_OK
               ? strtoull(text, NULL, 10)
               : 0;
}

static int contend(const char* name, int priority, int lease_ms)
{
    const struct timespec third = {lease_ms / 3000, lease_ms / 3 % 1000 * 1000000};
    struct Order order = {0, ""};
    int64_t valid_until = 0;
    snprintf(order.from, sizeof order.from, "%s", name);
    while (!stop) {
        /* The lease counts from before the call: the answer may have taken its time. */
        const int64_t before = now_ms();
        int code = vl_update_contender(group, name, NULL, NULL, NULL);
        if (code == CONTENDER_IS_NUL) /* the first time, or the lease was over */
            code = vl_regist_contender(group, name, NULL, 0, NULL, priority, NULL, NULL);
        if (check("stand", code) == VL_OK)
            valid_until = before + lease_ms;

        const uint64_t epoch = epoch_of(name);
        if (epoch != order.epoch && epoch)
            printf("%s: master, epoch %" PRIu64 "\n", name, epoch);
        else if (epoch != order.epoch)
            printf("%s: not master any more\n", name);
        order.epoch = epoch;
        if (epoch && now_ms() < valid_until)
            check("order", vl_send_packet(DRIVE, &order, sizeof order, 0, NULL, NULL));
        nanosleep(&third, NULL); /* a signal ends it */
    }
    return vl_out_contend(group, name, NULL, NULL,
                          NULL); /* nobody has to wait for the lease */
}

int main(int argc, char** argv)
{
    begin();
    const struct sigaction action = {.sa_handler = asked_to_stop};
    sigaction(SIGINT, &action, NULL);
    sigaction(SIGTERM, &action, NULL);
    const int lease_ms = argc > 3 ? atoi(argv[3]) : 10000;
    if (argc < 2 || (argc == 2 && strcmp(argv[1], "drive") != 0) || lease_ms < 3) {
        fprintf(stderr, "usage: %s drive | NAME PRIORITY [LEASE_MS]\n", argv[0]);
        return 2;
    }
    int code = create_drive();
    if (code == VL_OK)
        code = argc == 2 ? drive() : contend(argv[1], atoi(argv[2]), lease_ms);
    return code == VL_OK ? EXIT_SUCCESS : EXIT_FAILURE;
}
