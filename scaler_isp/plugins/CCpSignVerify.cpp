#include "scaler_isp/plugins/CCpSignVerify.h"

#include <cstdio>

#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/plugins/SharedLibrary.h"

CCpSignVerify::CCpSignVerify() { // NOLINT(*-member-init): Init sets every member
    Init();
}

CCpSignVerify::~CCpSignVerify() = default;

void CCpSignVerify::Init() {
    m_hSignVerifyDll = nullptr;
    m_pfnSignFwExport = nullptr;
    m_pfnVerifySignatureExport = nullptr;
}

int CCpSignVerify::LoadSignVerfiyDllFile(wchar_t *path) {
    return CatchAll(0, [&] {
        FreeSignVerfiyDllFile(); // here as well, because converting the path may throw
        return Load(EnvironmentTextFromWide(path != nullptr ? path : L"")) ? 1 : 0;
    });
}

bool CCpSignVerify::Load(const std::string &path) {
    FreeSignVerfiyDllFile();
    const char *error = nullptr;
    m_hSignVerifyDll = OpenSharedLibrary(path, error);
    if (m_hSignVerifyDll == nullptr) {
        std::printf("dlopen - %s\n", error);
        return false;
    }
    const SymbolRequest rows[] = {
        {"VerifySignatureExport", &m_pfnVerifySignatureExport, true},
        {"SignFwExport", &m_pfnSignFwExport, true},
    };
    if (ResolveSymbols(m_hSignVerifyDll, rows, error) != nullptr) {
        std::printf("dlsym - %s\n", error);
        FreeSignVerfiyDllFile();
        return false;
    }
    return true;
}

void CCpSignVerify::FreeSignVerfiyDllFile() {
    if (m_hSignVerifyDll != nullptr) {
        CloseSharedLibrary(m_hSignVerifyDll);
        Init();
    }
}

int CCpSignVerify::SignFw(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) {
    if (m_pfnSignFwExport == nullptr) {
        return SCALER_ISP_SIGN_PLUGIN_MISSING;
    }
    return m_pfnSignFwExport(args) != 0 ? SCALER_ISP_SUCCESS : SCALER_ISP_SIGNING_FAILED;
}

int CCpSignVerify::VerifySignature(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args, char *key) {
    if (m_pfnVerifySignatureExport == nullptr) {
        return SCALER_ISP_SIGN_PLUGIN_MISSING;
    }
    return m_pfnVerifySignatureExport(args, key) != 0 ? SCALER_ISP_SUCCESS
                                                      : SCALER_ISP_BAD_SIGNATURE;
}

int LoadSignVerfiyDll(CCpSignVerify &signVerify, CCpNxString directory, CCpNxString &path) {
    static_cast<void>(directory);
    return signVerify.LoadSignVerfiyDllFile(path.GetBuffer()) != 0 ? SCALER_ISP_SUCCESS
                                                                   : SCALER_ISP_SIGN_PLUGIN_MISSING;
}
