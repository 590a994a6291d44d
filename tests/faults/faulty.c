/* The preloaded object: its functions stand before those of the C library and fail when told to
 * (faults.h). One macro per form of result keeps each function to a line. */

#define _GNU_SOURCE

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <iconv.h>
#include <link.h>
#include <locale.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <wchar.h>

#include "faults.h"

#define EXPORTED __attribute__((visibility("default")))
#define PER_THREAD __thread __attribute__((tls_model("initial-exec")))

static PER_THREAD int t_armed;
static PER_THREAD int t_paused;
static PER_THREAD int t_read_follows;
static PER_THREAD int t_write_follows;
static int g_all_threads;
static int g_operation;
static long g_first;
static int g_forever;
static int g_error;
static long g_calls[FAULTS_COUNT];
static long g_injected;
static long g_live;
static int g_trace;
static char g_report[256];
static long g_others_live;
static int g_in_c_library;
static long g_handles;

EXPORTED void faults_arm(int operation, long first, int forever, int error) {
    memset(g_calls, 0, sizeof g_calls);
    g_injected = 0;
    g_in_c_library = 0;
    g_operation = operation;
    g_first = first;
    g_forever = forever;
    g_error = error;
    t_read_follows = 0;
    t_write_follows = 0;
    t_armed = 1;
}

EXPORTED void faults_disarm(void) {
    t_armed = 0;
}

EXPORTED void faults_pause(void) {
    ++t_paused;
}

EXPORTED void faults_resume(void) {
    --t_paused;
}

EXPORTED long faults_calls(int operation) {
    return g_calls[operation];
}

EXPORTED long faults_injected(void) {
    return g_injected;
}

EXPORTED long faults_live_blocks(void) {
    return __atomic_load_n(&g_live, __ATOMIC_RELAXED);
}

EXPORTED long faults_live_of_others(void) {
    return g_others_live + g_handles;
}

EXPORTED int faults_in_c_library(void) {
    return g_in_c_library;
}

/* With FAULTS_TRACE set, every fault names the functions that met it on standard error. */
static void show_callers(void) {
    void *frames[40];
    if (g_trace) {
        ++t_paused;
        backtrace_symbols_fd(frames, backtrace(frames, 40), STDERR_FILENO);
        --t_paused;
    }
}

/* The driver of a whole process learns from a file whether anything failed. */
static void report_injection(void) {
    if (g_report[0] != '\0') {
        syscall(SYS_mknodat, AT_FDCWD, g_report, S_IFREG | 0600, 0); /* needs no descriptor */
    }
}

/* Counts one call; tells whether it has to fail, with errno set then. */
static int fails(enum faults_operation operation) {
    long call;
    if ((!t_armed && !g_all_threads) || t_paused != 0) {
        return 0;
    }
    call = __atomic_add_fetch(&g_calls[operation], 1, __ATOMIC_RELAXED);
    if ((int)operation != g_operation || call < g_first || (call > g_first && !g_forever)) {
        return 0;
    }
    __atomic_add_fetch(&g_injected, 1, __ATOMIC_RELAXED);
    show_callers();
    report_injection();
    if (g_error == FAULTS_KILL) {
        kill(getpid(), SIGKILL);
    }
    errno = g_error;
    return 1;
}

/* A short transfer is no fault yet: the next one is. */
static int follows(int *pending) {
    if (*pending == 0 || t_paused != 0 || (!t_armed && !g_all_threads)) {
        return 0;
    }
    *pending = 0;
    errno = g_error;
    return 1;
}

/* The function of that name in the C library. */
static void *next_function(const char *name) {
    void *symbol;
    ++t_paused;
    symbol = dlsym(RTLD_NEXT, name);
    --t_paused;
    if (symbol == NULL) {
        static const char message[] = "faulty: a function is missing: ";
        ssize_t ignored = write(2, message, sizeof message - 1);
        ignored = write(2, name, strlen(name));
        (void)ignored;
        _exit(99);
    }
    return symbol;
}

