#ifndef SCALER_ISP_TESTS_MACOS_IMAGE_H
#define SCALER_ISP_TESTS_MACOS_IMAGE_H

#include <stddef.h>
#include <stdint.h>

enum { MAX_IMAGES = 64, MAX_SEGMENTS = 16, MAX_LIBRARIES = 16, MAX_INITIALISERS = 8 };

struct span {
    uint8_t *start;
    size_t size;
};

struct segment {
    uint64_t address, size, file_offset, file_size;
    uint32_t protection;
};

/* One loaded file. Addresses in it mean the place it was mapped to, unless they are called so. */
struct image {
    char *path;         /* real path, by which it is found again, and which dladdr reports */
    char *name;         /* the path it was opened by, for messages */
    char *install_name; /* null for a bundle */
    int uses;

    struct span file;     /* the whole file */
    const uint8_t *slice; /* this processor's part of it */
    struct span mapped;   /* where the segments lie */
    int64_t slide;        /* mapped address minus the address in the file */
    uint64_t entry;       /* of a program: its main function, from the header; else 0 */
    uint8_t *header;      /* the mapped header: base of exported addresses */
    struct segment segments[MAX_SEGMENTS];
    int segment_count;
    struct image *libraries[MAX_LIBRARIES]; /* by ordinal - 1; null: the system's */
    int library_count;
    int takes_part_in_weak_lookup;
    struct span exports, rebases, binds, weak_binds, lazy_binds; /* in the file */
    struct span initialisers[MAX_INITIALISERS];
    int initialiser_count;
    struct span eh_frame, unwind_info;
};

/* image.c */
struct image *image_open(const char *path);
struct image *image_find(const char *path); /* already loaded, or null */
void image_close(struct image *image);
struct image *image_of_address(const void *address);
struct image *image_at(int index); /* null between and after the loaded ones, up to MAX_IMAGES */

/* calls.c: the text that macho_dlerror tells next. RETURNS null. */
void *image_error(const char *format, ...) __attribute__((format(printf, 1, 2)));

/* export_trie.c: address of an exported symbol, with its leading underscore; null when there is
 * none. is_weak may be null. */
void *image_export(const struct image *image, const char *symbol, int *is_weak);
uint64_t read_uleb(const uint8_t **place);
int64_t read_sleb(const uint8_t **place);

/* program.c: path of the running program, null if the host is an ordinary one; tells a program that
 * watches its images of a new one. */
const char *program_file(void);
void program_image_loaded(const struct image *image);

/* fixups.c */
void image_rebase(struct image *image);
void image_bind(struct image *image);

/* lookup.c: what a bind means. An import that nobody has becomes a function that names itself and
 * ends the process when it is called. */
void *lookup_bound(const struct image *image, int ordinal, const char *symbol);
void *lookup_weak(const char *symbol);

#endif
