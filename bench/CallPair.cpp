#include "CallPair.h"

#include <clocale>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <iconv.h>

#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/abi/CommandSetting.h"

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using RecordFunction = int (*)(Record *);

constexpr std::size_t kRecordBytes = 546704;
constexpr const char *kSymbols[] = {
    "IspFlash",           "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash",
    "SetUIFunction",      "DumpFlash",        "IspEeprom",       "GetUserDefinedInfoFromDDCCI",
    "EnterISPModeExport", "ResetMCUExport",   "GetScalerType"};

decltype(&OperateScaler) g_operate = nullptr;

void Require(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "bench: %s\n", what);
        std::exit(1);
    }
}

/// Prevents the compiler from removing stores to memory that is never read.
void Escape(void *memory) {
    asm volatile("" : : "g"(memory) : "memory");
}

} // namespace

void OpenStagedLibrary() {
    void *library = dlopen(BENCH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    Require(library != nullptr, "the staged library does not open");
    g_operate = reinterpret_cast<decltype(g_operate)>(dlsym(library, "OperateScaler"));
    Require(g_operate != nullptr, "OperateScaler is missing");
}

void CallLibrary() {
    Require(g_operate(L"tool --getscalertype --comm 3", nullptr, nullptr, nullptr) == 0,
            "the call failed");
}

void CallFloor() {
    void *filled = std::malloc(kRecordBytes);
    Require(filled != nullptr, "no memory");
    std::memset(filled, 0, kRecordBytes);
    Escape(filled);
    void *copied = std::malloc(kRecordBytes);
    Require(copied != nullptr, "no memory");
    std::memcpy(copied, filled, kRecordBytes);
    Escape(copied);
    void *plugin = dlopen(BENCH_PLUGIN, RTLD_NOW);
    Require(plugin != nullptr, "the plug-in does not open");
    void *function = nullptr;
    for (const char *symbol : kSymbols) {
        function = dlsym(plugin, symbol);
        Require(function != nullptr, symbol);
    }
    Require(reinterpret_cast<RecordFunction>(function)(static_cast<Record *>(copied)) == 0,
            "the plug-in failed");
    dlclose(plugin);
    std::free(copied);
    std::free(filled);
}

void FloorOfTheFirstCall() {
    iconv_t descriptor = iconv_open("UTF-8", "UTF-32LE");
    wchar_t wide[] = L"tool --getscalertype --comm 3";
    char utf8[sizeof wide];
    char *in = reinterpret_cast<char *>(wide);
    char *out = utf8;
    std::size_t inLeft = sizeof wide;
    std::size_t outLeft = sizeof utf8;
    Require(iconv(descriptor, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1),
            "iconv failed");
    iconv_close(descriptor);
    Require(std::setlocale(LC_ALL, "") != nullptr, "the environment's locale does not exist");
    std::setlocale(LC_ALL, "C");
}
