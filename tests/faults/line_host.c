/* Runs one command line under faults, one child process for each order of the driver.
 *
 *   line_host LIBRARY FOLDER warm|cold [PLUG-IN...]
 *
 * Standard input: the command line (UTF-8), then orders (injected.h). Standard output: for each
 * order a line of numbers, then the bytes that it announces. FOLDER holds out.txt and err.txt (what
 * the library prints) and events.txt (journal of the plug-ins) of the run. In a warm host two calls
 * went before and the plug-ins stay loaded, so that what a call leaks can be counted. */

#define _GNU_SOURCE

#include <locale.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <wchar.h>

#include "../blackbox/wide_text.h"
#include "injected.h"

typedef void (*progress_fn)(int);
typedef void (*message_fn)(wchar_t *);
typedef int (*operate_fn)(const wchar_t *, void *, progress_fn, message_fn);

enum { OUT, ERR, EVENTS, FILES };

/* One call as the child saw it, with the sizes of the three files after it. */
struct call {
    int result;
    long bytes[FILES];
};

struct outcome {
    int stage; /* 1 in the disturbed call, 2 in the next one, 3 after both */
    struct call disturbed;
    struct call next;
    long injected;
    long new_blocks;
    long new_of_others;
    int in_c_library;
    int new_descriptors;
    long calls[FAULTS_COUNT];
};

static struct injector g_injector;
static operate_fn g_operate;
static wchar_t g_line[65536];
static char g_paths[FILES][4096];
static FILE *g_report;

static void on_progress(int percent) {
    (void)percent;
}

static void on_message(wchar_t *text) {
    (void)text;
}

static void give_up(const char *what) __attribute__((noreturn));

static void give_up(const char *what) {
    perror(what);
    exit(2);
}

static long size_of(const char *path) {
    struct stat status;
    return stat(path, &status) == 0 ? (long)status.st_size : 0;
}

static void call_library(struct call *call) {
    int i;
    call->result = g_operate(g_line, NULL, on_progress, on_message);
    g_injector.disarm();
    fflush(stdout);
    for (i = 0; i < FILES; ++i) {
        call->bytes[i] = size_of(g_paths[i]);
    }
}

static void run_child(const struct order *order, struct outcome *outcome) {
    unsigned char before[MAX_DESCRIPTORS];
    long blocks = g_injector.live();
    long others = g_injector.live_of_others();
    int operation;
    alarm(seconds_to_a_hang());
    open_descriptors(before);
    outcome->stage = 1;
    g_injector.arm(order->operation, order->first, order->forever, order->error);
    call_library(&outcome->disturbed);
    outcome->injected = g_injector.injected();
    outcome->in_c_library = g_injector.in_c_library();
    for (operation = 0; operation < FAULTS_COUNT; ++operation) {
        outcome->calls[operation] = g_injector.calls(operation);
    }
    outcome->new_descriptors = count_new_descriptors(before);
    outcome->stage = 2;
    call_library(&outcome->next);
    outcome->new_blocks = g_injector.live() - blocks;
    outcome->new_of_others = g_injector.live_of_others() - others;
    outcome->stage = 3;
    _exit(0);
}

static void report_file(const char *path, long bytes) {
    FILE *file = fopen(path, "r");
    for (; bytes > 0; --bytes) {
        int byte = file == NULL ? '?' : getc(file);
        putc(byte, g_report);
    }
    if (file != NULL) {
        fclose(file);
    }
}

static void report(const struct order *order, int status, const struct outcome *outcome) {
    long bytes[FILES];
    int i;
    fprintf(g_report, "%d %ld %d %d %d %d %ld %d %ld %ld %d %d %d", order->operation, order->first,
            order->forever, order->error, status, outcome->stage, outcome->injected,
            outcome->new_descriptors, outcome->new_blocks, outcome->new_of_others,
            outcome->in_c_library, outcome->disturbed.result, outcome->next.result);
    for (i = 0; i < FILES; ++i) {
        bytes[i] = size_of(g_paths[i]);
        fprintf(g_report, " %ld %ld", outcome->disturbed.bytes[i], bytes[i]);
    }
    for (i = 0; i < FAULTS_COUNT; ++i) {
        fprintf(g_report, " %ld", outcome->calls[i]);
    }
    putc('\n', g_report);
    for (i = 0; i < FILES; ++i) {
        report_file(g_paths[i], bytes[i]);
    }
}

static void run_order(const struct order *order, struct outcome *outcome) {
    int status = 0;
    pid_t child;
    int i;
    memset(outcome, 0, sizeof *outcome);
    for (i = 0; i < FILES; ++i) {
        if (truncate(g_paths[i], 0) != 0) {
            give_up(g_paths[i]);
        }
    }
    fflush(g_report);
    child = fork();
    if (child == 0) {
        run_child(order, outcome);
    }
    if (child < 0 || waitpid(child, &status, 0) != child) {
        give_up("fork");
    }
    report(order, status, outcome);
}

/* Both outputs belong to the library from here on. */
static void redirect_output(const char *folder) {
    static const char *const names[FILES] = {"out.txt", "err.txt", "events.txt"};
    int report_file = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 100);
    FILE *file;
    int i;
    for (i = 0; i < FILES; ++i) {
        snprintf(g_paths[i], sizeof g_paths[i], "%s/%s", folder, names[i]);
    }
    g_report = fdopen(report_file, "w");
    file = fopen(g_paths[EVENTS], "w");
    if (g_report == NULL || file == NULL || freopen(g_paths[OUT], "a", stdout) == NULL ||
        freopen(g_paths[ERR], "a", stderr) == NULL) {
        give_up(folder);
    }
    setvbuf(stderr, NULL, _IONBF, 0);
    fclose(file);
}

static void load_library(const char *path) {
    void *image = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    void *symbol = image == NULL ? NULL : dlsym(image, "OperateScaler");
    if (symbol == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        exit(2);
    }
    memcpy(&g_operate, &symbol, sizeof g_operate);
}

static void warm_up(char **plugins) {
    struct call call;
    for (; *plugins != NULL; ++plugins) {
        if (dlopen(*plugins, RTLD_NOW | RTLD_LOCAL) == NULL) {
            fprintf(stderr, "%s\n", dlerror());
            exit(2);
        }
    }
    call_library(&call);
    call_library(&call);
}

int main(int argc, char **argv) {
    static char text[65536];
    struct order order;
    struct outcome *outcome =
        mmap(NULL, sizeof *outcome, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (argc < 4 || outcome == MAP_FAILED || fgets(text, sizeof text, stdin) == NULL) {
        fprintf(stderr, "line_host LIBRARY FOLDER warm|cold [PLUG-IN...]\n");
        return 2;
    }
    text[strcspn(text, "\n")] = '\0';
    utf8_to_wide(text, g_line);
    find_injector(&g_injector);
    load_locale();
    load_library(argv[1]);
    redirect_output(argv[2]);
    if (strcmp(argv[3], "warm") == 0) {
        warm_up(argv + 4);
    }
    while (read_order(stdin, &order)) {
        run_order(&order, outcome);
    }
    return 0;
}
