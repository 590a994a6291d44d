#include "image.h"

#include <string.h>

enum { EXPORT_ABSOLUTE = 2, EXPORT_KIND = 3, EXPORT_WEAK = 4, EXPORT_REEXPORT = 8 };

uint64_t read_uleb(const uint8_t **place) {
    uint64_t value = 0;
    int shift = 0;
    uint8_t byte;
    do {
        byte = *(*place)++;
        value |= (uint64_t)(byte & 127U) << shift;
        shift += 7;
    } while (byte & 128U);
    return value;
}

int64_t read_sleb(const uint8_t **place) {
    uint64_t value = 0;
    int shift = 0;
    uint8_t byte;
    do {
        byte = *(*place)++;
        value |= (uint64_t)(byte & 127U) << shift;
        shift += 7;
    } while (byte & 128U);
    if (shift < 64 && (byte & 64U)) {
        value |= ~0ULL << shift;
    }
    return (int64_t)value;
}

/* The address that a node of the trie holds. */
static void *exported_address(const struct image *image, const uint8_t *place, int *is_weak) {
    uint64_t flags = read_uleb(&place);
    uint64_t value;
    if (flags & EXPORT_REEXPORT) {
        return NULL; /* none of the libraries we load re-exports */
    }
    if (is_weak != NULL) {
        *is_weak = (flags & EXPORT_WEAK) != 0;
    }
    value = read_uleb(&place);
    return (flags & EXPORT_KIND) == EXPORT_ABSOLUTE ? (void *)(uintptr_t)value
                                                    : image->header + value;
}

/* Follows the edge that the rest of the symbol starts with; null when there is none. */
static const uint8_t *next_node(const struct image *image, const uint8_t *place,
                                const char **rest) {
    int edges = *place++;
    for (; edges > 0; --edges) {
        const char *edge = (const char *)place;
        size_t length = strlen(edge);
        uint64_t child;
        place += length + 1;
        child = read_uleb(&place);
        if (strncmp(*rest, edge, length) == 0) {
            *rest += length;
            return image->exports.start + child;
        }
    }
    return NULL;
}

void *image_export(const struct image *image, const char *symbol, int *is_weak) {
    const uint8_t *node = image->exports.start;
    if (image->exports.size == 0) {
        return NULL;
    }
    while (node != NULL) {
        uint64_t size = read_uleb(&node);
        if (*symbol == '\0') {
            return size == 0 ? NULL : exported_address(image, node, is_weak);
        }
        node = next_node(image, node + size, &symbol);
    }
    return NULL;
}
