/* Calls relative to an open directory, as far as the C++ library makes them for the removal of a
 * tree of files and for permissions. */

#define _GNU_SOURCE

#include "shims.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <sys/stat.h>
#include <unistd.h>

enum { MACOS_CURRENT_DIRECTORY = -2, MACOS_REMOVE_DIRECTORY = 0x80 };

static int directory_of(int directory) {
    return directory == MACOS_CURRENT_DIRECTORY ? AT_FDCWD : directory;
}

/* Never creates a file, so there is no mode. */
static int open_at(int directory, const char *path, int flags) {
    return openat(directory_of(directory), path, shim_open_flags(flags) & ~O_CREAT);
}

static int unlink_at(int directory, const char *path, int flags) {
    return unlinkat(directory_of(directory), path,
                    flags & MACOS_REMOVE_DIRECTORY ? AT_REMOVEDIR : 0);
}

/* Never of a symbolic link itself, so there are no flags. */
static int change_mode_at(int directory, const char *path, uint16_t mode, int flags) {
    if (flags != 0) {
        errno = EINVAL;
        return -1;
    }
    return fchmodat(directory_of(directory), path, mode, 0);
}

const struct shim shims_at[] = {SHIM("_openat", open_at),
                                SHIM("_fchmodat", change_mode_at),
                                SHIM("_unlinkat", unlink_at),
                                SHIM("_fdopendir", fdopendir),
                                SHIM("_fdopendir$INODE64", fdopendir),
                                SHIM_END};
