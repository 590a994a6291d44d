/* What needing_plugin.c needs. */

int needed_function(void);
int needed_function(void) {
    return 0;
}
