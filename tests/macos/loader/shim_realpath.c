/* realpath as macOS has it. It differs from glibc's in what succeeds ("file/", "file/.."), in the
 * limits (33 links, 1,023 bytes) and in what its buffer holds after a failure: always the path up
 * to the part that failed, truncated if it is too long. */

#define _GNU_SOURCE

#include "shims.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { PATH_BYTES = 1024, MAX_LINKS = 33 };

struct walk {
    char *resolved;        /* absolute, without a "/" at its end, unless it is "/" */
    char left[PATH_BYTES]; /* what is still to be resolved */
    int links;
};

static int fail(int error) {
    errno = error;
    return 0;
}

/* As strlcpy and strlcat: RETURNS 0 if the text was truncated. */
static int append(char *to, const char *text, size_t length) {
    size_t used = strlen(to);
    int fits = used + length < PATH_BYTES;
    size_t count = fits ? length : PATH_BYTES - 1 - used;
    memcpy(to + used, text, count);
    to[used + count] = '\0';
    return fits;
}

static void remove_last(char *resolved) {
    char *slash = strrchr(resolved, '/');
    slash[slash == resolved ? 1 : 0] = '\0';
}

/* The target of a link is what is to be resolved next. */
static int follow(struct walk *walk) {
    char target[PATH_BYTES] = "";
    ssize_t length;
    if (++walk->links > MAX_LINKS) {
        return fail(ELOOP);
    }
    length = readlink(walk->resolved, target, sizeof target - 1);
    if (length <= 0) {
        return length < 0 ? 0 : fail(ENOENT);
    }
    if (target[0] == '/') {
        strcpy(walk->resolved, "/");
    } else {
        remove_last(walk->resolved);
    }
    if (walk->left[0] != '\0' &&
        (!append(target, "/", 1) || !append(target, walk->left, strlen(walk->left)))) {
        return fail(ENAMETOOLONG);
    }
    strcpy(walk->left, target);
    return 1;
}

static int enter(struct walk *walk, const char *name, size_t length) {
    struct stat status;
    if (length == 0 || (length == 1 && name[0] == '.')) {
        return 1;
    }
    if (length == 2 && memcmp(name, "..", 2) == 0) {
        remove_last(walk->resolved);
        return 1;
    }
    if ((walk->resolved[1] != '\0' && !append(walk->resolved, "/", 1)) ||
        !append(walk->resolved, name, length)) {
        return fail(ENAMETOOLONG);
    }
    if (lstat(walk->resolved, &status) != 0) {
        return 0;
    }
    return S_ISLNK(status.st_mode) ? follow(walk) : 1;
}

static int resolve(const char *path, struct walk *walk) {
    walk->links = 0;
    walk->left[0] = '\0';
    if (path[0] == '\0') {
        return fail(ENOENT);
    }
    if (path[0] == '/') {
        strcpy(walk->resolved, "/");
    } else if (getcwd(walk->resolved, PATH_BYTES) == NULL) {
        strcpy(walk->resolved, ".");
        return 0;
    }
    if (!append(walk->left, path, strlen(path))) {
        return fail(ENAMETOOLONG);
    }
    while (walk->left[0] != '\0') {
        char name[PATH_BYTES];
        const size_t length = strcspn(walk->left, "/");
        const char *rest = walk->left + length + (walk->left[length] == '/');
        memcpy(name, walk->left, length);
        memmove(walk->left, rest, strlen(rest) + 1);
        if (!enter(walk, name, length)) {
            return 0;
        }
    }
    return 1;
}

char *shim_realpath(const char *path, char *resolved) {
    struct walk walk;
    walk.resolved = resolved != NULL ? resolved : calloc(1, PATH_BYTES);
    if (walk.resolved == NULL) {
        return NULL;
    }
    if (resolve(path, &walk)) {
        return walk.resolved;
    }
    if (resolved == NULL) {
        const int error = errno;
        free(walk.resolved);
        errno = error;
    }
    return NULL;
}
