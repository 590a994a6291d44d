/* Dispatch queues and groups, as far as a program uses them to call a function on the stack of a
 * queue: a thread for each call, with the stack that such threads have on macOS. */

#define _GNU_SOURCE

#include "shims.h"

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>

enum { QUEUE_STACK = 512 * 1024, MAX_CALLS = 16 };

struct call {
    void (*function)(void *);
    void *argument;
};

/* A queue and a group are the same here; a queue has no calls. */
struct group {
    int count;
    pthread_t threads[MAX_CALLS];
    struct call calls[MAX_CALLS];
};

static void *run(void *argument) {
    const struct call *call = argument;
    call->function(call->argument);
    return NULL;
}

static void *group_create(void) {
    return calloc(1, sizeof(struct group));
}

static void *queue_create(const char *label, void *attributes) {
    (void)label, (void)attributes;
    return group_create();
}

static void group_async(struct group *group, void *queue, void *argument,
                        void (*function)(void *)) {
    pthread_attr_t attributes;
    struct call *call = &group->calls[group->count];
    (void)queue;
    if (group->count == MAX_CALLS) {
        abort();
    }
    call->function = function;
    call->argument = argument;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, QUEUE_STACK);
    if (pthread_create(&group->threads[group->count], &attributes, run, call) != 0) {
        abort();
    }
    ++group->count;
    pthread_attr_destroy(&attributes);
}

/* There is always enough time. */
static long group_wait(struct group *group, uint64_t end) {
    (void)end;
    while (group->count > 0) {
        pthread_join(group->threads[--group->count], NULL);
    }
    return 0;
}

const struct shim shims_dispatch[] = {SHIM("_dispatch_queue_create", queue_create),
                                      SHIM("_dispatch_group_create", group_create),
                                      SHIM("_dispatch_group_async_f", group_async),
                                      SHIM("_dispatch_group_wait", group_wait),
                                      SHIM("_dispatch_release", free),
                                      SHIM_END};
