/* A plug-in that needs another library: NEEDED_LIBRARY, which the tests take away. */

int needed_function(void);
int IspFlash(void);
int IspFlash(void) {
    return needed_function();
}
