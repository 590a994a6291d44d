#include "journal.h"

#include <stdlib.h>
#include <string.h>

#include "wide_text.h"

static FILE *open_in_folder(const char *name, const char *mode) {
    const char *folder = getenv("BLACKBOX_DIR");
    char path[4096];
    if (folder == NULL) {
        return NULL;
    }
    snprintf(path, sizeof path, "%s/%s", folder, name);
    return fopen(path, mode);
}

/* Whether the first word of an answer line means this call. */
static int means_call(const char *word, const char *function, int call) {
    size_t length = strlen(function);
    if (strncmp(word, function, length) != 0) {
        return 0;
    }
    return word[length] == '\0' || (word[length] == '#' && atoi(word + length + 1) == call);
}

size_t journal_answers(const char *function, int call, struct answer *answers) {
    static char line[2048];
    size_t count = 0;
    FILE *file = open_in_folder("answers.txt", "r");
    if (file == NULL) {
        return 0;
    }
    while (count < JOURNAL_MAX_ANSWERS && fgets(line, sizeof line, file) != NULL) {
        char word[64];
        int skip = 0;
        if (sscanf(line, "%63s %15s %n", word, answers[count].verb, &skip) == 2 &&
            means_call(word, function, call)) {
            line[strcspn(line, "\n")] = '\0';
            snprintf(answers[count].argument, sizeof answers[count].argument, "%s", line + skip);
            ++count;
        }
    }
    fclose(file);
    return count;
}

FILE *journal_begin(const char *function) {
    struct answer off[JOURNAL_MAX_ANSWERS];
    FILE *file;
    if (journal_answers("journal", 0, off) != 0) {
        return NULL;
    }
    file = open_in_folder("events.txt", "a");
    if (file != NULL) {
        fputs(function, file);
    }
    return file;
}

void journal_end(FILE *file) {
    if (file != NULL) {
        fputc('\n', file);
        fclose(file);
    }
}

void journal_number(FILE *file, const char *name, int64_t value, int64_t expected) {
    if (file != NULL && value != expected) {
        fprintf(file, " %s=%lld", name, (long long)value);
    }
}

void journal_bytes(FILE *file, const char *name, const unsigned char *bytes, size_t count) {
    size_t i = 0;
    if (file == NULL) {
        return;
    }
    fprintf(file, " %s=", name);
    while (i < count) {
        size_t run = 1;
        while (i + run < count && bytes[i + run] == bytes[i]) {
            ++run;
        }
        fprintf(file, "%s%02X", i == 0 ? "" : ",", bytes[i]);
        if (run > 1) {
            fprintf(file, "*%lu", (unsigned long)run);
        }
        i += run;
    }
}

void journal_wide_value(FILE *file, const wchar_t *text, size_t capacity) {
    size_t i = 0;
    fputc('"', file);
    for (; i < capacity && text[i] != L'\0'; ++i) {
        put_wide_char(file, (unsigned long)text[i]);
    }
    fputs(i == capacity ? "\"(full)" : "\"", file);
    for (; i < capacity; ++i) {
        if (text[i] != L'\0') {
            fprintf(file, "+%lu\"", (unsigned long)i);
            for (; i < capacity && text[i] != L'\0'; ++i) {
                put_wide_char(file, (unsigned long)text[i]);
            }
            fputc('"', file);
        }
    }
}

void journal_wide(FILE *file, const char *name, const wchar_t *text, size_t capacity) {
    if (file != NULL) {
        fprintf(file, " %s=", name);
        journal_wide_value(file, text, capacity);
    }
}

/* Bytes stay bytes: a text that is no UTF-8 is written as it is. */
static void put_narrow_char(FILE *file, char value) {
    unsigned char byte = (unsigned char)value;
    if (byte < 0x80) {
        put_wide_char(file, byte);
    } else {
        fputc(byte, file);
    }
}

void journal_narrow(FILE *file, const char *name, const char *text, size_t capacity) {
    size_t i = 0;
    if (file == NULL) {
        return;
    }
    fprintf(file, " %s=\"", name);
    for (; i < capacity && text[i] != '\0'; ++i) {
        put_narrow_char(file, text[i]);
    }
    fputs(i == capacity ? "\"(full)" : "\"", file);
    for (; i < capacity; ++i) {
        if (text[i] != '\0') {
            fprintf(file, "+%lu\"", (unsigned long)i);
            for (; i < capacity && text[i] != '\0'; ++i) {
                put_narrow_char(file, text[i]);
            }
            fputc('"', file);
        }
    }
}
