/* A library that does one thing right and, told by the environment variable FAKE, one thing wrong.
 * The check must catch each of them by the assertion of that name. */

#define _GNU_SOURCE

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <wchar.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/Export.h"

typedef int (*isp_flash_fn)(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *);

static STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING g_record;
static int g_spoilt;

SCALER_ISP_API int OperateScaler(const wchar_t *line, void *handle, void (*progress)(int),
                                 void (*message)(wchar_t *));

static int is_fake(const char *name) {
    const char *fake = getenv("FAKE");
    return fake != NULL && strcmp(fake, name) == 0;
}

static int program(int changed) {
    char path[4096] = "";
    Dl_info info;
    void *plugin;
    void *symbol;
    isp_flash_fn isp_flash;
    if (dladdr(&g_record, &info) != 0) {
        snprintf(path, sizeof path, "%.*s",
                 (int)(strrchr(info.dli_fname, '/') - info.dli_fname) + 1, info.dli_fname);
    } else if (!is_fake("stranger")) {
        printf("\x1b[31mFail! Error Code: 0xD67\n\x1b[m");
        return 0xD67;
    }
    strcat(path, "PlugIn/libIsp.dylib");
    plugin = dlopen(path, RTLD_NOW);
    symbol = plugin == NULL ? NULL : dlsym(plugin, "IspFlash");
    if (symbol == NULL) {
        printf("dlopen - %s\n\x1b[31mFail! Error Code: 0xD67\n\x1b[m", dlerror());
        return 0xD67;
    }
    memcpy(&isp_flash, &symbol, sizeof isp_flash);
    g_record.bCompareVersion = (unsigned)changed;
    isp_flash(&g_record);
    dlclose(plugin);
    printf("\x1b[32mSuccess\n\x1b[m");
    return 0;
}

/* What the fakes do where memory is lacking. */
static int without_memory(void) {
    if (is_fake("record") || is_fake("record_alone")) {
        int result = program(1);
        return is_fake("record") ? result : -1;
    }
    if (is_fake("descriptors") && open("/dev/null", O_RDONLY) < 0) {
        return -1;
    }
    if (is_fake("output")) {
        printf("no memory\n");
    }
    if (is_fake("words")) {
        printf("\x1b[32mSuccess\n\x1b[m");
    }
    if (is_fake("crash")) {
        abort();
    }
    while (is_fake("hang")) {
        pause();
    }
    g_spoilt = is_fake("next");
    return -1;
}

/* Whether this is a late call of all processes together: a fake that changes by itself. */
static int is_late(void) {
    char path[4096];
    FILE *file;
    long calls;
    snprintf(path, sizeof path, "%s/calls", getenv("BLACKBOX_DIR"));
    file = fopen(path, "a");
    if (file == NULL) {
        return 0;
    }
    fputc('.', file);
    calls = ftell(file);
    fclose(file);
    return calls > 12;
}

int OperateScaler(const wchar_t *line, void *handle, void (*progress)(int),
                  void (*message)(wchar_t *)) {
    char *text;
    FILE *firmware;
    int result;
    (void)line, (void)handle, (void)progress, (void)message;
    if (g_spoilt || (is_fake("untouched") && is_late())) {
        return -1;
    }
    text = malloc(100);
    if (text == NULL) {
        return without_memory();
    }
    strcpy(text, "a.bin");
    firmware = fopen(text, "r");
    if (firmware == NULL) {
        printf("File open fail! %s\n", text);
        if (!is_fake("memory")) {
            free(text);
        }
        return is_fake("result") ? 0 : -1;
    }
    fclose(firmware);
    result = program(0);
    free(text);
    return result;
}
