/* Preloaded into the host: functions of the C library that fail as the variable FAULT says.
 *
 *   FAULT=dladdr unknown     the loader knows no file for any address
 *   FAULT=dladdr nameless    it knows one, but not its name
 *   FAULT=dladdr empty       the name is empty
 *   FAULT=readdir N          a listing breaks off after N entries with EIO
 */

#define _GNU_SOURCE

#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPORT __attribute__((visibility("default")))

static const char *fault(void) {
    const char *text = getenv("FAULT");
    return text != NULL ? text : "";
}

EXPORT int dladdr(const void *address, Dl_info *info) {
    int (*real)(const void *, Dl_info *);
    void *symbol = dlsym(RTLD_NEXT, "dladdr");
    memcpy(&real, &symbol, sizeof real);
    if (strcmp(fault(), "dladdr unknown") == 0) {
        return 0;
    }
    if (real(address, info) == 0) {
        return 0;
    }
    if (strcmp(fault(), "dladdr nameless") == 0) {
        info->dli_fname = NULL;
    } else if (strcmp(fault(), "dladdr empty") == 0) {
        info->dli_fname = "";
    }
    return 1;
}

EXPORT struct dirent *readdir(DIR *directory) {
    static int entries;
    int limit;
    struct dirent *(*real)(DIR *);
    void *symbol = dlsym(RTLD_NEXT, "readdir");
    memcpy(&real, &symbol, sizeof real);
    if (sscanf(fault(), "readdir %d", &limit) == 1 && entries++ >= limit) {
        errno = EIO;
        return NULL;
    }
    return real(directory);
}
