/* Descriptors: the commands and flags of fcntl differ. Terminals have no translation: a program in
 * the loader never sees one. */

#define _GNU_SOURCE

#include "shims.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stddef.h>
#include <unistd.h>

enum {
    MACOS_GETFD = 1,
    MACOS_SETFD = 2,
    MACOS_GETFL = 3,
    MACOS_SETFL = 4,
    MACOS_DUPFD_CLOEXEC = 67,
    MACOS_NONBLOCK = 0x4,
    MACOS_APPEND = 0x8
};

static int flags_of(int file) {
    const int flags = fcntl(file, F_GETFL);
    return flags < 0 ? flags
                     : (flags & O_ACCMODE) | (flags & O_NONBLOCK ? MACOS_NONBLOCK : 0) |
                           (flags & O_APPEND ? MACOS_APPEND : 0);
}

int shim_fcntl(int file, int command, long value) {
    switch (command) {
    case MACOS_GETFD:
        return fcntl(file, F_GETFD);
    case MACOS_SETFD:
        return fcntl(file, F_SETFD, (int)value);
    case MACOS_GETFL:
        return flags_of(file);
    case MACOS_SETFL:
        return fcntl(file, F_SETFL,
                     (value & MACOS_NONBLOCK ? O_NONBLOCK : 0) |
                         (value & MACOS_APPEND ? O_APPEND : 0));
    case MACOS_DUPFD_CLOEXEC:
        return fcntl(file, F_DUPFD_CLOEXEC, (int)value);
    default:
        errno = EINVAL;
        return -1;
    }
}

static int no_terminal(int file) {
    (void)file;
    errno = ENOTTY;
    return 0;
}

static int no_control(int file, unsigned long request) {
    (void)file, (void)request;
    errno = ENOTTY;
    return -1;
}

const struct shim shims_descriptors[] = {SHIM("_fcntl", shim_fcntl),   SHIM("_ioctl", no_control),
                                         SHIM("_isatty", no_terminal), SHIM("_dup", dup),
                                         SHIM("_dup2", dup2),          SHIM("_pipe", pipe),
                                         SHIM("_poll", poll),          SHIM_END};
