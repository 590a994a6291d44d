#include "scaler_isp/sign/CCpDigitalSignArgsHandle.h"

#include <cstdio>
#include <string_view>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/Paths.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr int kLastKeyPair = 4;

/// A path field of the record: 260 bytes behind a pointer.
class PathField {
  public:
    explicit PathField(char *bytes) : m_bytes(bytes) {}

    std::string Read() const {
        return m_bytes != nullptr ? ReadBounded(m_bytes, SCALER_ISP_PATH_CHARS) : std::string();
    }

    void Write(std::string_view text) const {
        if (m_bytes != nullptr) {
            CopyBounded(m_bytes, SCALER_ISP_PATH_CHARS, text);
        }
    }

  private:
    char *m_bytes;
};

/// The two messages about one file: the field is empty (null: that is fine); the file is missing,
/// with its full path and a line end to follow.
struct FileMessages {
    const char *pszEmpty;
    const char *pszMissing;
};

constexpr FileMessages kLenovoVerifyKey = {
    "Digital signature: Lenovo verify key file should not be empty!\n",
    "Digital signature: Lenovo verify key file is not exist! "};
constexpr FileMessages kLenovoSubCert = {
    "Digital signature: Lenovo subcert file should not be empty!\n",
    "Digital signature: Lenovo subcert file is not exist! "};
constexpr FileMessages kExternalSignKey = {
    "Digital signature: Vxm external sign key file should not be empty!\n",
    "Digital signature: Vxm external sign key file is not exist! "};
constexpr FileMessages kExternalVerifyKey = {
    "Digital signature: Vxm external verify key file should not be empty!\n",
    "Digital signature: Vxm external verify key file is not exist! "};
constexpr FileMessages kExternalNextVerifyKey = {
    "Digital signature: Vxm external next verify key file should not be empty!\n",
    "Digital signature: Vxm external next verify key file is not exist! "};
constexpr FileMessages kHwSignKey = {nullptr,
                                     "Digital signature: Vxm hw sign key file is not exist! "};
constexpr FileMessages kHwNextVerifyKey = {
    "Digital signature: Vxm hw next verify key file should not be empty!\n",
    "Digital signature: Vxm hw next verify key file is not exist! "};
constexpr FileMessages kSignatureFile = {"Digital signature: Signature file is missing!\n",
                                         "Digital signature: Signature file is not exist! "};
constexpr const char *kFirmwareMissing = "Digital signature: fw file is not exist! ";

void PrintMissing(const char *message, const std::string &path) {
    std::printf("%s%s\n", message, path.c_str());
}

/// The check all file fields share: given, existing, rewritten as a full path.
int CheckFile(const std::string &directory, PathField field, const FileMessages &messages) {
    const std::string given = field.Read();
    if (given.empty()) {
        if (messages.pszEmpty == nullptr) {
            return 1;
        }
        std::fputs(messages.pszEmpty, stdout);
        return 0;
    }
    const std::string full = GetFileFullPath(given, directory);
    if (PathFileExist(full) == 0) {
        PrintMissing(messages.pszMissing, full);
        return 0;
    }
    field.Write(full);
    return 1;
}

/// The firmware file made full; `mayBeMissing` accepts one that does not exist.
int CheckFirmware(const std::string &directory, PathField field, bool mayBeMissing) {
    const std::string full = GetFileFullPath(field.Read(), directory);
    if (!mayBeMissing && PathFileExist(full) == 0) {
        PrintMissing(kFirmwareMissing, full);
        return 0;
    }
    field.Write(full);
    return 1;
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
    if (action == ENUM_SIGN_ACTION_SIGN && type == ENUM_SIGN_TYPE_SW &&
        swMode == ENUM_SIGN_SW_MODE_LENOVO) {
        std::printf("Digital signature: Lenovo digital signature can not support sign function!\n");
        return 0;
    }
    if (action == ENUM_SIGN_ACTION_VERIFY && type == ENUM_SIGN_TYPE_HW) {
        std::printf("Digital signature: Hw digital signature can not support verify function!\n");
        return 0;
    }
    return 1;
}

int CCpDigitalSignArgsHandle::GetSignatureFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                               std::string firmware, char *signature) const {
    return ResultOrOnThrow(0, [&] {
        const PathField field(signature);
        switch (action) {
        case ENUM_SIGN_ACTION_SIGN: {
            const std::string given = field.Read();
            field.Write(given.empty() ? firmware + ".sig"
                                      : GetFileFullPath(given, m_strCurrentDir));
            return 1;
        }
        case ENUM_SIGN_ACTION_VERIFY:
            return CheckFile(m_strCurrentDir, field, kSignatureFile);
        default:
            std::printf("Digital signature: Digital signature action type illegal! %d\n",
                        static_cast<int>(action));
            return 0;
        }
    });
}

