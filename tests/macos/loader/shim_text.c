/* Multibyte text and character classes. In the plain C locale macOS takes every byte as the
 * character of the same number, up to 255; glibc stops at 127. */

#define _GNU_SOURCE

#include "shims.h"

#include <ctype.h>
#include <errno.h>
#include <iconv.h>
#include <langinfo.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <wchar.h>
#include <wctype.h>

/* The locale in force, also where it is the global one. */
static locale_t current_locale(void) {
    static __thread locale_t copy;
    if (copy != NULL) {
        freelocale(copy);
    }
    copy = duplocale(uselocale(NULL));
    return copy;
}

static int is_plain(void) {
    return strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0;
}

/* ---- the plain locale ---- */

static size_t plain_mbrtowc(wchar_t *to, const char *from, size_t n) {
    if (from == NULL) {
        return 0;
    }
    if (n == 0) {
        return (size_t)-2;
    }
    if (to != NULL) {
        *to = (unsigned char)*from;
    }
    return *from != '\0';
}

static size_t plain_wcrtomb(char *to, wchar_t value) {
    if (to == NULL) {
        return 1;
    }
    if (value < 0 || value > 255) {
        errno = EILSEQ;
        return (size_t)-1;
    }
    *to = (char)value;
    return 1;
}

/* At most n bytes to at most capacity characters. */
static size_t plain_to_wide(wchar_t *to, const char **from, size_t n, size_t capacity) {
    const char *place = *from;
    size_t count = 0;
    while (n-- > 0 && (to == NULL || count < capacity)) {
        if (to != NULL) {
            to[count] = (unsigned char)*place;
        }
        if (*place == '\0') {
            *from = to == NULL ? *from : NULL;
            return count;
        }
        ++count;
        ++place;
    }
    *from = to == NULL ? *from : place;
    return count;
}

static size_t plain_to_bytes(char *to, const wchar_t **from, size_t n, size_t capacity) {
    const wchar_t *place = *from;
    size_t count = 0;
    while (n-- > 0 && (to == NULL || count < capacity)) {
        if (*place < 0 || *place > 255) {
            *from = to == NULL ? *from : place;
            errno = EILSEQ;
            return (size_t)-1;
        }
        if (to != NULL) {
            to[count] = (char)*place;
        }
        if (*place == L'\0') {
            *from = to == NULL ? *from : NULL;
            return count;
        }
        ++count;
        ++place;
    }
    *from = to == NULL ? *from : place;
    return count;
}

/* ---- in the locale in force ---- */

static size_t s_mbrtowc(wchar_t *to, const char *from, size_t n, mbstate_t *state) {
    return is_plain() ? plain_mbrtowc(to, from, n) : mbrtowc(to, from, n, state);
}

static size_t s_wcrtomb(char *to, wchar_t value, mbstate_t *state) {
    return is_plain() ? plain_wcrtomb(to, value) : wcrtomb(to, value, state);
}

static size_t s_mbsnrtowcs(wchar_t *to, const char **from, size_t n, size_t capacity,
                           mbstate_t *s) {
    return is_plain() ? plain_to_wide(to, from, n, capacity) : mbsnrtowcs(to, from, n, capacity, s);
}

static size_t s_wcsnrtombs(char *to, const wchar_t **from, size_t n, size_t capacity,
                           mbstate_t *s) {
    return is_plain() ? plain_to_bytes(to, from, n, capacity)
                      : wcsnrtombs(to, from, n, capacity, s);
}

static size_t s_mbsrtowcs(wchar_t *to, const char **from, size_t capacity, mbstate_t *s) {
    return is_plain() ? plain_to_wide(to, from, SIZE_MAX, capacity)
                      : mbsrtowcs(to, from, capacity, s);
}

static size_t s_wcsrtombs(char *to, const wchar_t **from, size_t capacity, mbstate_t *s) {
    return is_plain() ? plain_to_bytes(to, from, SIZE_MAX, capacity)
                      : wcsrtombs(to, from, capacity, s);
}

static int mb_cur_max(void) {
    return (int)MB_CUR_MAX;
}

/* ---- in a given locale ---- */

#define IN_LOCALE(TYPE, EXPRESSION)                                                                \
    locale_t former = uselocale(shim_locale(l));                                                   \
    TYPE result = (EXPRESSION);                                                                    \
    uselocale(former);                                                                             \
    return result

static int mb_cur_max_l(void *l) {
    IN_LOCALE(int, (int)MB_CUR_MAX);
}

static wint_t s_btowc_l(int byte, void *l) {
    IN_LOCALE(wint_t, btowc(byte));
}

static int s_wctob_l(wint_t value, void *l) {
    IN_LOCALE(int, wctob(value));
}

static size_t s_mbrtowc_l(wchar_t *to, const char *from, size_t n, mbstate_t *s, void *l) {
    IN_LOCALE(size_t, s_mbrtowc(to, from, n, s));
}

static size_t s_mbrlen_l(const char *from, size_t n, mbstate_t *s, void *l) {
    IN_LOCALE(size_t, s_mbrtowc(NULL, from, n, s));
}

static int s_mbtowc_l(wchar_t *to, const char *from, size_t n, void *l) {
    IN_LOCALE(int, is_plain() ? (int)plain_mbrtowc(to, from, n) : mbtowc(to, from, n));
}

static size_t s_mbsnrtowcs_l(wchar_t *to, const char **from, size_t n, size_t capacity,
                             mbstate_t *s, void *l) {
    IN_LOCALE(size_t, s_mbsnrtowcs(to, from, n, capacity, s));
}

