/* A program without anything that hardens it, though it has what would be hardened: an array on the
 * stack and formatted output. It is never run. */
#include <stdio.h>

int main(int count, char **words) {
    char line[64];
    for (int i = 1; i < count && fgets(line, (int)sizeof line, stdin) != NULL; ++i) {
        printf("%s: %s", words[i], line);
        fprintf(stderr, "%d\n", i);
    }
    return 0;
}
