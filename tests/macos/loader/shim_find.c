#include "shims.h"

#include <stddef.h>
#include <string.h>

void *shim_find(const char *symbol) {
    /* On arm64 the variadic functions come first: they also exist under the same names. */
    static const struct shim *const tables[] = {
        shims_variadic, shims_errno,    shims_locale,  shims_text,  shims_files,
        shims_system,   shims_threads,  shims_signals, shims_spawn, shims_descriptors,
        shims_program,  shims_dispatch, shims_at,      shims_same};
    size_t i;
    for (i = 0; i < sizeof tables / sizeof tables[0]; ++i) {
        const struct shim *shim = tables[i];
        for (; shim->symbol != NULL; ++shim) {
            if (strcmp(shim->symbol, symbol) == 0) {
                return shim->target;
            }
        }
    }
    return NULL;
}
