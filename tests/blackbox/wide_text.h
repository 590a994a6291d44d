#ifndef SCALER_ISP_TESTS_BLACKBOX_WIDE_TEXT_H
#define SCALER_ISP_TESTS_BLACKBOX_WIDE_TEXT_H

/* UTF-8 and 32-bit characters, independent of any locale, for the host and the recording plug-ins.
 * Generalised: surrogates and values up to 0x1FFFFF pass, so that cases can hand over what the
 * library must refuse. */

#include <stddef.h>
#include <stdio.h>

/* Decodes a NUL-terminated text. RETURNS the number of characters; out needs capacity for as many
 * as the text has bytes, and one more. A byte that starts no sequence stands for itself. */
static inline size_t utf8_to_wide(const char *text, wchar_t *out) {
    const unsigned char *p = (const unsigned char *)text;
    size_t count = 0;
    while (*p != 0) {
        unsigned long value = *p++;
        int more = value >= 0xF0 ? 3 : value >= 0xE0 ? 2 : value >= 0xC0 ? 1 : 0;
        if (more != 0) {
            value &= 0x3FUL >> more;
        }
        for (; more > 0 && (*p & 0xC0U) == 0x80U; --more) {
            value = (value << 6) | (*p++ & 0x3FUL);
        }
        out[count++] = (wchar_t)value;
    }
    out[count] = L'\0';
    return count;
}

/* Writes one character of a quoted text: controls, quotes and backslashes escaped, the rest UTF-8.
 */
static inline void put_wide_char(FILE *file, unsigned long value) {
    if (value == '"' || value == '\\') {
        fprintf(file, "\\%c", (int)value);
    } else if (value < 0x20 || value == 0x7F) {
        fprintf(file, "\\x%02lX", value);
    } else if (value < 0x80) {
        fputc((int)value, file);
    } else if (value < 0x800) {
        fputc((int)(0xC0 | (value >> 6)), file);
        fputc((int)(0x80 | (value & 0x3F)), file);
    } else if (value < 0x10000) {
        fputc((int)(0xE0 | (value >> 12)), file);
        fputc((int)(0x80 | ((value >> 6) & 0x3F)), file);
        fputc((int)(0x80 | (value & 0x3F)), file);
    } else {
        fputc((int)(0xF0 | ((value >> 18) & 7)), file);
        fputc((int)(0x80 | ((value >> 12) & 0x3F)), file);
        fputc((int)(0x80 | ((value >> 6) & 0x3F)), file);
        fputc((int)(0x80 | (value & 0x3F)), file);
    }
}

#endif