int CCpDigitalSignArgsHandle::CheckLenovoKeyFile(char *verifyKey, char *subCert) const {
    return ResultOrOnThrow(0, [&] {
        const PathField certificate(subCert);
        const bool withCertificate = subCert != nullptr;
        // Both must be given before either is looked for.
        if (withCertificate && !PathField(verifyKey).Read().empty() && certificate.Read().empty()) {
            std::fputs(kLenovoSubCert.pszEmpty, stdout);
            return 0;
        }
        if (CheckFile(m_strCurrentDir, PathField(verifyKey), kLenovoVerifyKey) == 0) {
            return 0;
        }
        return withCertificate ? CheckFile(m_strCurrentDir, certificate, kLenovoSubCert) : 1;
    });
}

int CCpDigitalSignArgsHandle::CheckVxmInternalKey(std::string text, int &keyPair) const {
    keyPair = 0;
    if (text.empty()) {
        return 1;
    }
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        std::printf("Digital signature: Vxm internal key pair value is illegal! --keypair %s \n",
                    text.c_str());
        return 0;
    }
    if (value < 0 || value > kLastKeyPair) {
        std::printf("Digital signature: Vxm Key Pair out if range! --keypair %s\n", text.c_str());
        return 0;
    }
    keyPair = value;
    return 1;
}

int CCpDigitalSignArgsHandle::CheckVxmExternalKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                                      char *verifyKey, char *signKey) const {
    return ResultOrOnThrow(0, [&] {
        switch (action) {
        case ENUM_SIGN_ACTION_SIGN:
            return CheckFile(m_strCurrentDir, PathField(signKey), kExternalSignKey);
        case ENUM_SIGN_ACTION_VERIFY:
            return CheckFile(m_strCurrentDir, PathField(verifyKey), kExternalVerifyKey);
        default: // GetSignatureFile has refused other actions before
            return 1;
        }
    });
}

int CCpDigitalSignArgsHandle::CheckVxmExternalNextKeyFile(
    ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char *signKey, char *nextVerifyKey) const {
    return ResultOrOnThrow(0, [&] {
        if (CheckFile(m_strCurrentDir, PathField(nextVerifyKey), kExternalNextVerifyKey) == 0) {
            return 0;
        }
        return action == ENUM_SIGN_ACTION_SIGN
                   ? CheckFile(m_strCurrentDir, PathField(signKey), kExternalSignKey)
                   : 1;
    });
}

int CCpDigitalSignArgsHandle::CheckVxmHwKeyFile(char *signKey, char *nextVerifyKey) const {
    return ResultOrOnThrow(0, [&] {
        if (CheckFile(m_strCurrentDir, PathField(signKey), kHwSignKey) == 0) {
            return 0;
        }
        return CheckFile(m_strCurrentDir, PathField(nextVerifyKey), kHwNextVerifyKey);
    });
}

// KEPT Lenovo_check_of_a_run_ignores_the_sub_certificate: the sub-certificate reaches the plug-in
// as typed; nobody checks that it exists.
int CCpDigitalSignArgsHandle::JudgeArgument(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const {
    return ResultOrOnThrow(0, [&] {
        if (args == nullptr ||
            CheckDigitalSignatureType(args->enumSignActionType, args->enumDigitalSignatureType,
                                      args->enumSWDigitalSignatureMode) == 0) {
            return 0;
        }
        const bool hardware = args->enumDigitalSignatureType == ENUM_SIGN_TYPE_HW;
        const bool mayBeMissing =
            hardware && args->enumHWDigitalSignatureMode == ENUM_SIGN_HW_MODE_1;
        if (CheckFirmware(m_strCurrentDir, PathField(args->szFwFile), mayBeMissing) == 0 ||
            GetSignatureFile(args->enumSignActionType, ReadBounded(args->szFwFile),
                             args->szSignatureFile) == 0) {
            return 0;
        }
        if (hardware) {
            return CheckVxmHwKeyFile(args->szSignKeyFile, args->szNextVerifyKeyFile);
        }
        if (args->enumDigitalSignatureType != ENUM_SIGN_TYPE_SW) {
            return 1;
        }
        switch (args->enumSWDigitalSignatureMode) {
        case ENUM_SIGN_SW_MODE_LENOVO:
            return CheckLenovoKeyFile(args->szVerifyKeyFile, nullptr);
        case ENUM_SIGN_SW_MODE_VXM_INTERNAL:
            return CheckVxmInternalKey(ReadBounded(args->szKeyPair), args->nKeyPair);
        case ENUM_SIGN_SW_MODE_VXM_EXTERNAL:
            return CheckVxmExternalKeyFile(args->enumSignActionType, args->szVerifyKeyFile,
                                           args->szSignKeyFile);
        case ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT:
            return CheckVxmExternalNextKeyFile(args->enumSignActionType, args->szSignKeyFile,
                                               args->szNextVerifyKeyFile);
        default:
            return 1;
        }
    });
}

int CCpDigitalSignArgsHandle::JudgeArgumentFwFileAndSigFile(
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const {
    return ResultOrOnThrow(0, [&] {
        if (args == nullptr ||
            CheckDigitalSignatureType(args->enumSignActionType, args->enumDigitalSignatureType,
                                      args->enumSWDigitalSignatureMode) == 0 ||
            CheckFirmware(m_strCurrentDir, PathField(args->szFwFile), false) == 0) {
            return 0;
        }
        return GetSignatureFile(args->enumSignActionType, ReadBounded(args->szFwFile),
                                args->szSignatureFile);
    });
}
