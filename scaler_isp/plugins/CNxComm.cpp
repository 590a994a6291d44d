#include "scaler_isp/plugins/CNxComm.h"

#include <cstddef>
#include <cstdio>
#include <string>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/plugins/SharedLibrary.h"

static_assert(sizeof(STRUCT_REG_FORMER_VALUE) == 48);
static_assert(offsetof(STRUCT_REG_FORMER_VALUE, ulFormerValue) == 4);
static_assert(offsetof(STRUCT_REG_FORMER_VALUE, ucFormerSlave) == 8);
static_assert(offsetof(STRUCT_REG_FORMER_VALUE, stEntries) == 12);
static_assert(offsetof(STRUCT_REG_FORMER_VALUE, ulLast) == 44);
static_assert(sizeof(STRUCT_WAITING_STRUCT) == 8);

CNxComm::CNxComm() { // NOLINT(*-member-init): Init sets every other member
    Init();
}

CNxComm::~CNxComm() = default;

void CNxComm::Init() {
    m_hCommDll = nullptr;
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    m_pfn##METHOD = nullptr;
#include "scaler_isp/plugins/comm_functions.def"
}

int CNxComm::LoadCommDllFile(wchar_t *path) {
    return CatchAll(0, [&] {
        FreeCommDllFile();
        void *handle = OpenLibraryOrReport(EnvironmentTextFromWide(path != nullptr ? path : L""));
        if (handle == nullptr) {
            return 0;
        }
        m_hCommDll = handle;
        // Required symbols first: if one is missing, no optional one is looked up.
        const SymbolRequest rows[] = {
#define SCALER_ISP_REQUIRED_ROW(METHOD, SYMBOL) {#SYMBOL, &m_pfn##METHOD, true},
#define SCALER_ISP_REQUIRED_TWICE_ROW(METHOD, SYMBOL)                                              \
    SCALER_ISP_REQUIRED_ROW(METHOD, SYMBOL) SCALER_ISP_REQUIRED_ROW(METHOD, SYMBOL)
#define SCALER_ISP_OPTIONAL_ROW(METHOD, SYMBOL)
#define SCALER_ISP_NEVER_ROW(METHOD, SYMBOL)
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    SCALER_ISP_##LOOKUP##_ROW(METHOD, SYMBOL)
#include "scaler_isp/plugins/comm_functions.def"
#undef SCALER_ISP_REQUIRED_ROW
#undef SCALER_ISP_OPTIONAL_ROW
#define SCALER_ISP_REQUIRED_ROW(METHOD, SYMBOL)
#define SCALER_ISP_OPTIONAL_ROW(METHOD, SYMBOL) {#SYMBOL, &m_pfn##METHOD, false},
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    SCALER_ISP_##LOOKUP##_ROW(METHOD, SYMBOL)
#include "scaler_isp/plugins/comm_functions.def"
        };
        const char *error = nullptr;
        if (ResolveSymbols(handle, rows, error) != nullptr) {
            FreeCommDllFile();
            return 0;
        }
        return 1;
    });
}

void CNxComm::FreeCommDllFile() {
    if (m_hCommDll != nullptr) {
        CloseSharedLibrary(m_hCommDll);
        Init();
    }
}

#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    RESULT CNxComm::METHOD PARAMETERS {                                                            \
        if (m_pfn##CALLS == nullptr) {                                                             \
            return NOT_LOADED_RESULT;                                                              \
        }                                                                                          \
        return m_pfn##CALLS ARGUMENTS;                                                             \
    }
#include "scaler_isp/plugins/comm_functions.def"
