/* Runs a Mach-O program in the loader: run_program PROGRAM ARGUMENTS...
 * Programs that it starts run in the loader, too, by the words in MACHO_LAUNCHER. */

#include "loader.h"

#include <stdio.h>
#include <stdlib.h>

int main(int argc, char **argv) {
    if (argc < 2) {
        fprintf(stderr, "usage: run_program PROGRAM ARGUMENTS...\n");
        return 2;
    }
    exit(macho_run(argv[1], argc - 1, argv + 1));
}
