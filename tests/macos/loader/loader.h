#ifndef SCALER_ISP_TESTS_MACOS_LOADER_H
#define SCALER_ISP_TESTS_MACOS_LOADER_H

/* Runs macOS libraries and programs of the machine's own processor in a Linux process: maps the
 * unmodified file, applies its rebases and binds, and gives it glibc where it expects libSystem and
 * libiconv, through translations where the two differ (shim_*.c). libc++ and the unwinder under it
 * are real Mach-O libraries, taken from the folder that the environment variable MACHO_RUNTIME
 * names.
 *
 * It is a test tool: one thread at a time may open and close, classic load commands only, no
 * thread-local variables.
 */

/* As dlopen and its kin on macOS; mode holds macOS's numbers. */
void *macho_dlopen(const char *path, int mode);
void *macho_dlsym(void *image, const char *name);
int macho_dlclose(void *image);
char *macho_dlerror(void);

enum { MACHO_RTLD_NOLOAD = 0x10 };

/* Loads an executable and runs its main function. RETURNS what it returns; 2 if it cannot be
 * loaded, with a line on standard error. */
int macho_run(const char *path, int argc, char **argv);

#endif
