#define _GNU_SOURCE

#include "shims.h"

#include <errno.h>
#include <stddef.h>
#include <string.h>

static const struct {
    int linux_number, macos_number;
} numbers[] = {{EAGAIN, 35},    {EDEADLK, 11},   {EINPROGRESS, 36},  {EALREADY, 37},
               {ENOTSOCK, 38},  {EMSGSIZE, 40},  {ENOTSUP, 45},      {ENOBUFS, 55},
               {ETIMEDOUT, 60}, {ELOOP, 62},     {ENAMETOOLONG, 63}, {ENOTEMPTY, 66},
               {EDQUOT, 69},    {ESTALE, 70},    {ENOLCK, 77},       {ENOSYS, 78},
               {EOVERFLOW, 84}, {ECANCELED, 89}, {EIDRM, 90},        {ENOMSG, 91},
               {EILSEQ, 92},    {EBADMSG, 94},   {EPROTO, 100},      {ETIME, 101}};
enum { NUMBERS = sizeof numbers / sizeof numbers[0] };

int errno_to_macos(int number) {
    size_t i;
    for (i = 0; i < NUMBERS; ++i) {
        if (numbers[i].linux_number == number) {
            return numbers[i].macos_number;
        }
    }
    return number;
}

static int errno_to_linux(int number) {
    size_t i;
    for (i = 0; i < NUMBERS; ++i) {
        if (numbers[i].macos_number == number) {
            return numbers[i].linux_number;
        }
    }
    return number;
}

/* The library's own cell. What glibc left since the last look moves into it. */
static int *error_cell(void) {
    static __thread int cell;
    if (errno != 0) {
        cell = errno_to_macos(errno);
        errno = 0;
    }
    return &cell;
}

static char *error_text(int number) {
    return strerror(errno_to_linux(number));
}

extern int __xpg_strerror_r(int, char *, size_t);

static int error_text_into(int number, char *text, size_t capacity) {
    return errno_to_macos(__xpg_strerror_r(errno_to_linux(number), text, capacity));
}

const struct shim shims_errno[] = {SHIM("___error", error_cell), SHIM("_strerror", error_text),
                                   SHIM("_strerror_r", error_text_into), SHIM_END};
