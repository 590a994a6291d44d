/* The host of the black-box tests: loads the library, does what the run file says, writes what
 * happened to the events file. It needs libc and the dynamic loader only, and knows nothing of the
 * library but the two exports, so that it also runs on other processors and other loaders.
 *
 *   host LIBRARY RUN-FILE EVENTS-FILE
 *
 * The run file holds one command a line:
 *   load [PATH]              opens the library (LIBRARY when no path is given)
 *   unload                   closes it and tells whether the image is gone
 *   export NAME              OperateScaler (default) or OperateScalerEx for the calls that follow
 *   handle set|null          device handle; reserved set|null: fifth argument of OperateScalerEx
 *   callbacks both|none|progress|message
 *   progress-does nothing|pthread_exit|call LINE
 *   thread KIB               calls run in a thread with a stack of that size; 0: in the main thread
 *   call [LINE]              one call; LINE is UTF-8
 *   call-null                one call with a null command line
 *   soak WARM TOTAL KIB LINE TOTAL calls with one result; the resident size grows between WARM
 *                            calls and the end by at most KIB
 *   loaded PATH              tells whether that library is loaded in this process
 *   chdir PATH               changes the working directory
 *   locale NAME              setlocale(LC_ALL, NAME); show-locale: tells the current one
 */

#define _DEFAULT_SOURCE

#include <dlfcn.h>
#include <limits.h>
#include <locale.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "wide_text.h"

typedef void (*progress_fn)(int);
typedef void (*message_fn)(wchar_t *);
typedef int (*operate_fn)(const wchar_t *, void *, progress_fn, message_fn);
typedef int (*operate_ex_fn)(const wchar_t *, void *, progress_fn, message_fn, void *);

static const char *g_library;
static const char *g_events;
static void *g_image;
static char g_export[64] = "OperateScaler";
static void *g_handle;
static void *g_reserved;
static int g_with_progress = 1;
static int g_with_message = 1;
static char g_progress_does[32768];
static int g_progress_armed;
static wchar_t g_lines[2][65536]; /* one for the call, one for a call inside a callback */
static int g_depth;
static size_t g_thread_bytes;
static pthread_t g_caller;

/* The file is opened for each event: what was written before a crash stays. */
static FILE *open_events(void) {
    FILE *file = fopen(g_events, "a");
    if (file == NULL) {
        perror(g_events);
        exit(2);
    }
    return file;
}

static void event(const char *word, const char *text) {
    FILE *file = open_events();
    fprintf(file, "%s%s%s\n", word, text[0] == '\0' ? "" : " ", text);
    fclose(file);
}

static void event_result(const char *word, int result) {
    char text[32];
    snprintf(text, sizeof text, result < 10 ? "%d" : "0x%X", (unsigned)result);
    event(word, text);
}

static void fail(const char *what, const char *detail) __attribute__((noreturn));

static void fail(const char *what, const char *detail) {
    fprintf(stderr, "host: %s: %s\n", what, detail);
    exit(2);
}

static int call_library(const wchar_t *line);

static int call_text(const char *text) {
    wchar_t *line = g_lines[g_depth];
    int result;
    utf8_to_wide(text, line);
    ++g_depth;
    result = call_library(line);
    --g_depth;
    return result;
}

static const char *thread_note(void) {
    return pthread_equal(g_caller, pthread_self()) ? "" : " (on another thread)";
}

static void on_progress(int percent) {
    char text[64];
    int armed = g_progress_armed;
    snprintf(text, sizeof text, "%d%s", percent, thread_note());
    event("progress", text);
    g_progress_armed = 0;
    if (armed && strcmp(g_progress_does, "pthread_exit") == 0) {
        pthread_exit(NULL);
    } else if (armed && strncmp(g_progress_does, "call ", 5) == 0) {
        event_result("nested result", call_text(g_progress_does + 5));
    }
}

static void on_message(wchar_t *text) {
    FILE *file = open_events();
    fputs("message \"", file);
    for (; *text != L'\0'; ++text) {
        put_wide_char(file, (unsigned long)*text);
    }
    fprintf(file, "\"%s\n", thread_note());
    fclose(file);
}

static int call_library(const wchar_t *line) {
    void *symbol = g_image == NULL ? NULL : dlsym(g_image, g_export);
    progress_fn progress = g_with_progress ? on_progress : NULL;
    message_fn message = g_with_message ? on_message : NULL;
    if (symbol == NULL) {
        fail("no export", g_export);
    }
    g_caller = pthread_self();
    if (strcmp(g_export, "OperateScalerEx") == 0) {
        operate_ex_fn operate_ex;
        memcpy(&operate_ex, &symbol, sizeof operate_ex);
        return operate_ex(line, g_handle, progress, message, g_reserved);
    } else {
        operate_fn operate;
        memcpy(&operate, &symbol, sizeof operate);
        return operate(line, g_handle, progress, message);
    }
}

/* What the thread leaves behind; -2147483648 when it never came back from the call. */
struct thread_call {
    const char *text;
    int result;
};

static void *thread_main(void *argument) {
    struct thread_call *call = argument;
    call->result = call_text(call->text);
    return NULL;
}

