/* Variadic functions. On x86_64 both systems call alike. On arm64 macOS passes every variadic
 * argument on the stack, in slots of 8 bytes, and va_list is a plain pointer to them; a va_list of
 * Linux whose register areas are used up describes exactly that. long double is a double there. */

#define _GNU_SOURCE

#include "shims.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#ifdef __aarch64__

int shim_open(const char *path, int flags, int mode);
int shim_fcntl(int file, int command, long value);

struct linux_va_list {
    void *stack, *general_top, *vector_top;
    int general_offset, vector_offset;
};

#define FROM_STACK(SLOTS)                                                                          \
    struct linux_va_list made = {(SLOTS), NULL, NULL, 0, 0};                                       \
    va_list arguments;                                                                             \
    memcpy(&arguments, &made, sizeof arguments)

/* ENTRY(NAME, FIXED): entry_NAME hands the stack pointer to stack_NAME after FIXED arguments. */
#define ENTRY(NAME, FIXED)                                                                         \
    __asm__(".text\n.type entry_" #NAME ",%function\nentry_" #NAME ":\n mov x" #FIXED              \
            ",sp\n b stack_" #NAME "\n");                                                          \
    extern char entry_##NAME[] __attribute__((visibility("hidden")))
#define FROM_ENTRY __attribute__((used, visibility("hidden")))

FROM_ENTRY int stack_printf(const char *format, void *slots) {
    FROM_STACK(slots);
    return vprintf(format, arguments);
}

FROM_ENTRY int stack_fprintf(FILE *file, const char *format, void *slots) {
    FROM_STACK(slots);
    return vfprintf(file, format, arguments);
}

FROM_ENTRY int stack_snprintf(char *to, size_t n, const char *format, void *slots) {
    FROM_STACK(slots);
    return vsnprintf(to, n, format, arguments);
}

FROM_ENTRY int stack_swprintf(wchar_t *to, size_t n, const wchar_t *format, void *slots) {
    FROM_STACK(slots);
    return vswprintf(to, n, format, arguments);
}

FROM_ENTRY int stack_sscanf(const char *text, const char *format, void *slots) {
    FROM_STACK(slots);
    return vsscanf(text, format, arguments);
}

FROM_ENTRY int stack_snprintf_l(char *to, size_t n, void *l, const char *format, void *slots) {
    FROM_STACK(slots);
    locale_t former = uselocale(shim_locale(l));
    int result = vsnprintf(to, n, format, arguments);
    uselocale(former);
    return result;
}

FROM_ENTRY int stack_open(const char *path, int flags, const int *slots) {
    return shim_open(path, flags, *slots);
}

FROM_ENTRY int stack_fcntl(int file, int command, const long *slots) {
    return shim_fcntl(file, command, *slots);
}

ENTRY(printf, 1);
ENTRY(fprintf, 2);
ENTRY(snprintf, 3);
ENTRY(swprintf, 3);
ENTRY(sscanf, 2);
ENTRY(snprintf_l, 4);
ENTRY(open, 2);
ENTRY(fcntl, 2);

static int list_printf(const char *format, void *slots) {
    FROM_STACK(slots);
    return vprintf(format, arguments);
}

static int list_fprintf(FILE *file, const char *format, void *slots) {
    FROM_STACK(slots);
    return vfprintf(file, format, arguments);
}

static int list_snprintf(char *to, size_t n, const char *format, void *slots) {
    FROM_STACK(slots);
    return vsnprintf(to, n, format, arguments);
}

static int list_swprintf(wchar_t *to, size_t n, const wchar_t *format, void *slots) {
    FROM_STACK(slots);
    return vswprintf(to, n, format, arguments);
}

static double to_long_double(const char *text, char **end) {
    return strtod(text, end);
}

static double to_long_double_l(const char *text, char **end, void *l) {
    return strtod_l(text, end, shim_locale(l));
}

const struct shim shims_variadic[] = {SHIM("_printf", entry_printf),
                                      SHIM("_fprintf", entry_fprintf),
                                      SHIM("_snprintf", entry_snprintf),
                                      SHIM("_swprintf", entry_swprintf),
                                      SHIM("_sscanf", entry_sscanf),
                                      SHIM("_snprintf_l", entry_snprintf_l),
                                      SHIM("_open", entry_open),
                                      SHIM("_fcntl", entry_fcntl),
                                      SHIM("_vprintf", list_printf),
                                      SHIM("_vfprintf", list_fprintf),
                                      SHIM("_vsnprintf", list_snprintf),
                                      SHIM("_vswprintf", list_swprintf),
                                      SHIM("_strtold", to_long_double),
                                      SHIM("_strtold_l", to_long_double_l),
                                      SHIM_END};

#else

static int format_l(char *to, size_t n, void *l, const char *format, ...) {
    va_list arguments;
    locale_t former = uselocale(shim_locale(l));
    int result;
    va_start(arguments, format);
    result = vsnprintf(to, n, format, arguments);
    va_end(arguments);
    uselocale(former);
    return result;
}

static long double to_long_double_l(const char *text, char **end, void *l) {
    return strtold_l(text, end, shim_locale(l));
}

const struct shim shims_variadic[] = {SHIM("_snprintf_l", format_l),
                                      SHIM("_strtold_l", to_long_double_l), SHIM_END};

#endif
