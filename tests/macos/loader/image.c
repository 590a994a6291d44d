#include "image.h"
#include "loader.h"

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __aarch64__
static const uint32_t our_cpu = 0x0100000C;
#else
static const uint32_t our_cpu = 0x01000007;
#endif

enum {
    MAGIC = 0xFEEDFACF,
    UNIVERSAL_MAGIC = 0xBEBAFECA, /* big-endian in the file */
    COMMAND_SEGMENT = 0x19,
    COMMAND_LIBRARY = 0xC,
    COMMAND_NAME = 0xD,
    COMMAND_DYLD_INFO = 0x80000022,
    COMMAND_MAIN = 0x80000028,
    COMMAND_CHAINED_FIXUPS = 0x80000034,
    FLAG_WEAK = 0x18000, /* defines weak symbols or binds to them */
    SECTION_INITIALISERS = 0x9,
    SECTION_INITIALISER_OFFSETS = 0x16,
    SECTION_THREAD_VARIABLES = 0x13
};

static struct image *images[MAX_IMAGES];

struct image *image_at(int index) {
    return images[index];
}

static uint32_t number_at(const uint8_t *place) {
    uint32_t value;
    memcpy(&value, place, sizeof value);
    return value;
}

static uint64_t wide_number_at(const uint8_t *place) {
    uint64_t value;
    memcpy(&value, place, sizeof value);
    return value;
}

/* ---- finding the part of the file for this processor ---- */

static int map_file(struct image *image) {
    struct stat info;
    int file = open(image->path, O_RDONLY | O_CLOEXEC);
    if (file < 0 || fstat(file, &info) != 0) {
        image_error("dlopen(%s): %s", image->name, strerror(errno));
        return 0;
    }
    image->file.size = (size_t)info.st_size;
    image->file.start = info.st_size < 32
                            ? MAP_FAILED
                            : mmap(NULL, image->file.size, PROT_READ, MAP_PRIVATE, file, 0);
    close(file);
    if (image->file.start == MAP_FAILED) {
        image->file.start = NULL;
        image_error("dlopen(%s): tried: '%s' (not a mach-o file)", image->name, image->name);
        return 0;
    }
    return 1;
}

static int choose_slice(struct image *image) {
    const uint8_t *start = image->file.start;
    if (number_at(start) == UNIVERSAL_MAGIC) {
        uint32_t count = __builtin_bswap32(number_at(start + 4));
        const uint8_t *entry = start + 8;
        for (; count > 0; --count, entry += 20) {
            if (__builtin_bswap32(number_at(entry)) == our_cpu) {
                image->slice = start + __builtin_bswap32(number_at(entry + 8));
            }
        }
    } else {
        image->slice = start;
    }
    if (image->slice == NULL || number_at(image->slice) != MAGIC ||
        number_at(image->slice + 4) != our_cpu) {
        image_error("dlopen(%s): no mach-o file for this processor", image->name);
        return 0;
    }
    return 1;
}

/* ---- load commands ---- */

static void note_section(struct image *image, const uint8_t *section) {
    struct span place;
    uint8_t type = section[64];
    place.start = (uint8_t *)(uintptr_t)(wide_number_at(section + 32) + (uint64_t)image->slide);
    place.size = (size_t)wide_number_at(section + 40);
    if (strncmp((const char *)section, "__eh_frame", 16) == 0) {
        image->eh_frame = place;
    } else if (strncmp((const char *)section, "__unwind_info", 16) == 0) {
        image->unwind_info = place;
    } else if (type == SECTION_INITIALISERS && image->initialiser_count < MAX_INITIALISERS) {
        image->initialisers[image->initialiser_count++] = place;
    } else if (type == SECTION_INITIALISER_OFFSETS || type == SECTION_THREAD_VARIABLES) {
        fprintf(stderr, "macho: %s: section %.16s is not understood\n", image->path,
                (const char *)section);
        abort();
    }
}

static struct span in_slice(const struct image *image, const uint8_t *pair) {
    struct span place;
    place.start = (uint8_t *)(uintptr_t)(image->slice + number_at(pair));
    place.size = number_at(pair + 4);
    return place;
}

