#include "record_journal.h"

#include <string.h>

#include "journal.h"

enum kind { KIND_U32, KIND_I32, KIND_U8, KIND_U64, KIND_BYTES, KIND_WIDE, KIND_NARROW, KIND_BANKS };

#define MAX_BANKS 512
#define ENTRY_BYTES 1056

/* The walk through a record: fields must follow each other without a gap. */
struct walk {
    FILE *file;
    const unsigned char *bytes;
    size_t next;
    uint32_t bank_count;
};

static void step(struct walk *walk, size_t offset, size_t width) {
    if (offset != walk->next && walk->file != NULL) {
        fprintf(walk->file, " LAYOUT-GAP@%lu", (unsigned long)walk->next);
    }
    walk->next = offset + width;
}

static int64_t number_at(const unsigned char *p, enum kind kind) {
    uint64_t value64;
    uint32_t value32;
    int32_t signed32;
    switch (kind) {
    case KIND_U8:
        return *p;
    case KIND_U64:
        memcpy(&value64, p, sizeof value64);
        return (int64_t)value64;
    case KIND_I32:
        memcpy(&signed32, p, sizeof signed32);
        return signed32;
    default:
        memcpy(&value32, p, sizeof value32);
        return value32;
    }
}

/* An array of bytes or characters of which every element is the default. */
static int all_are(const unsigned char *p, size_t width, int expected) {
    size_t i;
    for (i = 0; i < width; ++i) {
        if (p[i] != (unsigned char)expected) {
            return 0;
        }
    }
    return 1;
}

static void field(struct walk *walk, enum kind kind, const char *name, size_t offset, size_t width,
                  int expected) {
    const unsigned char *p = walk->bytes + offset;
    step(walk, offset, width);
    switch (kind) {
    case KIND_BANKS:
        break; /* printed with the entries */
    case KIND_BYTES:
        if (!all_are(p, width, expected)) {
            journal_bytes(walk->file, name, p, width);
        }
        break;
    case KIND_WIDE:
        if (!all_are(p, width, expected)) {
            journal_wide(walk->file, name, (const wchar_t *)(const void *)p,
                         width / sizeof(wchar_t));
        }
        break;
    case KIND_NARROW:
        if (!all_are(p, width, expected)) {
            journal_narrow(walk->file, name, (const char *)p, width);
        }
        break;
    default:
        journal_number(walk->file, name, number_at(p, kind), expected);
        break;
    }
}

/* One entry of the bank map, walked like a record of its own. */
struct entry {
    uint32_t target;
    uint64_t value;
    uint32_t file_bank;
    const unsigned char *path;
};

static struct entry entry_at(const struct walk *walk, size_t targets, size_t entries, uint32_t i) {
    const unsigned char *p = walk->bytes + entries + (size_t)i * ENTRY_BYTES;
    struct entry entry;
    memcpy(&entry.target, walk->bytes + targets + 4 * (size_t)i, 4);
    memcpy(&entry.value, p, 8);
    memcpy(&entry.file_bank, p + 8, 4);
    entry.path = p + 12;
    if (i >= walk->bank_count) {
        entry.target = i; /* without meaning from here on */
    }
    return entry;
}

static int continues(const struct entry *first, const struct entry *next, uint32_t distance) {
    return next->target == first->target + distance &&
           next->file_bank == first->file_bank + distance && next->value == first->value &&
           memcmp(next->path, first->path, 1040) == 0;
}

static int is_blank(const struct entry *entry) {
    return entry->value == 0 && entry->file_bank == 0 && all_are(entry->path, 1040, 0);
}

/* bank[FIRST..LAST]=FIRST..LAST:"path" for a run of banks of one file. */
static void print_run(FILE *file, const char *name, const struct entry *first, uint32_t length) {
    if (length == 1) {
        fprintf(file, " %s[%u]=%u", name, (unsigned)first->target, (unsigned)first->file_bank);
    } else {
        fprintf(file, " %s[%u..%u]=%u..%u", name, (unsigned)first->target,
                (unsigned)(first->target + length - 1), (unsigned)first->file_bank,
                (unsigned)(first->file_bank + length - 1));
    }
    if (first->value != 0) {
        fprintf(file, "(value=%llu)", (unsigned long long)first->value);
    }
    fputc(':', file);
    journal_wide_value(file, (const wchar_t *)(const void *)first->path, 260);
}

static void bank_entries(struct walk *walk, size_t targets, size_t entries) {
    uint32_t i = 0;
    uint32_t count = walk->bank_count > MAX_BANKS ? MAX_BANKS : walk->bank_count;
    if (walk->file == NULL) {
        return;
    }
    while (i < MAX_BANKS) {
        struct entry first = entry_at(walk, targets, entries, i);
        uint32_t end = i < count ? count : MAX_BANKS;
        uint32_t length = 1;
        if (i >= count && is_blank(&first)) {
            ++i;
            continue;
        }
        while (i + length < end) {
            struct entry next = entry_at(walk, targets, entries, i + length);
            if (!continues(&first, &next, length)) {
                break;
            }
            ++length;
        }
        print_run(walk->file, i < count ? "bank" : "spare", &first, length);
        i += length;
    }
}

void journal_command_setting(FILE *file, const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) {
    struct walk walk = {NULL, NULL, 0, 0};
    size_t entry_next = 0;
    size_t targets = 0;
    walk.file = file;
    walk.bytes = (const unsigned char *)setting;
    walk.bank_count = setting->stMapFw.ulFwCount;
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                     \
    targets = KIND_##KIND == KIND_BANKS ? (OFFSET) : targets;                                      \
    field(&walk, KIND_##KIND, #MEMBER, OFFSET, WIDTH, DEFAULT);
#define SCALER_ISP_PADDING(OFFSET, WIDTH) step(&walk, OFFSET, WIDTH);
#define SCALER_ISP_BANK_ENTRIES(OFFSET, WIDTH)                                                     \
    step(&walk, OFFSET, WIDTH);                                                                    \
    bank_entries(&walk, targets, OFFSET);
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                \
    entry_next = entry_next == (OFFSET) ? (OFFSET) + (WIDTH) : 0;
#define SCALER_ISP_BANK_PADDING(OFFSET, WIDTH)                                                     \
    entry_next = entry_next == (OFFSET) ? (OFFSET) + (WIDTH) : 0;
#include "scaler_isp/abi/command_setting_fields.def"
    step(&walk, sizeof *setting, 0);
    if (entry_next != ENTRY_BYTES && file != NULL) {
        fputs(" LAYOUT-GAP-IN-BANK-ENTRY", file);
    }
}

void journal_sign_args(FILE *file, const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) {
    struct walk walk = {NULL, NULL, 0, 0};
    walk.file = file;
    walk.bytes = (const unsigned char *)args;
#define SCALER_ISP_SIGN_FIELD(KIND, MEMBER, OFFSET, WIDTH)                                         \
    field(&walk, KIND_##KIND, #MEMBER, OFFSET, WIDTH, 0);
#include "scaler_isp/abi/digital_sign_fields.def"
    step(&walk, sizeof *args, 0);
}
