/* Calls relative to an open directory, as far as the removal of a tree of files makes them. */

#define _GNU_SOURCE

#include "shims.h"

#include <dirent.h>
#include <fcntl.h>
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

const struct shim shims_at[] = {SHIM("_openat", open_at), SHIM("_unlinkat", unlink_at),
                                SHIM("_fdopendir", fdopendir),
                                SHIM("_fdopendir$INODE64", fdopendir), SHIM_END};