/* MACHO_RPATH names the folder that stands for @rpath; without it, it is the image's own. */
static struct image *open_library(const struct image *image, const char *name) {
    char path[4096];
    const char *runtime = getenv("MACHO_RUNTIME");
    const char *rpath = getenv("MACHO_RPATH");
    struct image *library;
    if (strcmp(name, "/usr/lib/libc++.1.dylib") == 0) {
        snprintf(path, sizeof path, "%s/libc++.1.dylib", runtime == NULL ? "." : runtime);
    } else if (strncmp(name, "@rpath/", 7) != 0) {
        return NULL; /* the system's: glibc answers */
    } else if (rpath != NULL) {
        snprintf(path, sizeof path, "%s/%s", rpath, name + 7);
    } else {
        const char *slash = strrchr(image->path, '/');
        snprintf(path, sizeof path, "%.*s/%s", (int)(slash - image->path), image->path, name + 7);
    }
    library = image_open(path);
    if (library == NULL) {
        fprintf(stderr, "macho: %s needs %s: %s\n", image->path, name, macho_dlerror());
        abort();
    }
    return library;
}

static void note_command(struct image *image, const uint8_t *command) {
    const char *text = (const char *)command + number_at(command + 8);
    uint32_t i;
    switch (number_at(command)) {
    case COMMAND_SEGMENT:
        for (i = 0; i < number_at(command + 64); ++i) {
            note_section(image, command + 72 + 80 * i);
        }
        break;
    case COMMAND_NAME:
        image->install_name = strdup(text);
        break;
    case COMMAND_LIBRARY:
        if (image->library_count < MAX_LIBRARIES) {
            image->libraries[image->library_count++] = open_library(image, text);
        }
        break;
    case COMMAND_MAIN:
        image->entry = wide_number_at(command + 8);
        break;
    case COMMAND_DYLD_INFO:
        image->rebases = in_slice(image, command + 8);
        image->binds = in_slice(image, command + 16);
        image->weak_binds = in_slice(image, command + 24);
        image->lazy_binds = in_slice(image, command + 32);
        image->exports = in_slice(image, command + 40);
        break;
    case COMMAND_CHAINED_FIXUPS:
        fprintf(stderr, "macho: %s: chained fixups are not understood\n", image->path);
        abort();
    default:
        break;
    }
}

static void for_each_command(struct image *image,
                             void (*use)(struct image *image, const uint8_t *command)) {
    const uint8_t *command = image->slice + 32;
    uint32_t count = number_at(image->slice + 16);
    for (; count > 0; --count) {
        use(image, command);
        command += number_at(command + 4);
    }
}

/* ---- mapping ---- */

static void note_segment(struct image *image, const uint8_t *command) {
    struct segment *segment = &image->segments[image->segment_count];
    if (number_at(command) != COMMAND_SEGMENT || image->segment_count == MAX_SEGMENTS) {
        return;
    }
    segment->address = wide_number_at(command + 24);
    segment->size = wide_number_at(command + 32);
    segment->file_offset = wide_number_at(command + 40);
    segment->file_size = wide_number_at(command + 48);
    segment->protection = number_at(command + 60);
    ++image->segment_count;
}

static uint8_t *address_of(const struct image *image, const struct segment *segment) {
    return (uint8_t *)(uintptr_t)(segment->address + (uint64_t)image->slide);
}

/* Libraries begin at address 0; in a program __PAGEZERO is in front of the header. It is not
 * mapped: nothing of it is in the file. */
