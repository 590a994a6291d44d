#include "CallPair.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <locale.h> // NOLINT(*-deprecated-headers): newlocale is not in <clocale>
#include <unistd.h>

#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/abi/CommandSetting.h"

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using RecordFunction = int (*)(Record *);

constexpr std::size_t kRecordBytes = 546704;
constexpr unsigned int kBanks = 16;
constexpr const char *kFirmware = BENCH_STAGE "/panel.bin";
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

/// Prevents the compiler from removing stores to memory that is never read, and from making one
/// call of an allocation and a memset.
void Escape(void *memory) {
    asm volatile("" : : "g"(memory) : "memory");
}

Record *ZeroedRecord() {
    void *memory = std::malloc(kRecordBytes);
    Require(memory != nullptr, "no memory");
    Escape(memory);
    std::memset(memory, 0, kRecordBytes);
    Escape(memory);
    return static_cast<Record *>(memory);
}

/// Calls the function of the plug-in with the record, and frees it.
void CallPlugin(const char *name, Record *record) {
    void *plugin = dlopen(BENCH_PLUGIN, RTLD_NOW);
    Require(plugin != nullptr, "the plug-in does not open");
    RecordFunction wanted = nullptr;
    for (const char *symbol : kSymbols) {
        void *function = dlsym(plugin, symbol);
        Require(function != nullptr, symbol);
        if (std::strcmp(symbol, name) == 0) {
            wanted = reinterpret_cast<RecordFunction>(function);
        }
    }
    Require(wanted(record) == 0, "the plug-in received another record");
    dlclose(plugin);
    std::free(record);
}

void Operate(const wchar_t *line) {
    Require(g_operate(line, nullptr, nullptr, nullptr) == 0, "the call failed");
}

} // namespace

void OpenStagedLibrary() {
    void *library = dlopen(BENCH_STAGE "/" BENCH_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    Require(library != nullptr, "the staged library does not open");
    g_operate = reinterpret_cast<decltype(g_operate)>(dlsym(library, "OperateScaler"));
    Require(g_operate != nullptr, "OperateScaler is missing");
    const int file = open(kFirmware, O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    Require(file >= 0 && ftruncate(file, off_t{kBanks} * SCALER_ISP_BANK_BYTES) == 0,
            "the firmware cannot be made");
    close(file);
}

void CallLibrary() {
    Operate(L"tool --getscalertype --comm 3");
}

void CallPeer() {
    Record *filled = ZeroedRecord();
    Record *record = ZeroedRecord();
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(3);
    CallPlugin("GetScalerType", record);
    std::free(filled);
}

void IspLibrary() {
    Operate(L"tool --isp --fw panel.bin");
}

void IspPeer() {
    char resolved[PATH_MAX];
    Require(realpath(kFirmware, resolved) != nullptr, "no firmware");
    const int file = open(resolved, O_RDONLY | O_CLOEXEC);
    const off_t size = lseek(file, 0, SEEK_END);
    close(file);
    Record *filled = ZeroedRecord();
    Record *record = ZeroedRecord();
    record->stMapFw.ulFwCount = static_cast<std::uint32_t>(size / SCALER_ISP_BANK_BYTES);
    for (unsigned int i = 0; i < record->stMapFw.ulFwCount; ++i) {
        record->stMapFw.ulTargetBank[i] = i;
        record->stMapFw.stFwBank[i].ulFileBank = i;
        std::mbstowcs(record->stMapFw.stFwBank[i].wszFwPath, resolved, SCALER_ISP_PATH_CHARS);
    }
    CallPlugin("IspFlash", record);
    std::free(filled);
}

void PeerOfTheFirstCall() {
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
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", locale_t{});
    Require(locale != locale_t{}, "the environment's locale does not exist");
    freelocale(locale);
    CallPeer();
}
