/* A plug-in of somebody else, in the current directory and on the loader's search path: it must
 * never be loaded, and its start says so in the journal. */

#include "../blackbox/journal.h"

__attribute__((constructor)) static void tell(void) {
    journal_end(journal_begin("STRANGER"));
}
