/* An ISP plug-in that acts in its constructor as the variable ENDING_PLUGIN says. */

#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

__attribute__((constructor)) static void act(void) {
    const char *how = getenv("ENDING_PLUGIN");
    if (how == NULL || strcmp(how, "exit") == 0) {
        exit(0);
    } else if (strcmp(how, "signal") == 0) {
        raise(SIGSEGV);
    } else if (strcmp(how, "block") == 0) {
        for (;;) {
            pause();
        }
    }
}
