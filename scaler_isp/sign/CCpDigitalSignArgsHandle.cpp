#include "scaler_isp/sign/CCpDigitalSignArgsHandle.h"

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/sign/SignatureChecks.h"

namespace {

/// 1 if the check passes, else 0; also 0 if the system failed.
template <class Check> int OneIfPassed(Check &&check) {
    return CatchAll(0, [&] { return check() ? 1 : 0; });
}

} // namespace

void CCpDigitalSignArgsHandle::SetCurrentDir(const std::string &directory) {
    m_strCurrentDir = directory;
}

std::string CCpDigitalSignArgsHandle::GetCurrentDir() const {
    return m_strCurrentDir;
}

int CCpDigitalSignArgsHandle::CheckDigitalSignatureType(
    ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, ENUM_CP_DIGITAL_SIGNATURE_TYPE type,
    ENUM_CP_DIGITAL_SIGNATURE_SW_MODE swMode) const {
    return OneIfPassed([&] { return CheckSignatureType(action, type, swMode); });
}

int CCpDigitalSignArgsHandle::GetSignatureFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                               std::string firmware, char *signature) const {
    return OneIfPassed(
        [&] { return CheckSignatureFile(m_strCurrentDir, action, firmware, signature); });
}

int CCpDigitalSignArgsHandle::CheckLenovoKeyFile(char *verifyKey, char *subCert) const {
    return OneIfPassed([&] { return CheckLenovoKeys(m_strCurrentDir, verifyKey, subCert); });
}

int CCpDigitalSignArgsHandle::CheckVxmInternalKey(std::string text, int &keyPair) const {
    return OneIfPassed([&] { return CheckInternalKeyPair(text, keyPair); });
}

int CCpDigitalSignArgsHandle::CheckVxmExternalKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                                      char *verifyKey, char *signKey) const {
    return OneIfPassed(
        [&] { return CheckExternalKeys(m_strCurrentDir, action, verifyKey, signKey); });
}

int CCpDigitalSignArgsHandle::CheckVxmExternalNextKeyFile(
    ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char *signKey, char *nextVerifyKey) const {
    return OneIfPassed(
        [&] { return CheckExternalNextKeys(m_strCurrentDir, action, signKey, nextVerifyKey); });
}

int CCpDigitalSignArgsHandle::CheckVxmHwKeyFile(char *signKey, char *nextVerifyKey) const {
    return OneIfPassed([&] { return CheckHardwareKeys(m_strCurrentDir, signKey, nextVerifyKey); });
}

int CCpDigitalSignArgsHandle::JudgeArgument(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const {
    return OneIfPassed(
        [&] { return args != nullptr && CheckSignatureArguments(m_strCurrentDir, *args); });
}

int CCpDigitalSignArgsHandle::JudgeArgumentFwFileAndSigFile(
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const {
    return OneIfPassed(
        [&] { return args != nullptr && CheckFirmwareAndSignature(m_strCurrentDir, *args); });
}