#define NEXT(TYPE, NAME, PARAMETERS)                                                               \
    static TYPE(*next) PARAMETERS;                                                                 \
    if (next == NULL) {                                                                            \
        void *symbol = next_function(#NAME);                                                       \
        memcpy(&next, &symbol, sizeof next);                                                       \
    }

/* A function that returns FAILURE without being called. */
#define FAILING(TYPE, NAME, PARAMETERS, ARGUMENTS, OPERATION, FAILURE)                             \
    EXPORTED TYPE NAME PARAMETERS;                                                                 \
    EXPORTED TYPE NAME PARAMETERS {                                                                \
        NEXT(TYPE, NAME, PARAMETERS)                                                               \
        return fails(FAULTS_##OPERATION) ? (FAILURE) : next ARGUMENTS;                             \
    }

/* What the C library made for others: files, directories, converters, locales. */
#define OPENING(TYPE, NAME, PARAMETERS, ARGUMENTS, OPERATION, FAILURE)                             \
    EXPORTED TYPE NAME PARAMETERS;                                                                 \
    EXPORTED TYPE NAME PARAMETERS {                                                                \
        TYPE made;                                                                                 \
        NEXT(TYPE, NAME, PARAMETERS)                                                               \
        made = fails(FAULTS_##OPERATION) ? (FAILURE) : next ARGUMENTS;                             \
        g_handles += made != (FAILURE);                                                            \
        return made;                                                                               \
    }

/* ---- memory: the allocator itself is called by its inner names, dlsym may need it ---- */

void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void *__libc_memalign(size_t, size_t);
void __libc_free(void *);

/* The C library loses a few blocks of its own when memory ends inside of it. So blocks that others
 * asked for are counted apart, by their addresses. */
#define MAX_BLOCKS ((size_t)1 << 16)

static uintptr_t g_c_library[4][2]; /* from, to: libc and the loader */
static void *g_blocks[MAX_BLOCKS];

static int is_in_c_library(const void *address) {
    size_t i;
    for (i = 0; i < sizeof g_c_library / sizeof *g_c_library; ++i) {
        if ((uintptr_t)address >= g_c_library[i][0] && (uintptr_t)address < g_c_library[i][1]) {
            return 1;
        }
    }
    return 0;
}

static size_t slot_of(const void *block) {
    return ((uintptr_t)block >> 4) * 2654435761U % MAX_BLOCKS;
}

/* Replaces `from` by `to` where the probing meets it first. */
static void exchange_block(const void *at, void *from, void *to) {
    size_t slot = slot_of(at);
    size_t tries;
    for (tries = 0; tries < 64; ++tries, slot = (slot + 1) % MAX_BLOCKS) {
        if (g_blocks[slot] == from) {
            g_blocks[slot] = to;
            g_others_live += to != NULL ? 1 : -1;
            return;
        }
    }
}

static void *counted(void *block, const void *caller) {
    if (block != NULL) {
        __atomic_add_fetch(&g_live, 1, __ATOMIC_RELAXED);
        if (!g_all_threads && !is_in_c_library(caller)) {
            exchange_block(block, NULL, block);
        }
    }
    return block;
}

static void uncounted(void *block) {
    __atomic_sub_fetch(&g_live, 1, __ATOMIC_RELAXED);
    if (!g_all_threads) {
        exchange_block(block, block, NULL);
    }
}

/* Whether memory ends here. */
static int memory_fails(const void *caller) {
    if (!fails(FAULTS_memory)) {
        return 0;
    }
    g_in_c_library |= is_in_c_library(caller);
    return 1;
}

#define CALLER __builtin_return_address(0)

EXPORTED void *malloc(size_t size) {
    return memory_fails(CALLER) ? NULL : counted(__libc_malloc(size), CALLER);
}

EXPORTED void *calloc(size_t count, size_t size) {
    return memory_fails(CALLER) ? NULL : counted(__libc_calloc(count, size), CALLER);
}

EXPORTED void *realloc(void *block, size_t size) {
    void *moved;
    if (size != 0 && memory_fails(CALLER)) {
        return NULL;
    }
    if (block != NULL) {
        uncounted(block);
    }
    moved = __libc_realloc(block, size);
    return counted(moved != NULL || size == 0 ? moved : block, CALLER) == NULL ? NULL : moved;
}

EXPORTED void *aligned_alloc(size_t alignment, size_t size) {
    return memory_fails(CALLER) ? NULL : counted(__libc_memalign(alignment, size), CALLER);
}

EXPORTED void *memalign(size_t alignment, size_t size);
EXPORTED void *memalign(size_t alignment, size_t size) {
    return memory_fails(CALLER) ? NULL : counted(__libc_memalign(alignment, size), CALLER);
}

EXPORTED int posix_memalign(void **block, size_t alignment, size_t size) {
    if (memory_fails(CALLER)) {
        return ENOMEM;
    }
    *block = counted(__libc_memalign(alignment, size), CALLER);
    return *block == NULL ? ENOMEM : 0;
}

EXPORTED void free(void *block) {
    if (block != NULL) {
        uncounted(block);
        __libc_free(block);
    }
}

/* ---- conversions ---- */

#define NO_ICONV ((iconv_t)-1)
#define NO_CHARACTERS ((size_t)-1)

OPENING(iconv_t, iconv_open, (const char *to, const char *from), (to, from), iconv_open, NO_ICONV)
FAILING(size_t, iconv, (iconv_t handle, char **in, size_t *left, char **out, size_t *space),
        (handle, in, left, out, space), iconv, NO_CHARACTERS)

/* The C locale is part of the C library: making it cannot fail. */
static int is_built_in(const char *name) {
    return name != NULL && (strcmp(name, "C") == 0 || strcmp(name, "POSIX") == 0);
}

#define FAILING_NEWLOCALE(NAME)                                                                    \
    EXPORTED locale_t NAME(int mask, const char *name, locale_t base);                             \
    EXPORTED locale_t NAME(int mask, const char *name, locale_t base) {                            \
        locale_t made;                                                                             \
        NEXT(locale_t, NAME, (int, const char *, locale_t))                                        \
        if (is_built_in(name)) {                                                                   \
            return next(mask, name, base);                                                         \
        }                                                                                          \
        made = fails(FAULTS_newlocale) ? NULL : next(mask, name, base);                            \
        g_handles += made != NULL && base == NULL;                                                 \
        return made;                                                                               \
    }

FAILING_NEWLOCALE(newlocale)
FAILING_NEWLOCALE(__newlocale)
OPENING(locale_t, duplocale, (locale_t base), (base), newlocale, NULL)
OPENING(locale_t, __duplocale, (locale_t base), (base), newlocale, NULL)
FAILING(size_t, mbsrtowcs, (wchar_t * out, const char **in, size_t size, mbstate_t *state),
        (out, in, size, state), multibyte, NO_CHARACTERS)
FAILING(size_t, wcsrtombs, (char *out, const wchar_t **in, size_t size, mbstate_t *state),
        (out, in, size, state), multibyte, NO_CHARACTERS)
FAILING(size_t, mbsnrtowcs,
        (wchar_t * out, const char **in, size_t bytes, size_t size, mbstate_t *state),
        (out, in, bytes, size, state), multibyte, NO_CHARACTERS)
FAILING(size_t, wcsnrtombs,
        (char *out, const wchar_t **in, size_t count, size_t size, mbstate_t *state),
        (out, in, count, size, state), multibyte, NO_CHARACTERS)
FAILING(size_t, mbrtowc, (wchar_t * out, const char *in, size_t size, mbstate_t *state),
        (out, in, size, state), multibyte, NO_CHARACTERS)
FAILING(size_t, wcrtomb, (char *out, wchar_t in, mbstate_t *state), (out, in, state), multibyte,
        NO_CHARACTERS)
FAILING(size_t, mbstowcs, (wchar_t * out, const char *in, size_t size), (out, in, size), multibyte,
        NO_CHARACTERS)
FAILING(size_t, wcstombs, (char *out, const wchar_t *in, size_t size), (out, in, size), multibyte,
        NO_CHARACTERS)

#define CLOSING(TYPE, NAME, PARAMETERS, ARGUMENTS)                                                 \
    EXPORTED TYPE NAME PARAMETERS;                                                                 \
    EXPORTED TYPE NAME PARAMETERS {                                                                \
        NEXT(TYPE, NAME, PARAMETERS)                                                               \
        --g_handles;                                                                               \
        next ARGUMENTS;                                                                            \
    }

CLOSING(void, freelocale, (locale_t locale), (locale))
CLOSING(void, __freelocale, (locale_t locale), (locale))

EXPORTED int iconv_close(iconv_t handle) {
    NEXT(int, iconv_close, (iconv_t))
    --g_handles;
    return next(handle);
}

/* ---- files ---- */

static int mode_of(int flags, va_list arguments) {
    return (flags & (O_CREAT | __O_TMPFILE)) != 0 ? va_arg(arguments, int) : 0;
}

#define FAILING_OPEN(NAME)                                                                         \
    EXPORTED int NAME(const char *path, int flags, ...) {                                          \
        va_list arguments;                                                                         \
        int mode;                                                                                  \
        NEXT(int, NAME, (const char *, int, ...))                                                  \
        va_start(arguments, flags);                                                                \
        mode = mode_of(flags, arguments);                                                          \
        va_end(arguments);                                                                         \
        return fails(FAULTS_open) ? -1 : next(path, flags, mode);                                  \
    }

#define FAILING_OPENAT(NAME)                                                                       \
    EXPORTED int NAME(int folder, const char *path, int flags, ...) {                              \
        va_list arguments;                                                                         \
        int mode;                                                                                  \
        NEXT(int, NAME, (int, const char *, int, ...))                                             \
        va_start(arguments, flags);                                                                \
        mode = mode_of(flags, arguments);                                                          \
        va_end(arguments);                                                                         \
        return fails(FAULTS_open) ? -1 : next(folder, path, flags, mode);                          \
    }

FAILING_OPEN(open)
FAILING_OPEN(open64)
FAILING_OPENAT(openat)
FAILING_OPENAT(openat64)
OPENING(FILE *, fopen, (const char *path, const char *mode), (path, mode), open, NULL)
OPENING(FILE *, fopen64, (const char *path, const char *mode), (path, mode), open, NULL)
OPENING(DIR *, opendir, (const char *path), (path), opendir, NULL)
OPENING(DIR *, fdopendir, (int file), (file), opendir, NULL)
FAILING(struct dirent *, readdir, (DIR * folder), (folder), readdir, NULL)
FAILING(struct dirent64 *, readdir64, (DIR * folder), (folder), readdir, NULL)
FAILING(off_t, lseek, (int file, off_t offset, int whence), (file, offset, whence), seek, -1)
FAILING(off64_t, lseek64, (int file, off64_t offset, int whence), (file, offset, whence), seek, -1)
FAILING(int, fseek, (FILE * file, long offset, int whence), (file, offset, whence), seek, -1)
FAILING(int, fseeko, (FILE * file, off_t offset, int whence), (file, offset, whence), seek, -1)
FAILING(int, fseeko64, (FILE * file, off64_t offset, int whence), (file, offset, whence), seek, -1)
FAILING(long, ftell, (FILE * file), (file), seek, -1)
FAILING(off_t, ftello, (FILE * file), (file), seek, -1)
FAILING(off64_t, ftello64, (FILE * file), (file), seek, -1)
FAILING(int, stat, (const char *path, struct stat *out), (path, out), stat, -1)
FAILING(int, stat64, (const char *path, struct stat64 *out), (path, out), stat, -1)
FAILING(int, lstat, (const char *path, struct stat *out), (path, out), stat, -1)
FAILING(int, lstat64, (const char *path, struct stat64 *out), (path, out), stat, -1)
FAILING(int, fstat, (int file, struct stat *out), (file, out), stat, -1)
FAILING(int, fstat64, (int file, struct stat64 *out), (file, out), stat, -1)
FAILING(int, fstatat, (int folder, const char *path, struct stat *out, int flags),
        (folder, path, out, flags), stat, -1)
FAILING(int, fstatat64, (int folder, const char *path, struct stat64 *out, int flags),
        (folder, path, out, flags), stat, -1)
FAILING(int, access, (const char *path, int mode), (path, mode), stat, -1)
FAILING(int, faccessat, (int folder, const char *path, int mode, int flags),
        (folder, path, mode, flags), stat, -1)
FAILING(int, rename, (const char *from, const char *to), (from, to), rename, -1)
FAILING(int, renameat, (int fromFolder, const char *from, int toFolder, const char *to),
        (fromFolder, from, toFolder, to), rename, -1)
FAILING(int, renameat2,
        (int fromFolder, const char *from, int toFolder, const char *to, unsigned flags),
        (fromFolder, from, toFolder, to, flags), rename, -1)
FAILING(int, unlink, (const char *path), (path), unlink, -1)
FAILING(int, unlinkat, (int folder, const char *path, int flags), (folder, path, flags), unlink, -1)
FAILING(int, remove, (const char *path), (path), unlink, -1)
FAILING(int, flock, (int file, int operation), (file, operation), flock, -1)
FAILING(int, fchmod, (int file, mode_t mode), (file, mode), owner, -1)
FAILING(int, chmod, (const char *path, mode_t mode), (path, mode), owner, -1)
FAILING(int, fchown, (int file, uid_t user, gid_t group), (file, user, group), owner, -1)
FAILING(int, fchownat, (int folder, const char *path, uid_t user, gid_t group, int flags),
        (folder, path, user, group, flags), owner, -1)
FAILING(ssize_t, flistxattr, (int file, char *names, size_t size), (file, names, size), owner, -1)
FAILING(ssize_t, fgetxattr, (int file, const char *name, void *value, size_t size),
        (file, name, value, size), owner, -1)
FAILING(int, fsetxattr, (int file, const char *name, const void *value, size_t size, int flags),
        (file, name, value, size, flags), owner, -1)
FAILING(char *, realpath, (const char *path, char *out), (path, out), realpath, NULL)
FAILING(ssize_t, readlink, (const char *path, char *out, size_t size), (path, out, size), realpath,
        -1)

EXPORTED int closedir(DIR *folder) {
    NEXT(int, closedir, (DIR *))
    --g_handles;
    return next(folder);
}

/* A failed close releases the descriptor all the same. */
EXPORTED int close(int file) {
    NEXT(int, close, (int))
    if (fails(FAULTS_close)) {
        next(file);
        errno = g_error;
        return -1;
    }
    return next(file);
}

EXPORTED int fclose(FILE *file) {
    NEXT(int, fclose, (FILE *))
    --g_handles;
    if (fails(FAULTS_close)) {
        next(file);
        errno = g_error;
        return EOF;
    }
    return next(file);
}

/* ---- transfers ---- */

EXPORTED ssize_t read(int file, void *bytes, size_t count) {
    NEXT(ssize_t, read, (int, void *, size_t))
    if (fails(FAULTS_read) || follows(&t_read_follows)) {
        return -1;
    }
    if (count > 1 && fails(FAULTS_short_read)) {
        ssize_t all = next(file, bytes, count);
        ++t_paused;
        if (all > 1 && lseek(file, -(off_t)(all / 2), SEEK_CUR) >= 0) {
            all -= all / 2; /* the second half has been given back */
        }
        --t_paused;
        t_read_follows = 1;
        return all;
    }
    return next(file, bytes, count);
}

/* The error flag of a stream, which only its own functions set otherwise. */
static void mark_error(FILE *file) {
    file->_flags |= 0x20;
    errno = g_error;
}

EXPORTED size_t fread(void *bytes, size_t size, size_t count, FILE *file) {
    NEXT(size_t, fread, (void *, size_t, size_t, FILE *))
    if (fails(FAULTS_read)) {
        mark_error(file);
        return 0;
    }
    if (fails(FAULTS_short_read)) {
        size_t got = next(bytes, size, count / 2, file);
        mark_error(file);
        return got;
    }
    return next(bytes, size, count, file);
}

EXPORTED char *fgets(char *out, int size, FILE *file) {
    NEXT(char *, fgets, (char *, int, FILE *))
    if (fails(FAULTS_read)) {
        mark_error(file);
        return NULL;
    }
    return next(out, size, file);
}

EXPORTED ssize_t write(int file, const void *bytes, size_t count) {
    NEXT(ssize_t, write, (int, const void *, size_t))
    if (fails(FAULTS_write) || follows(&t_write_follows)) {
        return -1;
    }
    if (count > 1 && fails(FAULTS_short_write)) {
        t_write_follows = 1;
        return next(file, bytes, count / 2);
    }
    return next(file, bytes, count);
}

EXPORTED ssize_t writev(int file, const struct iovec *parts, int count) {
    NEXT(ssize_t, writev, (int, const struct iovec *, int))
    if (fails(FAULTS_write) || follows(&t_write_follows)) {
        return -1;
    }
    return next(file, parts, count);
}

/* What goes to standard output is the caller's words, not a file of his. */
static int is_terminal_stream(const FILE *file) {
    return file == stdout || file == stderr || file == NULL;
}

EXPORTED size_t fwrite(const void *bytes, size_t size, size_t count, FILE *file) {
    NEXT(size_t, fwrite, (const void *, size_t, size_t, FILE *))
    if (is_terminal_stream(file)) {
        return next(bytes, size, count, file);
    }
    if (fails(FAULTS_write)) {
        mark_error(file);
        return 0;
    }
    if (fails(FAULTS_short_write)) {
        size_t done = next(bytes, size, count / 2, file);
        mark_error(file);
        return done;
    }
    return next(bytes, size, count, file);
}

EXPORTED int fflush(FILE *file) {
    NEXT(int, fflush, (FILE *))
    if (!is_terminal_stream(file) && fails(FAULTS_write)) {
        mark_error(file);
        return EOF;
    }
    return next(file);
}

FAILING(int, ftruncate, (int file, off_t size), (file, size), write, -1)
FAILING(int, ftruncate64, (int file, off64_t size), (file, size), write, -1)
FAILING(int, posix_fallocate, (int file, off_t from, off_t size), (file, from, size), write,
        g_error)

/* ---- the loader ---- */

EXPORTED void *dlopen(const char *path, int mode) {
    NEXT(void *, dlopen, (const char *, int))
    /* A real failure, so that dlerror has something to tell. */
    return next(fails(FAULTS_dlopen) ? "/nonexistent/faulty.so" : path, mode);
}

FAILING(int, dladdr, (const void *address, Dl_info *info), (address, info), dladdr, 0)
FAILING(int, dladdr1, (const void *address, Dl_info *info, void **extra, int flags),
        (address, info, extra, flags), dladdr, 0)

/* ---- processes ---- */

FAILING(int, pipe, (int files[2]), (files), pipe, -1)
FAILING(int, pipe2, (int files[2], int flags), (files, flags), pipe, -1)
FAILING(int, dup, (int file), (file), duplicate, -1)
FAILING(int, dup2, (int file, int target), (file, target), duplicate, -1)
FAILING(int, dup3, (int file, int target, int flags), (file, target, flags), duplicate, -1)
FAILING(pid_t, fork, (void), (), process, -1)
FAILING(int, posix_spawn,
        (pid_t *restrict pid, const char *restrict path,
         const posix_spawn_file_actions_t *restrict actions,
         const posix_spawnattr_t *restrict attributes, char *const arguments[],
         char *const environment[]),
        (pid, path, actions, attributes, arguments, environment), process, g_error)
FAILING(int, posix_spawnp,
        (pid_t *restrict pid, const char *restrict path,
         const posix_spawn_file_actions_t *restrict actions,
         const posix_spawnattr_t *restrict attributes, char *const arguments[],
         char *const environment[]),
        (pid, path, actions, attributes, arguments, environment), process, g_error)
FAILING(int, pthread_create,
        (pthread_t *restrict thread, const pthread_attr_t *restrict attributes,
         void *(*body)(void *), void *restrict argument),
        (thread, attributes, body, argument), thread, g_error)

/* ---- arming a whole process by its environment ---- */

static int note_c_library(struct dl_phdr_info *info, size_t size, void *next) {
    size_t *index = next;
    int i;
    (void)size;
    if (strstr(info->dlpi_name, "/libc.so") == NULL && strstr(info->dlpi_name, "/ld-") == NULL) {
        return 0;
    }
    for (i = 0; i < info->dlpi_phnum && *index < 4; ++i) {
        const ElfW(Phdr) *header = &info->dlpi_phdr[i];
        if (header->p_type == PT_LOAD && (header->p_flags & PF_X) != 0) {
            g_c_library[*index][0] = info->dlpi_addr + header->p_vaddr;
            g_c_library[*index][1] = g_c_library[*index][0] + header->p_memsz;
            ++*index;
        }
    }
    return 0;
}

static int operation_named(const char *name) {
#define FAULTS_NAME(NAME) #NAME,
    static const char *const names[] = {FAULTS_OPERATIONS(FAULTS_NAME)};
    int i;
    for (i = 0; i < FAULTS_COUNT; ++i) {
        if (strcmp(names[i], name) == 0) {
            return i;
        }
    }
    return -1;
}

__attribute__((constructor)) static void arm_from_environment(void) {
    const char *text = getenv("FAULTS_ARM");
    char name[32];
    char rest[96];
    int depth;
    long first;
    int forever;
    int error;
    size_t index = 0;
    dl_iterate_phdr(note_c_library, &index);
    g_trace = getenv("FAULTS_TRACE") != NULL;
    if (text == NULL ||
        sscanf(text, "%d:%31[^:]:%ld:%d:%d", &depth, name, &first, &forever, &error) != 5) {
        return;
    }
    if (depth > 0) {
        snprintf(rest, sizeof rest, "%d:%s:%ld:%d:%d", depth - 1, name, first, forever, error);
        setenv("FAULTS_ARM", rest, 1);
        return;
    }
    unsetenv("FAULTS_ARM");
    if (getenv("FAULTS_REPORT") != NULL) {
        snprintf(g_report, sizeof g_report, "%s", getenv("FAULTS_REPORT"));
    }
    faults_arm(operation_named(name), first, forever, error);
    t_armed = 0;
    g_all_threads = 1;
}
