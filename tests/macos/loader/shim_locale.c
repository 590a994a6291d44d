/* Locales: numbers of categories and masks differ, a null locale_t is the C locale, and most
 * functions have a form that takes a locale. */

#define _GNU_SOURCE

#include "shims.h"

#include <langinfo.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <wchar.h>

static locale_t c_locale(void) {
    static locale_t locale;
    if (locale == NULL) {
        locale = newlocale(LC_ALL_MASK, "C", NULL);
    }
    return locale;
}

locale_t shim_locale(void *locale) {
    return locale == NULL ? c_locale() : (locale_t)locale;
}

/* macOS counts all, collate, ctype, monetary, numeric, time, messages. */
static char *set_locale(int category, const char *name) {
    static const int ours[] = {LC_ALL,     LC_COLLATE, LC_CTYPE,   LC_MONETARY,
                               LC_NUMERIC, LC_TIME,    LC_MESSAGES};
    return category < 0 || category > 6 ? NULL : setlocale(ours[category], name);
}

static void *new_locale(int mask, const char *name, void *base) {
    static const int ours[] = {LC_COLLATE_MASK,  LC_CTYPE_MASK,   LC_MESSAGES_MASK,
                               LC_MONETARY_MASK, LC_NUMERIC_MASK, LC_TIME_MASK};
    int translated = 0;
    int i;
    for (i = 0; i < 6; ++i) {
        translated |= mask >> i & 1 ? ours[i] : 0;
    }
    return newlocale((mask & 63) == 63 ? LC_ALL_MASK : translated, name, base);
}

static int free_locale(void *locale) {
    if (locale != NULL && locale != LC_GLOBAL_LOCALE && locale != c_locale()) {
        freelocale(locale);
    }
    return 0;
}

static int collate(const char *a, const char *b, void *l) {
    return strcoll_l(a, b, shim_locale(l));
}

static size_t transform(char *to, const char *from, size_t n, void *l) {
    return strxfrm_l(to, from, n, shim_locale(l));
}

static int wide_collate(const wchar_t *a, const wchar_t *b, void *l) {
    return wcscoll_l(a, b, shim_locale(l));
}

static size_t wide_transform(wchar_t *to, const wchar_t *from, size_t n, void *l) {
    return wcsxfrm_l(to, from, n, shim_locale(l));
}

static size_t format_time(char *to, size_t n, const char *format, const struct tm *time, void *l) {
    return strftime_l(to, n, format, time, shim_locale(l));
}

static double to_double(const char *text, char **end, void *l) {
    return strtod_l(text, end, shim_locale(l));
}

static float to_float(const char *text, char **end, void *l) {
    return strtof_l(text, end, shim_locale(l));
}

static long long to_signed(const char *text, char **end, int base, void *l) {
    return strtoll_l(text, end, base, shim_locale(l));
}

static unsigned long long to_unsigned(const char *text, char **end, int base, void *l) {
    return strtoull_l(text, end, base, shim_locale(l));
}

/* Both orders of members: ten texts are alike, the last six numbers are not. */
struct macos_lconv {
    char *texts[10];
    char numbers[14];
};

static struct macos_lconv *conventions_of(void *l) {
    static struct macos_lconv result;
    locale_t former = uselocale(shim_locale(l));
    struct lconv *ours = localeconv();
    memcpy(result.texts, ours, sizeof result.texts);
    memcpy(result.numbers, &ours->int_frac_digits, 8);
    result.numbers[8] = ours->int_p_cs_precedes;
    result.numbers[9] = ours->int_n_cs_precedes;
    result.numbers[10] = ours->int_p_sep_by_space;
    result.numbers[11] = ours->int_n_sep_by_space;
    result.numbers[12] = ours->int_p_sign_posn;
    result.numbers[13] = ours->int_n_sign_posn;
    uselocale(former);
    return &result;
}

static struct macos_lconv *conventions(void) {
    return conventions_of(LC_GLOBAL_LOCALE);
}

/* Item 0 is the name of the encoding, the only one that is translated. */
static const char *language_item(int item, void *l) {
    const char *name = nl_langinfo_l(CODESET, shim_locale(l));
    if (item != 0) {
        return "";
    }
    return strcmp(name, "ANSI_X3.4-1968") == 0 ? "US-ASCII" : name;
}

static const char *language_item_in_force(int item) {
    locale_t in_force = duplocale(uselocale(NULL));
    const char *text = language_item(item, in_force);
    freelocale(in_force);
    return text;
}

const struct shim shims_locale[] = {
    SHIM("_setlocale", set_locale),        SHIM("_newlocale", new_locale),
    SHIM("_freelocale", free_locale),      SHIM("_uselocale", uselocale),
    SHIM("_localeconv", conventions),      SHIM("_localeconv_l", conventions_of),
    SHIM("_strcoll_l", collate),           SHIM("_strxfrm_l", transform),
    SHIM("_wcscoll_l", wide_collate),      SHIM("_wcsxfrm_l", wide_transform),
    SHIM("_strftime_l", format_time),      SHIM("_strtod_l", to_double),
    SHIM("_strtof_l", to_float),           SHIM("_strtoll_l", to_signed),
    SHIM("_strtoull_l", to_unsigned),      SHIM("_nl_langinfo", language_item_in_force),
    SHIM("_nl_langinfo_l", language_item), SHIM_END};
