/* The process, dyld's services, and variables that libraries read. */

#define _GNU_SOURCE

#include "image.h"
#include "loader.h"
#include "shims.h"

#include <errno.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/random.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

static FILE *standard_input, *standard_output, *standard_error;
static uint64_t stack_guard = 0x5AA5C33C00FF1234ULL;

__attribute__((constructor)) static void set_variables(void) {
    standard_input = stdin;
    standard_output = stdout;
    standard_error = stderr;
}

static void stack_was_overrun(void) {
    fprintf(stderr, "macho: stack protector: a buffer on the stack was overrun\n");
    abort();
}

/* Without a program in the loader the host program plays the executable. */
static int path_of_process(int process, char *path, uint32_t capacity) {
    char link[64];
    ssize_t length;
    if (process == getpid() && program_file() != NULL) {
        snprintf(path, capacity, "%s", program_file());
        return (int)strlen(path);
    }
    snprintf(link, sizeof link, "/proc/%d/exe", process);
    length = readlink(link, path, capacity - 1);
    if (length < 0) {
        return 0;
    }
    path[length] = '\0';
    return (int)length;
}

static int get_time(int clock, struct timespec *time) {
    return clock_gettime(clock == 0 ? CLOCK_REALTIME : CLOCK_MONOTONIC, time);
}

static uint32_t random_number(void) {
    uint32_t value = 4;
    return getrandom(&value, sizeof value, 0) == sizeof value ? value : 4;
}

/* The limits that tests set; the numbers up to 4 are the same. */
static __rlimit_resource_t limit_of(int limit) {
    enum { MACOS_OPEN_FILES = 8, LAST_EQUAL = 4 };
    if (limit == MACOS_OPEN_FILES) {
        return RLIMIT_NOFILE;
    }
    return limit <= LAST_EQUAL ? (__rlimit_resource_t)limit : RLIMIT_NLIMITS;
}

static int get_limit(int limit, struct rlimit *value) {
    return getrlimit(limit_of(limit), value);
}

static int set_limit(int limit, const struct rlimit *value) {
    return setrlimit(limit_of(limit), value);
}

/* There is no kernel of macOS to ask. */
static int kernel_value(const char *name, void *value, size_t *size, void *set, size_t set_size) {
    (void)name, (void)value, (void)size, (void)set, (void)set_size;
    errno = ENOENT;
    return -1;
}

static void never_removed(void *function) {
    (void)function;
}

const struct shim shims_system[] = {SHIM("___stdinp", &standard_input),
                                    SHIM("___stdoutp", &standard_output),
                                    SHIM("___stderrp", &standard_error),
                                    SHIM("___stack_chk_guard", &stack_guard),
                                    SHIM("___stack_chk_fail", stack_was_overrun),
                                    SHIM("_proc_pidpath", path_of_process),
                                    SHIM("_clock_gettime", get_time),
                                    SHIM("_arc4random", random_number),
                                    SHIM("_sysctlbyname", kernel_value),
                                    SHIM("_getrlimit", get_limit),
                                    SHIM("_setrlimit", set_limit),
                                    SHIM("_dlopen", macho_dlopen),
                                    SHIM("_dlsym", macho_dlsym),
                                    SHIM("_dlclose", macho_dlclose),
                                    SHIM("_dlerror", macho_dlerror),
                                    SHIM("_dladdr", shim_dladdr),
                                    SHIM("__dyld_find_unwind_sections", shim_find_unwind_sections),
                                    SHIM("__dyld_register_func_for_remove_image", never_removed),
                                    SHIM_END};
