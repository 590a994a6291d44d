/* Calls the one function of a bundle: module_host BUNDLE. Ends with 1 when a check of it failed. */

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char **argv) {
    const char *locale = getenv("LC_ALL");
    int (*run)(const char *, int *);
    int all = 0;
    int failed;
    void *symbol;
    void *module = argc == 2 ? dlopen(argv[1], RTLD_NOW) : NULL;
    if (module == NULL) {
        fprintf(stderr, "%s\n", argc == 2 ? dlerror() : "usage: module_host BUNDLE");
        return 2;
    }
    symbol = dlsym(module, "RunPlatformChecks");
    if (symbol == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 2;
    }
    memcpy(&run, &symbol, sizeof run);
    failed = run(locale == NULL ? "C" : locale, &all);
    printf("%d checks, %d failed\n", all, failed);
    return failed != 0 || all == 0;
}
