/* Signals: most numbers differ, a set is a 32-bit mask, and struct sigaction has another layout. */

#define _GNU_SOURCE

#include "shims.h"

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

enum { SIGNALS = 32, MACOS_RESTART = 0x2, MACOS_RESETHAND = 0x4, MACOS_NOCLDSTOP = 0x8 };

/* The numbers that differ; Linux has no SIGEMT and no SIGINFO. */
static const struct {
    int macos_number, linux_number;
} numbers[] = {{7, 0},        {10, SIGBUS},  {12, SIGSYS},  {16, SIGURG},
               {17, SIGSTOP}, {18, SIGTSTP}, {19, SIGCONT}, {20, SIGCHLD},
               {23, SIGIO},   {29, 0},       {30, SIGUSR1}, {31, SIGUSR2}};

static int signal_to_linux(int number) {
    size_t i;
    for (i = 0; i < sizeof numbers / sizeof numbers[0]; ++i) {
        if (numbers[i].macos_number == number) {
            return numbers[i].linux_number;
        }
    }
    return number;
}

static int signal_to_macos(int number) {
    int i;
    for (i = 1; i < SIGNALS; ++i) {
        if (signal_to_linux(i) == number) {
            return i;
        }
    }
    return number;
}

void shim_signal_set(uint32_t mask, sigset_t *set) {
    int i;
    sigemptyset(set);
    for (i = 1; i < SIGNALS; ++i) {
        if ((mask >> (i - 1) & 1U) != 0 && signal_to_linux(i) != 0) {
            sigaddset(set, signal_to_linux(i));
        }
    }
}

static uint32_t mask_of(const sigset_t *set) {
    uint32_t mask = 0;
    int i;
    for (i = 1; i < SIGNALS; ++i) {
        if (signal_to_linux(i) != 0 && sigismember(set, signal_to_linux(i)) == 1) {
            mask |= 1U << (i - 1);
        }
    }
    return mask;
}

struct macos_action {
    void (*handler)(int);
    uint32_t mask;
    int flags;
};

static void (*handlers[_NSIG])(int);

static void deliver(int number) {
    handlers[number](signal_to_macos(number));
}

static int is_handler(void (*handler)(int)) {
    return handler != SIG_DFL && handler != SIG_IGN;
}

static int set_action(int number, const struct macos_action *wanted, struct macos_action *before) {
    const int ours = signal_to_linux(number);
    struct sigaction in = {0};
    struct sigaction out = {0};
    void (*former)(int);
    if (ours <= 0 || ours >= _NSIG) {
        errno = EINVAL;
        return -1;
    }
    former = handlers[ours];
    if (wanted != NULL) {
        in.sa_handler = is_handler(wanted->handler) ? deliver : wanted->handler;
        shim_signal_set(wanted->mask, &in.sa_mask);
        in.sa_flags = (wanted->flags & MACOS_RESTART ? SA_RESTART : 0) |
                      (wanted->flags & MACOS_RESETHAND ? (int)SA_RESETHAND : 0) |
                      (wanted->flags & MACOS_NOCLDSTOP ? SA_NOCLDSTOP : 0);
        handlers[ours] = wanted->handler;
    }
    if (sigaction(ours, wanted != NULL ? &in : NULL, &out) != 0) {
        handlers[ours] = former;
        return -1;
    }
    if (before != NULL) {
        before->handler = out.sa_handler == deliver ? former : out.sa_handler;
        before->mask = mask_of(&out.sa_mask);
        before->flags = (out.sa_flags & SA_RESTART ? MACOS_RESTART : 0) |
                        (out.sa_flags & (int)SA_RESETHAND ? MACOS_RESETHAND : 0) |
                        (out.sa_flags & SA_NOCLDSTOP ? MACOS_NOCLDSTOP : 0);
    }
    return 0;
}

static void (*set_handler(int number, void (*handler)(int)))(int) {
    const struct macos_action wanted = {handler, 0, MACOS_RESTART};
    struct macos_action before = {0};
    return set_action(number, &wanted, &before) == 0 ? before.handler : SIG_ERR;
}

/* SIG_BLOCK, SIG_UNBLOCK and SIG_SETMASK are 1, 2 and 3 on macOS, 0, 1 and 2 on Linux. */
static int thread_mask(int how, const uint32_t *mask, uint32_t *before) {
    sigset_t in;
    sigset_t out;
    int error;
    if (mask != NULL) {
        shim_signal_set(*mask, &in);
    }
    error = pthread_sigmask(how - 1, mask != NULL ? &in : NULL, &out);
    if (error == 0 && before != NULL) {
        *before = mask_of(&out);
    }
    return errno_to_macos(error);
}

static int process_mask(int how, const uint32_t *mask, uint32_t *before) {
    return thread_mask(how, mask, before) == 0 ? 0 : -1;
}

static int kill_process(pid_t process, int number) {
    return kill(process, signal_to_linux(number));
}

static int raise_signal(int number) {
    return raise(signal_to_linux(number));
}

/* The status has the same layout on both systems, but the number of a signal in it differs. */
static int status_to_macos(int status) {
    return WIFSIGNALED(status) ? (status & ~0x7F) | signal_to_macos(WTERMSIG(status)) : status;
}

static pid_t wait_for_process(pid_t process, int *status, int options) {
    int ours = 0;
    const pid_t ended = waitpid(process, &ours, options);
    if (ended > 0 && status != NULL) {
        *status = status_to_macos(ours);
    }
    return ended;
}

static int run_by_shell(const char *command) {
    return status_to_macos(system(command));
}

struct macos_timer {
    struct {
        int64_t seconds;
        int32_t microseconds;
    } interval, value;
};

/* The numbers of the timers are the same. */
static int set_timer(int which, const struct macos_timer *wanted, struct macos_timer *before) {
    const struct itimerval in = {{wanted->interval.seconds, wanted->interval.microseconds},
                                 {wanted->value.seconds, wanted->value.microseconds}};
    struct itimerval out = {{0, 0}, {0, 0}};
    const int result = setitimer((__itimer_which_t)which, &in, &out);
    if (before != NULL) {
        before->interval.seconds = out.it_interval.tv_sec;
        before->interval.microseconds = (int32_t)out.it_interval.tv_usec;
        before->value.seconds = out.it_value.tv_sec;
        before->value.microseconds = (int32_t)out.it_value.tv_usec;
    }
    return result;
}

static pid_t wait_for_any(int *status) {
    return wait_for_process(-1, status, 0);
}

const struct shim shims_signals[] = {
    SHIM("_sigaction", set_action),        SHIM("_signal", set_handler),
    SHIM("_pthread_sigmask", thread_mask), SHIM("_sigprocmask", process_mask),
    SHIM("_kill", kill_process),           SHIM("_raise", raise_signal),
    SHIM("_waitpid", wait_for_process),    SHIM("_wait", wait_for_any),
    SHIM("_system", run_by_shell),         SHIM("_alarm", alarm),
    SHIM("_setitimer", set_timer),         SHIM_END};
