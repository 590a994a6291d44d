/* pthread objects: sizes and static initialisers differ. Each begins with a signature; one that is
 * not ours means that the object was initialised statically. */

#define _GNU_SOURCE

#include "shims.h"

#include <pthread.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <unistd.h>

enum {
    RECURSIVE_INITIALISER = 0x32AAABA2,
    OUR_MUTEX = 0x4D584D58,
    OUR_CONDITION = 0x434F4E44,
    OUR_ONCE = 0x4F4E4345,
    OUR_LOCK = 0x52574C4B,
    MACOS_RECURSIVE = 2,
    SECONDARY_STACK = 512 * 1024
};

struct macos_mutex {
    long signature;
    pthread_mutex_t mutex; /* 40 of 56 bytes */
};

struct macos_condition {
    long signature;
    pthread_cond_t *condition; /* ours has 48 bytes, theirs 40 */
};

struct macos_once {
    long signature;
};

struct macos_lock {
    long signature;
    pthread_rwlock_t lock; /* 56 of 192 bytes */
};

static pthread_mutex_t *mutex_of(struct macos_mutex *mutex) {
    if (mutex->signature != OUR_MUTEX) {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        if (mutex->signature == RECURSIVE_INITIALISER) {
            pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        }
        pthread_mutex_init(&mutex->mutex, &attributes);
        mutex->signature = OUR_MUTEX;
    }
    return &mutex->mutex;
}

static int mutex_init(struct macos_mutex *mutex, const pthread_mutexattr_t *attributes) {
    mutex->signature = OUR_MUTEX;
    return errno_to_macos(pthread_mutex_init(&mutex->mutex, attributes));
}

static int mutex_destroy(struct macos_mutex *mutex) {
    mutex->signature = 0;
    return 0;
}

static int mutex_lock(struct macos_mutex *mutex) {
    return errno_to_macos(pthread_mutex_lock(mutex_of(mutex)));
}

static int mutex_trylock(struct macos_mutex *mutex) {
    return errno_to_macos(pthread_mutex_trylock(mutex_of(mutex)));
}

static int mutex_unlock(struct macos_mutex *mutex) {
    return errno_to_macos(pthread_mutex_unlock(mutex_of(mutex)));
}

static int set_mutex_type(pthread_mutexattr_t *attributes, int type) {
    return pthread_mutexattr_settype(attributes, type == MACOS_RECURSIVE ? PTHREAD_MUTEX_RECURSIVE
                                                                         : PTHREAD_MUTEX_NORMAL);
}

static pthread_cond_t *condition_of(struct macos_condition *condition) {
    if (condition->signature != OUR_CONDITION) {
        condition->condition = calloc(1, sizeof *condition->condition);
        condition->signature = OUR_CONDITION;
    }
    return condition->condition;
}

static int condition_wait(struct macos_condition *condition, struct macos_mutex *mutex) {
    return errno_to_macos(pthread_cond_wait(condition_of(condition), mutex_of(mutex)));
}

static int condition_wait_until(struct macos_condition *condition, struct macos_mutex *mutex,
                                const struct timespec *end) {
    return errno_to_macos(pthread_cond_timedwait(condition_of(condition), mutex_of(mutex), end));
}

static int condition_signal(struct macos_condition *condition) {
    return pthread_cond_signal(condition_of(condition));
}

static int condition_broadcast(struct macos_condition *condition) {
    return pthread_cond_broadcast(condition_of(condition));
}

static int condition_destroy(struct macos_condition *condition) {
    if (condition->signature == OUR_CONDITION) {
        free(condition->condition);
    }
    condition->signature = 0;
    return 0;
}

static int once(struct macos_once *state, void (*function)(void)) {
    static pthread_mutex_t all = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
    pthread_mutex_lock(&all);
    if (state->signature != OUR_ONCE) {
        function();
        state->signature = OUR_ONCE;
    }
    pthread_mutex_unlock(&all);
    return 0;
}