static void map_segments(struct image *image) {
    uint64_t end = 0;
    uint64_t base = 0;
    int i;
    for (i = 0; i < image->segment_count; ++i) {
        const struct segment *segment = &image->segments[i];
        if (segment->file_offset == 0 && segment->file_size != 0) {
            base = segment->address;
        }
        if (segment->address + segment->size > end) {
            end = segment->address + segment->size;
        }
    }
    image->mapped.size = (size_t)(end - base);
    image->mapped.start =
        mmap(NULL, image->mapped.size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (image->mapped.start == MAP_FAILED) {
        abort();
    }
    image->header = image->mapped.start;
    image->slide = (int64_t)(intptr_t)image->mapped.start - (int64_t)base;
    for (i = 0; i < image->segment_count; ++i) {
        const struct segment *segment = &image->segments[i];
        if (segment->file_size != 0) {
            memcpy(address_of(image, segment), image->slice + segment->file_offset,
                   (size_t)segment->file_size);
        }
    }
}

static void protect_segments(const struct image *image) {
    int i;
    for (i = 0; i < image->segment_count; ++i) {
        const struct segment *segment = &image->segments[i];
        int protection = (segment->protection & 1U ? PROT_READ : 0) |
                         (segment->protection & 2U ? PROT_WRITE : 0) |
                         (segment->protection & 4U ? PROT_EXEC : 0);
        if (segment->size != 0 && segment->protection != 0) {
            mprotect(address_of(image, segment), (size_t)((segment->size + 4095) & ~4095ULL),
                     protection);
        }
    }
}

/* ---- opening and closing ---- */

typedef void (*initialiser)(int, char **, char **, char **, void *);

static void run_initialisers(const struct image *image) {
    static char *arguments[] = {NULL};
    extern char **environ;
    int i;
    for (i = 0; i < image->initialiser_count; ++i) {
        const uint8_t *place = image->initialisers[i].start;
        const uint8_t *end = place + image->initialisers[i].size;
        for (; place < end; place += sizeof(initialiser)) {
            initialiser function;
            memcpy(&function, place, sizeof function);
            function(0, arguments, environ, arguments, NULL);
        }
    }
}

static void free_image(struct image *image) {
    if (image->mapped.start != NULL) {
        munmap(image->mapped.start, image->mapped.size);
    }
    if (image->file.start != NULL) {
        munmap(image->file.start, image->file.size);
    }
    free(image->path);
    free(image->name);
    free(image->install_name);
    free(image);
}

static int load(struct image *image) {
    if (!map_file(image)) {
        return 0;
    }
    if (!choose_slice(image)) {
        return 0;
    }
    for_each_command(image, note_segment);
    map_segments(image);
    image->takes_part_in_weak_lookup = (number_at(image->slice + 24) & FLAG_WEAK) != 0;
    for_each_command(image, note_command);
    return 1;
}

static int free_index(void) {
    int i;
    for (i = 0; i < MAX_IMAGES; ++i) {
        if (images[i] == NULL) {
            return i;
        }
    }
    fprintf(stderr, "macho: too many images\n");
    abort();
}

struct image *image_find(const char *path) {
    char real[4096];
    int i;
    if (realpath(path, real) == NULL) {
        return NULL;
    }
    for (i = 0; i < MAX_IMAGES; ++i) {
        if (images[i] != NULL && strcmp(images[i]->path, real) == 0) {
            return images[i];
        }
    }
    return NULL;
}

struct image *image_open(const char *path) {
    struct image *image = image_find(path);
    char real[4096];
    if (image != NULL) {
        ++image->uses;
        return image;
    }
    if (realpath(path, real) == NULL) {
        return image_error("dlopen(%s): tried: '%s' (no such file)", path, path);
    }
    image = calloc(1, sizeof *image);
    if (image == NULL) {
        abort();
    }
    image->path = strdup(real);
    image->name = strdup(path);
    image->uses = 1;
    if (!load(image)) {
        free_image(image);
        return NULL;
    }
    images[free_index()] = image;
    image_rebase(image);
    image_bind(image);
    protect_segments(image);
    program_image_loaded(image);
    run_initialisers(image);
    return image;
}

extern void __cxa_finalize(void *);

void image_close(struct image *image) {
    int i;
    if (--image->uses != 0) {
        return;
    }
    __cxa_finalize(image->header);
    for (i = 0; i < image->library_count; ++i) {
        if (image->libraries[i] != NULL) {
            image_close(image->libraries[i]);
        }
    }
    for (i = 0; i < MAX_IMAGES; ++i) {
        if (images[i] == image) {
            images[i] = NULL;
        }
    }
    free_image(image);
}

struct image *image_of_address(const void *address) {
    uintptr_t wanted = (uintptr_t)address;
    int i;
    for (i = 0; i < MAX_IMAGES; ++i) {
        uintptr_t start = images[i] == NULL ? 0 : (uintptr_t)images[i]->mapped.start;
        if (start != 0 && wanted >= start && wanted < start + images[i]->mapped.size) {
            return images[i];
        }
    }
    return NULL;
}
