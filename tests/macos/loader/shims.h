#ifndef SCALER_ISP_TESTS_MACOS_SHIMS_H
#define SCALER_ISP_TESTS_MACOS_SHIMS_H

/* libSystem and libiconv as a macOS library sees them, over glibc. Each shim_*.c has one table of
 * what it offers; what has the same interface on both systems is bound straight to glibc
 * (shim_same.c). */

#include <locale.h>
#include <signal.h>
#include <stdint.h>

struct shim {
    const char *symbol; /* with the leading underscore */
    void *target;
};

/* Ends a table. */
#define SHIM_END                                                                                   \
    { NULL, NULL }
#define SHIM(SYMBOL, TARGET)                                                                       \
    { SYMBOL, (void *)(TARGET) }

extern const struct shim shims_same[], shims_errno[], shims_locale[], shims_text[], shims_files[],
    shims_system[], shims_threads[], shims_variadic[], shims_signals[], shims_spawn[],
    shims_descriptors[], shims_program[], shims_dispatch[], shims_at[];

/* Address of a function or variable of the system; null when no table has it. */
void *shim_find(const char *symbol);

/* errno numbers differ from 35 on. */
int errno_to_macos(int number);

/* A locale_t of macOS: null is the C locale. */
locale_t shim_locale(void *locale);

/* shim_signals.c: a set of signals of macOS is a mask. */
void shim_signal_set(uint32_t mask, sigset_t *set);

/* shim_files.c: the flags of open. */
int shim_open_flags(int flags);

/* shim_realpath.c */
char *shim_realpath(const char *path, char *resolved);

/* calls.c */
int shim_dladdr(const void *address, void *info);
int shim_find_unwind_sections(const void *address, void *result);

#endif
