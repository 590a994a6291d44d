/* The dynamic loader's calls, for the host program and for what is loaded. */

#define _GNU_SOURCE

#include "image.h"
#include "loader.h"
#include "shims.h"

#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

static char error_text[1024];
static int has_error;

void *image_error(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(error_text, sizeof error_text, format, arguments);
    va_end(arguments);
    has_error = 1;
    return NULL;
}

char *macho_dlerror(void) {
    if (!has_error) {
        return NULL;
    }
    has_error = 0;
    return error_text;
}

/* libc++ and the unwinder are there for the whole process, as on macOS. */
static void load_runtime(void) {
    static int loaded;
    char path[4096];
    const char *folder = getenv("MACHO_RUNTIME");
    if (loaded) {
        return;
    }
    loaded = 1;
    snprintf(path, sizeof path, "%s/libunwind.dylib", folder == NULL ? "." : folder);
    if (image_open(path) == NULL) {
        fprintf(stderr, "macho: MACHO_RUNTIME names no folder with libunwind.dylib: %s\n", path);
        exit(2);
    }
    snprintf(path, sizeof path, "%s/libc++.1.dylib", folder);
    if (image_open(path) == NULL) {
        fprintf(stderr, "macho: %s\n", macho_dlerror());
        exit(2);
    }
}

void *macho_dlopen(const char *path, int mode) {
    load_runtime();
    if (mode & MACHO_RTLD_NOLOAD) {
        struct image *image = image_find(path);
        if (image != NULL) {
            ++image->uses;
        }
        return image;
    }
    return image_open(path);
}

/* RTLD_NEXT and RTLD_DEFAULT of macOS: only programs ask by them, for a function of libSystem. */
static int is_system(const void *image) {
    return (intptr_t)image == -1 || (intptr_t)image == -2;
}

void *macho_dlsym(void *image, const char *name) {
    char symbol[512];
    void *found;
    snprintf(symbol, sizeof symbol, "_%s", name);
    found = is_system(image) ? shim_find(symbol) : image_export(image, symbol, NULL);
    return found != NULL ? found : image_error("dlsym(%p, %s): symbol not found", image, name);
}

int macho_dlclose(void *image) {
    image_close(image);
    return 0;
}

/* dladdr fills the same structure on both systems, but macOS reports the real path of the file,
 * glibc the path by which it was opened. */
int shim_dladdr(const void *address, void *result) {
    Dl_info *info = result;
    const struct image *image = image_of_address(address);
    if (image == NULL) {
        return dladdr(address, info);
    }
    info->dli_fname = image->path;
    info->dli_fbase = image->header;
    info->dli_sname = NULL;
    info->dli_saddr = NULL;
    return 1;
}

struct unwind_sections {
    const void *header;
    const void *dwarf;
    uintptr_t dwarf_size;
    const void *compact;
    uintptr_t compact_size;
};

/* How the unwinder asks dyld for the tables of the image that an address lies in. */
int shim_find_unwind_sections(const void *address, void *result) {
    struct unwind_sections *sections = result;
    const struct image *image = image_of_address(address);
    if (image == NULL) {
        return 0;
    }
    sections->header = image->header;
    sections->dwarf = image->eh_frame.start;
    sections->dwarf_size = image->eh_frame.size;
    sections->compact = image->unwind_info.start;
    sections->compact_size = image->unwind_info.size;
    return 1;
}