static int key_create(unsigned long *key, void (*destroy)(void *)) {
    pthread_key_t created;
    int result = pthread_key_create(&created, destroy);
    *key = created;
    return errno_to_macos(result);
}

static int key_delete(unsigned long key) {
    return errno_to_macos(pthread_key_delete((pthread_key_t)key));
}

static void *get_specific(unsigned long key) {
    return pthread_getspecific((pthread_key_t)key);
}

static int set_specific(unsigned long key, const void *value) {
    return pthread_setspecific((pthread_key_t)key, value);
}

/* libc++abi tells by it whether a thread initialises a static object twice. */
static uint32_t thread_number(pthread_t thread) {
    (void)thread;
    return (uint32_t)syscall(SYS_gettid);
}

static pthread_rwlock_t *lock_of(struct macos_lock *lock) {
    if (lock->signature != OUR_LOCK) {
        pthread_rwlock_init(&lock->lock, NULL);
        lock->signature = OUR_LOCK;
    }
    return &lock->lock;
}

static int lock_to_read(struct macos_lock *lock) {
    return errno_to_macos(pthread_rwlock_rdlock(lock_of(lock)));
}

static int lock_to_write(struct macos_lock *lock) {
    return errno_to_macos(pthread_rwlock_wrlock(lock_of(lock)));
}

static int unlock(struct macos_lock *lock) {
    return errno_to_macos(pthread_rwlock_unlock(lock_of(lock)));
}

/* The objects have space for ours; a thread that is made without one has glibc's default. */
static int attributes_init(pthread_attr_t *attributes) {
    const int result = pthread_attr_init(attributes);
    return result != 0 ? result : pthread_attr_setstacksize(attributes, SECONDARY_STACK);
}

const struct shim shims_threads[] = {SHIM("_pthread_mutex_init", mutex_init),
                                     SHIM("_pthread_mutex_destroy", mutex_destroy),
                                     SHIM("_pthread_mutex_lock", mutex_lock),
                                     SHIM("_pthread_mutex_trylock", mutex_trylock),
                                     SHIM("_pthread_mutex_unlock", mutex_unlock),
                                     SHIM("_pthread_mutexattr_init", pthread_mutexattr_init),
                                     SHIM("_pthread_mutexattr_destroy", pthread_mutexattr_destroy),
                                     SHIM("_pthread_mutexattr_settype", set_mutex_type),
                                     SHIM("_pthread_cond_wait", condition_wait),
                                     SHIM("_pthread_cond_timedwait", condition_wait_until),
                                     SHIM("_pthread_cond_signal", condition_signal),
                                     SHIM("_pthread_cond_broadcast", condition_broadcast),
                                     SHIM("_pthread_cond_destroy", condition_destroy),
                                     SHIM("_pthread_once", once),
                                     SHIM("_pthread_key_create", key_create),
                                     SHIM("_pthread_key_delete", key_delete),
                                     SHIM("_pthread_getspecific", get_specific),
                                     SHIM("_pthread_setspecific", set_specific),
                                     SHIM("_pthread_self", pthread_self),
                                     SHIM("_pthread_equal", pthread_equal),
                                     SHIM("_pthread_create", pthread_create),
                                     SHIM("_pthread_attr_init", attributes_init),
                                     SHIM("_pthread_attr_destroy", pthread_attr_destroy),
                                     SHIM("_pthread_attr_getstacksize", pthread_attr_getstacksize),
                                     SHIM("_pthread_attr_setstacksize", pthread_attr_setstacksize),
                                     SHIM("_pthread_exit", pthread_exit),
                                     SHIM("_pthread_join", pthread_join),
                                     SHIM("_pthread_detach", pthread_detach),
                                     SHIM("_pthread_mach_thread_np", thread_number),
                                     SHIM("_pthread_rwlock_rdlock", lock_to_read),
                                     SHIM("_pthread_rwlock_wrlock", lock_to_write),
                                     SHIM("_pthread_rwlock_unlock", unlock),
                                     SHIM_END};
