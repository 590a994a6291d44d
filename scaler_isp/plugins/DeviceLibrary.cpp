#include "scaler_isp/plugins/DeviceLibrary.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/plugins/SharedLibrary.h"

void *g_hDeviceDll = nullptr;

#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE)                            \
    CommFunctionType::TYPE_OF *nxd##NAME = nullptr;
#include "scaler_isp/plugins/device_functions.def"

namespace {

constexpr int kLoaded = 1;
constexpr int kNotOpened = 5;

/// A pointer to look up, and what a load prints and returns if its required symbol is missing.
struct DeviceRow {
    SymbolRequest stSymbol;
    const char *pszPointer;
    int nFailure;
};

#define SCALER_ISP_REQUIRED_ROW(NAME, SYMBOL, FAILURE)                                             \
    {{#SYMBOL, &nxd##NAME, true}, "nxd" #NAME, FAILURE},
#define SCALER_ISP_OPTIONAL_ROW(NAME, SYMBOL, FAILURE)                                             \
    {{#SYMBOL, &nxd##NAME, false}, "nxd" #NAME, FAILURE},
#define SCALER_ISP_NEVER_ROW(NAME, SYMBOL, FAILURE)
#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE)                            \
    SCALER_ISP_##LOOKUP##_ROW(NAME, SYMBOL, FAILURE)
const DeviceRow kRows[] = {
#include "scaler_isp/plugins/device_functions.def"
};

void ClearPointers() {
    for (const DeviceRow &row : kRows) {
        std::memset(row.stSymbol.pSlot, 0, sizeof(void *));
    }
}

} // namespace

int nxdLoadDeviceDllFile(wchar_t *path) {
    return CatchAll(kNotOpened, [&] {
        nxdFreeDeviceDllFile();
        g_hDeviceDll = OpenLibraryOrReport(EnvironmentTextFromWide(path != nullptr ? path : L""));
        if (g_hDeviceDll == nullptr) {
            return kNotOpened;
        }
        const char *error = nullptr;
        for (const DeviceRow &row : kRows) {
            if (ResolveSymbols(g_hDeviceDll, {&row.stSymbol, 1}, error) != nullptr) {
                std::printf("%s Fail\n", row.pszPointer);
                nxdFreeDeviceDllFile();
                return row.nFailure;
            }
        }
        return kLoaded;
    });
}

void nxdFreeDeviceDllFile() {
    if (g_hDeviceDll != nullptr) {
        CloseSharedLibrary(g_hDeviceDll);
        g_hDeviceDll = nullptr;
        ClearPointers();
    }
}