static void do_call(const char *text) {
    struct thread_call call;
    pthread_t thread;
    pthread_attr_t attributes;
    g_depth = 0;
    if (g_thread_bytes == 0) {
        event_result("result", call_text(text));
        return;
    }
    call.text = text;
    call.result = INT_MIN;
    pthread_attr_init(&attributes);
    if (pthread_attr_setstacksize(&attributes, g_thread_bytes) != 0 ||
        pthread_create(&thread, &attributes, thread_main, &call) != 0) {
        fail("thread", "cannot start");
    }
    pthread_join(thread, NULL);
    pthread_attr_destroy(&attributes);
    if (call.result == INT_MIN) {
        event("thread ended inside the call", "");
    } else {
        event_result("result", call.result);
    }
}

static long resident_kib(void) {
    long total = 0;
    long resident = 0;
    FILE *file = fopen("/proc/self/statm", "r");
    if (file == NULL || fscanf(file, "%ld %ld", &total, &resident) != 2) {
        fail("resident size", "not known on this system");
    }
    fclose(file);
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

/* Every call must end like the first one. */
static void do_soak(const char *arguments) {
    long warm = 0;
    long total = 0;
    long limit = 0;
    long before = 0;
    long growth;
    long i;
    int first = 0;
    int skip = 0;
    char text[96];
    if (sscanf(arguments, "%ld %ld %ld %n", &warm, &total, &limit, &skip) != 3) {
        fail("soak", arguments);
    }
    for (i = 0; i < total; ++i) {
        int result = call_text(arguments + skip);
        first = i == 0 ? result : first;
        if (result != first) {
            event_result("soak result changed", result);
            return;
        }
        if (i + 1 == warm) {
            before = resident_kib();
        }
    }
    growth = resident_kib() - before;
    snprintf(text, sizeof text, "%ld calls, growth %s%ld KiB", total,
             growth <= limit ? "within " : "", growth <= limit ? limit : growth);
    event("soak", text);
    event_result("result", first);
}

static int is_loaded(const char *path) {
    void *image = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (image == NULL) {
        return 0;
    }
    dlclose(image);
    return 1;
}

static void do_load(const char *path) {
    g_image = dlopen(path[0] == '\0' ? g_library : path, RTLD_NOW | RTLD_LOCAL);
    if (g_image == NULL) {
        fail("load", dlerror());
    }
}

static void do_unload(void) {
    dlclose(g_image);
    g_image = NULL;
    event("unload", is_loaded(g_library) ? "still mapped" : "gone");
}

static void set_progress_action(const char *action) {
    snprintf(g_progress_does, sizeof g_progress_does, "%s", action);
    g_progress_armed = 1;
}

static void set_callbacks(const char *which) {
    g_with_progress = strcmp(which, "both") == 0 || strcmp(which, "progress") == 0;
    g_with_message = strcmp(which, "both") == 0 || strcmp(which, "message") == 0;
}

static void do_command(const char *word, const char *rest) {
    if (strcmp(word, "load") == 0) {
        do_load(rest);
    } else if (strcmp(word, "unload") == 0) {
        do_unload();
    } else if (strcmp(word, "export") == 0) {
        snprintf(g_export, sizeof g_export, "%s", rest);
    } else if (strcmp(word, "handle") == 0) {
        g_handle = strcmp(rest, "set") == 0 ? &g_handle : NULL;
    } else if (strcmp(word, "reserved") == 0) {
        g_reserved = strcmp(rest, "set") == 0 ? &g_reserved : NULL;
    } else if (strcmp(word, "callbacks") == 0) {
        set_callbacks(rest);
    } else if (strcmp(word, "progress-does") == 0) {
        set_progress_action(rest);
    } else if (strcmp(word, "thread") == 0) {
        g_thread_bytes = (size_t)strtoul(rest, NULL, 10) * 1024;
    } else if (strcmp(word, "call") == 0) {
        do_call(rest);
    } else if (strcmp(word, "call-null") == 0) {
        event_result("result", call_library(NULL));
    } else if (strcmp(word, "soak") == 0) {
        do_soak(rest);
    } else if (strcmp(word, "loaded") == 0) {
        event(is_loaded(rest) ? "loaded" : "not loaded", rest);
    } else if (strcmp(word, "chdir") == 0) {
        if (chdir(rest) != 0) {
            fail("chdir", rest);
        }
    } else if (strcmp(word, "locale") == 0) {
        event("locale", setlocale(LC_ALL, rest) == NULL ? "unknown" : "set");
    } else if (strcmp(word, "show-locale") == 0) {
        event("locale is", setlocale(LC_ALL, NULL));
    } else {
        fail("unknown command", word);
    }
}

int main(int argc, char **argv) {
    static char line[65536];
    FILE *run;
    if (argc != 4) {
        fail("usage", "host LIBRARY RUN-FILE EVENTS-FILE");
    }
    g_library = argv[1];
    g_events = argv[3];
    run = fopen(argv[2], "r");
    if (run == NULL) {
        fail("cannot read", argv[2]);
    }
    while (fgets(line, sizeof line, run) != NULL) {
        char *rest;
        line[strcspn(line, "\n")] = '\0';
        rest = strchr(line, ' ');
        if (rest != NULL) {
            *rest++ = '\0';
        }
        do_command(line, rest == NULL ? "" : rest);
    }
    fclose(run);
    return 0;
}
