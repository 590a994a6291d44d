#include "scaler_isp/plugins/CCpIsp.h"

#include <cstdio>

#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/plugins/SharedLibrary.h"

CCpIsp::CCpIsp() { // NOLINT(*-member-init): Init sets every member
    Init();
}

CCpIsp::~CCpIsp() = default;

void CCpIsp::Init() {
    m_hIspDll = nullptr;
#define SCALER_ISP_STATUS_FUNCTION(NAME, PARAMETERS, ARGUMENTS) m_pfn##NAME = nullptr;
#define SCALER_ISP_VOID_FUNCTION(NAME, PARAMETERS, ARGUMENTS) m_pfn##NAME = nullptr;
#define SCALER_ISP_DEVICE_FUNCTION(NAME, PARAMETERS, ARGUMENTS) m_pfn##NAME = nullptr;
#include "scaler_isp/plugins/isp_functions.def"
}

int CCpIsp::LoadIspDllFile(wchar_t *path) {
    return CatchAll(0, [&] {
        FreeIspDllFile(); // here as well, because converting the path may throw
        return Load(EnvironmentTextFromWide(path != nullptr ? path : L"")) ? 1 : 0;
    });
}

bool CCpIsp::Load(const std::string &path) {
    FreeIspDllFile();
    const char *error = nullptr;
    m_hIspDll = OpenSharedLibrary(path, error);
    if (m_hIspDll == nullptr) {
        std::printf("dlopen - %sn", error);
        return false;
    }
    const SymbolRequest rows[] = {
#define SCALER_ISP_REQUIRED_SYMBOL(NAME) {#NAME, &m_pfn##NAME, true},
#define SCALER_ISP_OPTIONAL_SYMBOL(NAME) {#NAME, &m_pfn##NAME, false},
#include "scaler_isp/plugins/isp_functions.def"
    };
    if (ResolveSymbols(m_hIspDll, rows, error) != nullptr) {
        FreeIspDllFile();
        return false;
    }
    return true;
}

void CCpIsp::FreeIspDllFile() {
    if (m_hIspDll != nullptr) {
        CloseSharedLibrary(m_hIspDll);
        Init();
    }
}

#define SCALER_ISP_STATUS_FUNCTION(NAME, PARAMETERS, ARGUMENTS)                                    \
    int CCpIsp::NAME PARAMETERS {                                                                  \
        return m_pfn##NAME != nullptr ? m_pfn##NAME ARGUMENTS : SCALER_ISP_FUNCTION_MISSING;       \
    }
#define SCALER_ISP_VOID_FUNCTION(NAME, PARAMETERS, ARGUMENTS)                                      \
    void CCpIsp::NAME PARAMETERS {                                                                 \
        if (m_pfn##NAME != nullptr) {                                                              \
            m_pfn##NAME ARGUMENTS;                                                                 \
        }                                                                                          \
    }
#define SCALER_ISP_DEVICE_FUNCTION(NAME, PARAMETERS, ARGUMENTS)                                    \
    int CCpIsp::NAME PARAMETERS {                                                                  \
        if (m_pfn##NAME == nullptr) {                                                              \
            return 0;                                                                              \
        }                                                                                          \
        m_pfn##NAME ARGUMENTS;                                                                     \
        return 1;                                                                                  \
    }
#include "scaler_isp/plugins/isp_functions.def"
