/* Files: structures and flags differ. */

#define _GNU_SOURCE

#include "shims.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

struct macos_dirent {
    uint64_t inode, seek;
    uint16_t record_size, name_length;
    uint8_t type;
    char name[1024];
};

static void *read_folder(DIR *folder) {
    static __thread struct macos_dirent entry;
    const struct dirent *found = readdir(folder);
    if (found == NULL) {
        return NULL;
    }
    entry.inode = found->d_ino;
    entry.seek = (uint64_t)found->d_off;
    entry.record_size = sizeof entry;
    entry.name_length = (uint16_t)strlen(found->d_name);
    entry.type = found->d_type;
    strcpy(entry.name, found->d_name);
    return &entry;
}

struct macos_stat {
    int32_t device;
    uint16_t mode, links;
    uint64_t inode;
    uint32_t user, group;
    int32_t special_device, padding;
    struct timespec accessed, modified, changed, born;
    int64_t size, blocks;
    int32_t block_size;
    uint32_t flags, generation;
    int32_t spare;
    int64_t more_spare[2];
};

static int translated(int result, const struct stat *from, struct macos_stat *to) {
    if (result != 0) {
        return result;
    }
    memset(to, 0, sizeof *to);
    to->device = (int32_t)from->st_dev;
    to->mode = (uint16_t)from->st_mode;
    to->links = (uint16_t)from->st_nlink;
    to->inode = from->st_ino;
    to->user = from->st_uid;
    to->group = from->st_gid;
    to->accessed = from->st_atim;
    to->modified = from->st_mtim;
    to->changed = to->born = from->st_ctim;
    to->size = from->st_size;
    to->blocks = from->st_blocks;
    to->block_size = (int32_t)from->st_blksize;
    return 0;
}

static int file_status(const char *path, struct macos_stat *to) {
    struct stat from;
    return translated(stat(path, &from), &from, to);
}

static int link_status(const char *path, struct macos_stat *to) {
    struct stat from;
    return translated(lstat(path, &from), &from, to);
}

static int open_file_status(int file, struct macos_stat *to) {
    struct stat from;
    return translated(fstat(file, &from), &from, to);
}

int shim_open_flags(int flags) {
    int ours = flags & O_ACCMODE;
    ours |= flags & 0x4 ? O_NONBLOCK : 0;
    ours |= flags & 0x8 ? O_APPEND : 0;
    ours |= flags & 0x100 ? O_NOFOLLOW : 0;
    ours |= flags & 0x200 ? O_CREAT : 0;
    ours |= flags & 0x400 ? O_TRUNC : 0;
    ours |= flags & 0x800 ? O_EXCL : 0;
    ours |= flags & 0x100000 ? O_DIRECTORY : 0;
    ours |= flags & 0x1000000 ? O_CLOEXEC : 0;
    return ours;
}

/* On arm64 the mode of a variadic call lies on the stack, shim_variadic.c fetches it. */
int shim_open(const char *path, int flags, int mode) {
    return open(path, shim_open_flags(flags), (mode_t)mode);
}

/* Extended attributes and access control lists: the files of the tests have none. */
static int copy_file(int from, int to, void *state, uint32_t flags) {
    enum { COPY_DATA = 8 };
    char block[4096];
    ssize_t size = 0;
    (void)state;
    while ((flags & COPY_DATA) && (size = read(from, block, sizeof block)) > 0) {
        if (write(to, block, (size_t)size) != size) {
            return -1;
        }
    }
    return size < 0 ? -1 : 0;
}

static void *copy_state(void) {
    return malloc(1);
}

static int free_copy_state(void *state) {
    free(state);
    return 0;
}

const struct shim shims_files[] = {SHIM("_readdir", read_folder),
                                   SHIM("_readdir$INODE64", read_folder),
                                   SHIM("_stat", file_status),
                                   SHIM("_stat$INODE64", file_status),
                                   SHIM("_fstat", open_file_status),
                                   SHIM("_fstat$INODE64", open_file_status),
                                   SHIM("_lstat", link_status),
                                   SHIM("_lstat$INODE64", link_status),
                                   SHIM("_open", shim_open),
                                   SHIM("_realpath$DARWIN_EXTSN", shim_realpath),
                                   SHIM("_fcopyfile", copy_file),
                                   SHIM("_copyfile_state_alloc", copy_state),
                                   SHIM("_copyfile_state_free", free_copy_state),
                                   SHIM_END};
