#include "image.h"
#include "shims.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

static void trap_called(const char *name) {
    fprintf(stderr, "macho: call of an import that the loader does not have: %s\n", name);
    abort();
}

enum { TRAP_BYTES = 32, TRAP_POOL = 65536, MAX_TRAPS = 1024 };

/* A small function that calls trap_called with the name. */
static void *make_trap(const char *name) {
    static uint8_t *pool;
    static size_t used;
    void (*function)(const char *) = trap_called;
    uint8_t *place;
    if (pool == NULL || used + TRAP_BYTES > TRAP_POOL) {
        pool = mmap(NULL, TRAP_POOL, PROT_READ | PROT_WRITE | PROT_EXEC,
                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        used = 0;
        if (pool == MAP_FAILED) {
            abort();
        }
    }
    place = pool + used;
    used += TRAP_BYTES;
#ifdef __aarch64__
    {
        /* ldr x0, name; ldr x16, function; br x16 */
        static const uint32_t code[3] = {0x58000060, 0x58000090, 0xD61F0200};
        memcpy(place, code, sizeof code);
        memcpy(place + 12, &name, 8);
        memcpy(place + 20, &function, 8);
        __builtin___clear_cache((char *)place, (char *)place + TRAP_BYTES);
    }
#else
    {
        /* mov rdi, name; mov rax, function; and rsp, -16; call rax */
        static const uint8_t code[26] = {0x48, 0xBF, 0,    0,    0,    0,    0,    0,   0,
                                         0,    0x48, 0xB8, 0,    0,    0,    0,    0,   0,
                                         0,    0,    0x48, 0x83, 0xE4, 0xF0, 0xFF, 0xD0};
        memcpy(place, code, sizeof code);
        memcpy(place + 2, &name, 8);
        memcpy(place + 12, &function, 8);
    }
#endif
    return place;
}

/* One trap for each name, however often it is asked for. MACHO_VERBOSE tells at load time what
 * would trap.
 */
static void *missing(const char *symbol) {
    static struct {
        const char *symbol;
        void *trap;
    } known[MAX_TRAPS];
    int i = 0;
    while (i < MAX_TRAPS - 1 && known[i].symbol != NULL) {
        if (strcmp(known[i].symbol, symbol) == 0) {
            return known[i].trap;
        }
        ++i;
    }
    if (getenv("MACHO_VERBOSE") != NULL) {
        fprintf(stderr, "macho: nobody has %s\n", symbol);
    }
    known[i].symbol = strdup(symbol);
    known[i].trap = make_trap(known[i].symbol);
    return known[i].trap;
}

/* The system's side: the unwinder, which on macOS belongs to libSystem, then glibc. */
static void *lookup_in_system(const char *symbol) {
    void *found;
    int i;
    for (i = 0; i < MAX_IMAGES; ++i) {
        struct image *image = image_at(i);
        if (image != NULL && image->install_name != NULL &&
            strstr(image->install_name, "libunwind") != NULL) {
            found = image_export(image, symbol, NULL);
            if (found != NULL) {
                return found;
            }
        }
    }
    found = shim_find(symbol);
    return found != NULL ? found : missing(symbol);
}

void *lookup_bound(const struct image *image, int ordinal, const char *symbol) {
    void *found = NULL;
    int i;
    if (ordinal > 0) {
        const struct image *library =
            ordinal <= image->library_count ? image->libraries[ordinal - 1] : NULL;
        if (library == NULL) {
            return lookup_in_system(symbol);
        }
        found = image_export(library, symbol, NULL);
        return found != NULL ? found : missing(symbol);
    }
    if (ordinal == 0) {
        found = image_export(image, symbol, NULL);
        return found != NULL ? found : missing(symbol);
    }
    for (i = 0; i < MAX_IMAGES && found == NULL; ++i) {
        found = image_at(i) == NULL ? NULL : image_export(image_at(i), symbol, NULL);
    }
    return found != NULL ? found : lookup_in_system(symbol);
}

/* One definition for the whole process: a strong one wins, else the first weak one. */
void *lookup_weak(const char *symbol) {
    void *first = NULL;
    int i;
    for (i = 0; i < MAX_IMAGES; ++i) {
        struct image *image = image_at(i);
        int is_weak = 0;
        void *found;
        if (image == NULL || !image->takes_part_in_weak_lookup) {
            continue;
        }
        found = image_export(image, symbol, &is_weak);
        if (found != NULL && !is_weak) {
            return found;
        }
        if (first == NULL) {
            first = found;
        }
    }
    return first;
}
