#include "image.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The loader writes what the opcodes of the file tell: pointers into the image itself (rebase) and
 * pointers to symbols (bind). The upper half of an opcode byte is the code, the lower a small
 * number. */

static void unknown_opcode(const char *kind, unsigned code) {
    fprintf(stderr, "macho: unknown %s opcode 0x%X\n", kind, code);
    abort();
}

static uint8_t *in_segment(const struct image *image, unsigned segment, uint64_t offset) {
    return (uint8_t *)(uintptr_t)(image->segments[segment].address + (uint64_t)image->slide +
                                  offset);
}

static void add_slide(uint8_t *place, int64_t slide) {
    uint64_t value;
    memcpy(&value, place, sizeof value);
    value += (uint64_t)slide;
    memcpy(place, &value, sizeof value);
}

void image_rebase(struct image *image) {
    const uint8_t *code = image->rebases.start;
    const uint8_t *end = code + image->rebases.size;
    uint8_t *place = NULL;
    while (code < end) {
        unsigned small = *code & 0x0FU;
        unsigned operation = *code++ & 0xF0U;
        uint64_t times = 0;
        uint64_t gap = 0;
        switch (operation) {
        case 0x00:
            return;
        case 0x10: /* type: pointers are the only one */
            break;
        case 0x20:
            place = in_segment(image, small, read_uleb(&code));
            break;
        case 0x30:
            place += read_uleb(&code);
            break;
        case 0x40:
            place += small * 8U;
            break;
        case 0x50:
            times = small;
            break;
        case 0x60:
            times = read_uleb(&code);
            break;
        case 0x70:
            times = 1;
            gap = read_uleb(&code);
            break;
        case 0x80:
            times = read_uleb(&code);
            gap = read_uleb(&code);
            break;
        default:
            unknown_opcode("rebase", operation);
        }
        for (; times > 0; --times) {
            add_slide(place, image->slide);
            place += 8 + gap;
        }
    }
}

enum bind_kind { BIND_STRONG, BIND_WEAK, BIND_LAZY };

struct binding {
    const struct image *image;
    enum bind_kind kind;
    const char *symbol;
    int ordinal;
    int64_t addend;
    uint8_t *place;
};

static void write_binding(struct binding *binding, uint64_t times, uint64_t gap) {
    void *target = binding->kind == BIND_WEAK
                       ? lookup_weak(binding->symbol)
                       : lookup_bound(binding->image, binding->ordinal, binding->symbol);
    for (; times > 0; --times) {
        if (target != NULL) { /* a weak one that nobody offers keeps its strong binding */
            uint64_t value = (uint64_t)(uintptr_t)target + (uint64_t)binding->addend;
            memcpy(binding->place, &value, sizeof value);
        }
        binding->place += 8 + gap;
    }
}

/* Opcodes that write; the others only set up. */
static void bind_now(struct binding *binding, unsigned operation, unsigned small,
                     const uint8_t **code) {
    uint64_t times = 1;
    uint64_t gap = 0;
    switch (operation) {
    case 0x90:
        break;
    case 0xA0:
        gap = read_uleb(code);
        break;
    case 0xB0:
        gap = small * 8U;
        break;
    case 0xC0:
        times = read_uleb(code);
        gap = read_uleb(code);
        break;
    default:
        unknown_opcode("bind", operation);
    }
    write_binding(binding, times, gap);
}

static void bind_all(struct image *image, struct span codes, enum bind_kind kind) {
    const uint8_t *code = codes.start;
    const uint8_t *end = code + codes.size;
    struct binding binding = {image, kind, "", 0, 0, NULL};
    while (code < end) {
        unsigned small = *code & 0x0FU;
        unsigned operation = *code++ & 0xF0U;
        switch (operation) {
        case 0x00:
            if (kind != BIND_LAZY) { /* there it ends one entry only */
                return;
            }
            break;
        case 0x10:
            binding.ordinal = (int)small;
            break;
        case 0x20:
            binding.ordinal = (int)read_uleb(&code);
            break;
        case 0x30:
            binding.ordinal = small == 0 ? 0 : (int)small - 16;
            break;
        case 0x40:
            binding.symbol = (const char *)code;
            code += strlen(binding.symbol) + 1;
            break;
        case 0x50: /* type: pointers are the only one */
            break;
        case 0x60:
            binding.addend = read_sleb(&code);
            break;
        case 0x70:
            binding.place = in_segment(image, small, read_uleb(&code));
            break;
        case 0x80:
            binding.place += read_uleb(&code);
            break;
        default:
            bind_now(&binding, operation, small, &code);
        }
    }
}

void image_bind(struct image *image) {
    bind_all(image, image->binds, BIND_STRONG);
    bind_all(image, image->lazy_binds, BIND_LAZY);
    bind_all(image, image->weak_binds, BIND_WEAK);
}
