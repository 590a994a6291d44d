// An ISP plug-in that has the fault that the variable BROKEN_PLUGIN names, and no other.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <fcntl.h>
#include <memory>
#include <pthread.h>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/PluginKit.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr int kOwnCode = 0x7001;
ScalerIspUi g_ui;

bool HasFault(std::string_view name) {
    const char *fault = std::getenv("BROKEN_PLUGIN");
    return fault != nullptr && fault == name;
}

void Progress(int percent) {
    if (g_ui.progress != nullptr) {
        g_ui.progress(percent);
    }
}

void Message(const wchar_t *text) {
    if (g_ui.message != nullptr) {
        wchar_t copy[64] = {};
        std::wcsncpy(copy, text, std::size(copy) - 1);
        g_ui.message(copy);
    }
}

volatile char *g_nowhere = nullptr;

void EndTheProcess() {
    if (HasFault("crash")) {
        *g_nowhere = 1;
    } else if (HasFault("abort")) {
        std::abort();
    } else if (HasFault("exit")) {
        std::exit(3);
    } else if (HasFault("throw")) {
        throw std::runtime_error("the bus is not there");
    } else if (HasFault("throw-number")) {
        throw 7;
    } else if (HasFault("end-thread")) {
        ::pthread_exit(nullptr);
    } else if (HasFault("block")) {
        for (;;) {
            ::pause();
        }
    }
}

void Report() {
    if (HasFault("progress-101")) {
        Progress(101);
    } else if (HasFault("progress-negative")) {
        Progress(-1);
    } else if (HasFault("progress-falls")) {
        Progress(60);
        Progress(40);
    } else if (HasFault("escape")) {
        Message(L"\x1B[31mred\n");
    } else if (HasFault("escape-c1")) {
        Message(L"\x9B");
    } else if (HasFault("escape-printed")) {
        std::printf("\x1B[2J");
    } else if (HasFault("no-text")) {
        const wchar_t text[] = {0x110000, 0};
        Message(text);
    } else if (HasFault("first-surrogate")) {
        const wchar_t text[] = {0xD800, 0};
        Message(text);
    } else if (HasFault("last-surrogate")) {
        const wchar_t text[] = {0xDFFF, 0};
        Message(text);
    } else if (HasFault("null-text") && g_ui.message != nullptr) {
        g_ui.message(nullptr);
    } else if (HasFault("null-callback")) {
        g_ui.progress(1);
    }
}

void *g_kept = nullptr;

void LeaveBehind() {
    if (HasFault("leak")) {
        void *next = std::calloc(1, 1000);
        std::memcpy(next, &g_kept, sizeof g_kept);
        g_kept = next;
    } else if (HasFault("cache") && g_kept == nullptr) {
        g_kept = std::calloc(1, 100000);
    } else if (HasFault("leak-file")) {
        ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    } else if (HasFault("slow")) {
        ::usleep(400000);
    }
}

bool Exists(const wchar_t (&field)[SCALER_ISP_PATH_CHARS]) {
    char path[SCALER_ISP_PATH_BYTES];
    return ::access(ScalerIspWidePath(field, path), R_OK) == 0;
}

struct AtUnload {
    ~AtUnload() {
        if (HasFault("crash-at-unload")) {
            *g_nowhere = 1;
        }
    }
} g_atUnload;

} // namespace

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback) {
    ScalerIspSetUi(&g_ui, progress, message);
}

void SetCommInterface(CNxComm *) {}

int IspFlash(Setting *setting) {
    EndTheProcess();
    Report();
    LeaveBehind();
    if (HasFault("change")) {
        ++setting->stMapFw.ulTargetBank[500];
    }
    if (HasFault("library-code")) {
        return 0x4003;
    }
    if (HasFault("firmware-ignored")) {
        return 0;
    }
    return setting->stMapFw.ulFwCount == 0 || Exists(setting->stMapFw.stFwBank[0].wszFwPath)
               ? 0
               : kOwnCode;
}

int GetKeyFromFlash(Setting *, unsigned char *key) {
    if (HasFault("long-key")) {
        std::memset(key, 1, SCALER_ISP_FLASH_KEY_BYTES + 1);
        return 0;
    }
    return HasFault("no-key") ? 0 : kOwnCode;
}

int RecordFWVersion(Setting *) {
    return 0;
}

int DumpFlash(Setting *setting) {
    char path[SCALER_ISP_PATH_BYTES];
    if (HasFault("no-dump")) {
        return 0;
    }
    std::FILE *file = std::fopen(ScalerIspWidePath(setting->stDumpFlash.wszDumpFile, path), "wb");
    if (file == nullptr) {
        return kOwnCode;
    }
    for (std::uint32_t i = 0; i < setting->stDumpFlash.ulDumpLen; ++i) {
        std::fputc(0, file);
    }
    return std::fclose(file) == 0 ? 0 : kOwnCode;
}
