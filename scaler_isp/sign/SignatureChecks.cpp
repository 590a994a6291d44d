#include "scaler_isp/sign/SignatureChecks.h"

#include <cstdio>
#include <string_view>

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr int kLastKeyPair = 4;

/// A path field of the record: 260 bytes at an address.
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

/// The two messages about one file: the field is empty (null if that is accepted); the file is
/// missing, which is printed with its absolute path and a newline.
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

/// The common check of a file field: it must be given and exist, and is replaced with its absolute
/// path.
bool CheckFile(const std::string &directory, PathField field, const FileMessages &messages) {
    const std::string given = field.Read();
    if (given.empty()) {
        if (messages.pszEmpty == nullptr) {
            return true;
        }
        std::fputs(messages.pszEmpty, stdout);
        return false;
    }
    const std::string full = ResolveFile(given, directory);
    if (!CanBeOpened(full)) {
        PrintMissing(messages.pszMissing, full);
        return false;
    }
    field.Write(full);
    return true;
}

/// Resolves the firmware file; `mayBeMissing` accepts one that does not exist.
bool CheckFirmware(const std::string &directory, PathField field, bool mayBeMissing) {
    const std::string full = ResolveFile(field.Read(), directory);
    if (!mayBeMissing && !CanBeOpened(full)) {
        PrintMissing(kFirmwareMissing, full);
        return false;
    }
    field.Write(full);
    return true;
}

} // namespace

bool CheckSignatureType(SignatureAction action, SignatureType type, SoftwareMode swMode) {
    if (action == ENUM_SIGN_ACTION_SIGN && type == ENUM_SIGN_TYPE_SW &&
        swMode == ENUM_SIGN_SW_MODE_LENOVO) {
        std::printf("Digital signature: Lenovo digital signature can not support sign function!\n");
        return false;
    }
    if (action == ENUM_SIGN_ACTION_VERIFY && type == ENUM_SIGN_TYPE_HW) {
        std::printf("Digital signature: Hw digital signature can not support verify function!\n");
        return false;
    }
    return true;
}

bool CheckSignatureFile(const std::string &directory, SignatureAction action,
                        const std::string &firmware, char *signature) {
    const PathField field(signature);
    switch (action) {
    case ENUM_SIGN_ACTION_SIGN: {
        const std::string given = field.Read();
        field.Write(given.empty() ? firmware + ".sig" : ResolveFile(given, directory));
        return true;
    }
    case ENUM_SIGN_ACTION_VERIFY:
        return CheckFile(directory, field, kSignatureFile);
    default:
        std::printf("Digital signature: Digital signature action type illegal! %d\n",
                    static_cast<int>(action));
        return false;
    }
}

bool CheckLenovoKeys(const std::string &directory, char *verifyKey, char *subCert) {
    const PathField certificate(subCert);
    const bool withCertificate = subCert != nullptr;
    // Both are checked for being given before either is searched for, so that an empty field is
    // reported first.
    if (withCertificate && !PathField(verifyKey).Read().empty() && certificate.Read().empty()) {
        std::fputs(kLenovoSubCert.pszEmpty, stdout);
        return false;
    }
    return CheckFile(directory, PathField(verifyKey), kLenovoVerifyKey) &&
           (!withCertificate || CheckFile(directory, certificate, kLenovoSubCert));
}

bool CheckInternalKeyPair(const std::string &text, int &keyPair) {
    keyPair = 0;
    if (text.empty()) {
        return true;
    }
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        std::printf("Digital signature: Vxm internal key pair value is illegal! --keypair %s \n",
                    text.c_str());
        return false;
    }
    if (value < 0 || value > kLastKeyPair) {
        std::printf("Digital signature: Vxm Key Pair out if range! --keypair %s\n", text.c_str());
        return false;
    }
    keyPair = value;
    return true;
}

bool CheckExternalKeys(const std::string &directory, SignatureAction action, char *verifyKey,
                       char *signKey) {
    switch (action) {
    case ENUM_SIGN_ACTION_SIGN:
        return CheckFile(directory, PathField(signKey), kExternalSignKey);
    case ENUM_SIGN_ACTION_VERIFY:
        return CheckFile(directory, PathField(verifyKey), kExternalVerifyKey);
    default: // CheckSignatureFile has rejected other actions before
        return true;
    }
}

bool CheckExternalNextKeys(const std::string &directory, SignatureAction action, char *signKey,
                           char *nextVerifyKey) {
    return CheckFile(directory, PathField(nextVerifyKey), kExternalNextVerifyKey) &&
           (action != ENUM_SIGN_ACTION_SIGN ||
            CheckFile(directory, PathField(signKey), kExternalSignKey));
}

bool CheckHardwareKeys(const std::string &directory, char *signKey, char *nextVerifyKey) {
    return CheckFile(directory, PathField(signKey), kHwSignKey) &&
           CheckFile(directory, PathField(nextVerifyKey), kHwNextVerifyKey);
}

// QUIRK Lenovo_check_of_run_ignores_sub_certificate: the sub-certificate is passed to the
// plug-in unchanged; the library does not check that it exists.
bool CheckSignatureArguments(const std::string &directory,
                             STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args) {
    if (!CheckSignatureType(args.enumSignActionType, args.enumDigitalSignatureType,
                            args.enumSWDigitalSignatureMode)) {
        return false;
    }
    const bool hardware = args.enumDigitalSignatureType == ENUM_SIGN_TYPE_HW;
    const bool mayBeMissing = hardware && args.enumHWDigitalSignatureMode == ENUM_SIGN_HW_MODE_1;
    if (!CheckFirmware(directory, PathField(args.szFwFile), mayBeMissing) ||
        !CheckSignatureFile(directory, args.enumSignActionType, ReadBounded(args.szFwFile),
                            args.szSignatureFile)) {
        return false;
    }
    if (hardware) {
        return CheckHardwareKeys(directory, args.szSignKeyFile, args.szNextVerifyKeyFile);
    }
    if (args.enumDigitalSignatureType != ENUM_SIGN_TYPE_SW) {
        return true;
    }
    switch (args.enumSWDigitalSignatureMode) {
    case ENUM_SIGN_SW_MODE_LENOVO:
        return CheckLenovoKeys(directory, args.szVerifyKeyFile, nullptr);
    case ENUM_SIGN_SW_MODE_VXM_INTERNAL:
        return CheckInternalKeyPair(ReadBounded(args.szKeyPair), args.nKeyPair);
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL:
        return CheckExternalKeys(directory, args.enumSignActionType, args.szVerifyKeyFile,
                                 args.szSignKeyFile);
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT:
        return CheckExternalNextKeys(directory, args.enumSignActionType, args.szSignKeyFile,
                                     args.szNextVerifyKeyFile);
    default:
        return true;
    }
}

bool CheckFirmwareAndSignature(const std::string &directory,
                               STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args) {
    return CheckSignatureType(args.enumSignActionType, args.enumDigitalSignatureType,
                              args.enumSWDigitalSignatureMode) &&
           CheckFirmware(directory, PathField(args.szFwFile), false) &&
           CheckSignatureFile(directory, args.enumSignActionType, ReadBounded(args.szFwFile),
                              args.szSignatureFile);
}