static size_t s_mbsrtowcs_l(wchar_t *to, const char **from, size_t capacity, mbstate_t *s,
                            void *l) {
    IN_LOCALE(size_t, s_mbsrtowcs(to, from, capacity, s));
}

static size_t s_wcrtomb_l(char *to, wchar_t value, mbstate_t *s, void *l) {
    IN_LOCALE(size_t, s_wcrtomb(to, value, s));
}

static size_t s_wcsnrtombs_l(char *to, const wchar_t **from, size_t n, size_t capacity,
                             mbstate_t *s, void *l) {
    IN_LOCALE(size_t, s_wcsnrtombs(to, from, n, capacity, s));
}

/* ---- character classes: macOS's headers read a table, bits as there ---- */

static struct {
    char magic[8];
    char encoding[32];
    void *get, *put;
    int invalid;
    uint32_t classes[256];
    int lower[256], upper[256];
    char rest[256];
} rune_table;

static unsigned long class_bits(wint_t value, locale_t locale) {
    unsigned long bits = 0;
    bits |= iswalpha_l(value, locale) ? 0x100U : 0;
    bits |= iswcntrl_l(value, locale) ? 0x200U : 0;
    bits |= value < 128 && isdigit((int)value) ? 0x400U : 0;
    bits |= iswgraph_l(value, locale) ? 0x800U : 0;
    bits |= iswlower_l(value, locale) ? 0x1000U : 0;
    bits |= iswpunct_l(value, locale) ? 0x2000U : 0;
    bits |= iswspace_l(value, locale) ? 0x4000U : 0;
    bits |= iswupper_l(value, locale) ? 0x8000U : 0;
    bits |= value < 128 && isxdigit((int)value) ? 0x10000U : 0;
    bits |= iswblank_l(value, locale) ? 0x20000U : 0;
    bits |= iswprint_l(value, locale) ? 0x40000U : 0;
    return bits;
}

__attribute__((constructor)) static void fill_rune_table(void) {
    int value;
    memcpy(rune_table.magic, "RuneMagA", 8);
    rune_table.invalid = 0xFFFD;
    for (value = 0; value < 256; ++value) {
        int is_ascii = value < 128;
        rune_table.classes[value] =
            is_ascii ? (uint32_t)class_bits((wint_t)value, shim_locale(NULL)) : 0;
        rune_table.lower[value] = is_ascii ? tolower(value) : value;
        rune_table.upper[value] = is_ascii ? toupper(value) : value;
    }
}

static int in_class_l(int value, unsigned long wanted, void *l) {
    if (value >= 0 && value < 128) {
        return (int)(rune_table.classes[value] & wanted);
    }
    return (
        int)(class_bits((wint_t)value, l == LC_GLOBAL_LOCALE ? current_locale() : shim_locale(l)) &
             wanted);
}

static int in_class(int value, unsigned long wanted) {
    return in_class_l(value, wanted, LC_GLOBAL_LOCALE);
}

static int lower(int value) {
    return (int)towlower((wint_t)value);
}

static int upper(int value) {
    return (int)towupper((wint_t)value);
}

static int lower_l(int value, void *l) {
    return (int)towlower_l((wint_t)value, shim_locale(l));
}

static int upper_l(int value, void *l) {
    return (int)towupper_l((wint_t)value, shim_locale(l));
}

/* ---- iconv: as that of newer macOS it accepts values above U+10FFFF, which glibc's UTF-32LE
 * rejects and its UCS-4LE accepts. A C library for another processor may also lack the module of
 * UTF-32LE. ---- */

static const char *lenient(const char *charset) {
    return strcasecmp(charset, "UTF-32LE") == 0 ? "UCS-4LE" : charset;
}

static iconv_t open_conversion(const char *to, const char *from) {
    return iconv_open(lenient(to), lenient(from));
}

const struct shim shims_text[] = {SHIM("_mbrtowc", s_mbrtowc),
                                  SHIM("_wcrtomb", s_wcrtomb),
                                  SHIM("_mbsnrtowcs", s_mbsnrtowcs),
                                  SHIM("_wcsnrtombs", s_wcsnrtombs),
                                  SHIM("_mbsrtowcs", s_mbsrtowcs),
                                  SHIM("_wcsrtombs", s_wcsrtombs),
                                  SHIM("____mb_cur_max", mb_cur_max),
                                  SHIM("____mb_cur_max_l", mb_cur_max_l),
                                  SHIM("_btowc_l", s_btowc_l),
                                  SHIM("_wctob_l", s_wctob_l),
                                  SHIM("_mbrtowc_l", s_mbrtowc_l),
                                  SHIM("_mbrlen_l", s_mbrlen_l),
                                  SHIM("_mbtowc_l", s_mbtowc_l),
                                  SHIM("_mbsnrtowcs_l", s_mbsnrtowcs_l),
                                  SHIM("_mbsrtowcs_l", s_mbsrtowcs_l),
                                  SHIM("_wcrtomb_l", s_wcrtomb_l),
                                  SHIM("_wcsnrtombs_l", s_wcsnrtombs_l),
                                  SHIM("__DefaultRuneLocale", &rune_table),
                                  SHIM("___maskrune", in_class),
                                  SHIM("___maskrune_l", in_class_l),
                                  SHIM("___tolower", lower),
                                  SHIM("___toupper", upper),
                                  SHIM("____tolower_l", lower_l),
                                  SHIM("____toupper_l", upper_l),
                                  SHIM("_iconv_open", open_conversion),
                                  SHIM("_iconv", iconv),
                                  SHIM_END};
