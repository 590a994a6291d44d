/* A host in C that opens the library by path, and so decides which plug-ins are used: those in the
 * library's directory.
 *
 *   cc -I/opt/scaler-isp/include host.c -o host_c      (with -ldl before glibc 2.34)
 *   ./host_c /opt/scaler-isp/share/scaler-isp/virtual/libScalerIsp.so --isp --fw /fw.bin */

#include <dlfcn.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include <scaler_isp/OperateScaler.h>

typedef int (*Operate)(const wchar_t *, void *, ScalerIspProgressCallback,
                       ScalerIspMessageCallback);

/* Both callbacks run on this thread, during the call. Do not use wprintf on stdout: the library
 * prints to it with printf. */
static void OnProgress(int percent) {
    fprintf(stderr, "progress %d %%\n", percent);
}

static void OnMessage(wchar_t *text) {
    const size_t length = wcslen(text);
    fprintf(stderr, "message: %ls%s", text, length > 0 && text[length - 1] == L'\n' ? "" : "\n");
}

static const char *MeaningOf(int code) {
    static const struct {
        int code;
        const char *meaning;
    } rows[] = {
#define ROW(NAME, VALUE, MEANING, ...) {VALUE, MEANING},
        SCALER_ISP_RESULT_CODES(ROW)
#undef ROW
    };
    for (size_t i = 0; i < sizeof rows / sizeof *rows; ++i) {
        if (rows[i].code == code) {
            return rows[i].meaning;
        }
    }
    return "an error code of the plug-in";
}

/* The first word of a line is the program's name. Quotes keep spaces inside an argument. RETURNS
 * NULL if an argument has a quote itself or is not text in the encoding of the environment. */
static wchar_t *LineOf(int count, char **arguments) {
    static wchar_t line[10240] = L"host";
    for (int i = 0; i < count; ++i) {
        const size_t used = wcslen(line);
        const char *quote = strchr(arguments[i], ' ') != NULL ? "\"" : "";
        const int written = swprintf(line + used, sizeof line / sizeof *line - used, L" %s%s%s",
                                     quote, arguments[i], quote);
        if (written < 0 || strchr(arguments[i], '"') != NULL) {
            return NULL;
        }
    }
    return line;
}

int main(int argc, char **argv) {
    setlocale(LC_ALL, ""); /* for swprintf and %ls; the library needs none */
    void *library = argc > 1 ? dlopen(argv[1], RTLD_NOW) : NULL;
    Operate operate = NULL;
    if (library != NULL) {
        *(void **)&operate = dlsym(library, "OperateScaler");
    }
    wchar_t *line = argc > 1 ? LineOf(argc - 2, argv + 2) : NULL;
    if (operate == NULL || line == NULL) {
        const char *error = argc < 2 ? "no library" : operate ? "quote or bad text" : dlerror();
        fprintf(stderr, "usage: host_c LIBRARY ARGS...: %s\n", error);
        return EXIT_FAILURE;
    }
    const int code = operate(line, NULL, OnProgress, OnMessage);
    fprintf(stderr, "result 0x%X: %s\n", (unsigned)code, MeaningOf(code));
    return code == SCALER_ISP_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}
