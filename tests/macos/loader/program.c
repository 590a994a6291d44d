/* Mach-O executables: what a program asks dyld about itself, and its start. */

#define _GNU_SOURCE

#include "image.h"
#include "loader.h"
#include "shims.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { MAX_WATCHERS = 8 };
typedef void (*watcher)(const void *header, intptr_t slide);

static char program_path[4096];
static watcher watchers[MAX_WATCHERS];
static int watcher_count;
static int argument_count;
static char **arguments;

const char *program_file(void) {
    return program_path[0] != '\0' ? program_path : NULL;
}

/* The path is absolute; macOS may report one with symbolic links, which a program resolves. */
static int path_of_program(char *path, uint32_t *capacity) {
    const uint32_t needed = (uint32_t)strlen(program_path) + 1;
    if (*capacity < needed) {
        *capacity = needed;
        return -1;
    }
    memcpy(path, program_path, needed);
    return 0;
}

static int *count_of_arguments(void) {
    return &argument_count;
}

static char ***arguments_of_program(void) {
    return &arguments;
}

static const struct image *nth_image(uint32_t wanted) {
    uint32_t count = 0;
    int i;
    for (i = 0; i < MAX_IMAGES; ++i) {
        if (image_at(i) != NULL && count++ == wanted) {
            return image_at(i);
        }
    }
    return NULL;
}

static uint32_t image_count(void) {
    uint32_t count = 0;
    while (nth_image(count) != NULL) {
        ++count;
    }
    return count;
}

static const char *image_name(uint32_t index) {
    const struct image *image = nth_image(index);
    return image != NULL ? image->path : NULL;
}

/* dyld calls the function at once for every image that is loaded, and later for each new one. */
static void watch_images(watcher function) {
    uint32_t i;
    if (watcher_count == MAX_WATCHERS) {
        abort();
    }
    watchers[watcher_count++] = function;
    for (i = 0; nth_image(i) != NULL; ++i) {
        function(nth_image(i)->header, (intptr_t)nth_image(i)->slide);
    }
}

void program_image_loaded(const struct image *image) {
    int i;
    for (i = 0; i < watcher_count; ++i) {
        watchers[i](image->header, (intptr_t)image->slide);
    }
}

int macho_run(const char *path, int argc, char **argv) {
    struct image *image;
    uint8_t *place;
    int (*start)(int, char **, char **, char **);
    char *no_apple_strings[] = {NULL};
    if (realpath(path, program_path) == NULL) {
        perror(path);
        return 2;
    }
    argument_count = argc;
    arguments = argv;
    image = macho_dlopen(program_path, 0);
    if (image == NULL || image->entry == 0) {
        fprintf(stderr, "macho: %s: %s\n", path, image == NULL ? macho_dlerror() : "no program");
        return 2;
    }
    place = image->header + image->entry;
    memcpy(&start, &place, sizeof start);
    return start(argc, argv, environ, no_apple_strings);
}

const struct shim shims_program[] = {SHIM("__NSGetExecutablePath", path_of_program),
                                     SHIM("__NSGetArgc", count_of_arguments),
                                     SHIM("__NSGetArgv", arguments_of_program),
                                     SHIM("__dyld_image_count", image_count),
                                     SHIM("__dyld_get_image_name", image_name),
                                     SHIM("__dyld_register_func_for_add_image", watch_images),
                                     SHIM_END};
