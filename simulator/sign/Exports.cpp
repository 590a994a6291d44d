// The two functions that the library looks up, and which key and file each mode uses.

#include <cerrno>
#include <cstdio>

#include "common/ExceptionBarrier.h"
#include "common/FieldList.h"
#include "common/Files.h"
#include "common/Text.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"
#include "sign/Ecdsa.h"
#include "sign/InternalKeys.h"

using namespace virtual_scaler;

namespace {

using Args = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr int kLevelsToLibrary = 1; // <library's directory>/libSignVerify.dylib
constexpr int kInternalHardwareKey = 0;

std::string ArgsLine(const char *function, const Args &args, bool keyGiven) {
    FieldList fields(function);
#define ADD_U32(NAME, VALUE) fields.AddNumber(NAME, VALUE, 0);
#define ADD_I32(NAME, VALUE) ADD_U32(NAME, VALUE)
#define ADD_NARROW(NAME, VALUE) fields.AddText(NAME, VALUE);
#define SCALER_ISP_SIGN_FIELD(KIND, MEMBER, OFFSET, WIDTH) ADD_##KIND(#MEMBER, args.MEMBER)
#include "scaler_isp/abi/digital_sign_fields.def"
    if (keyGiven) {
        fields.Add("keyFromFlash", "yes");
    }
    return fields.Line();
}

/// RETURNS a path field of the record; a full field has no terminator.
std::string PathOf(const char (&field)[SCALER_ISP_PATH_CHARS]) {
    return FromNarrow(field, SCALER_ISP_PATH_CHARS);
}

std::string FileText(const std::string &path, const char *what) {
    std::string text;
    if (path.empty()) {
        throw SignFailure{Format("the %s is not given", what)};
    }
    if (!ReadText(path, text)) {
        throw SignFailure{
            Format("the %s cannot be read: %s: %s", what, path.c_str(), ErrorText(errno))};
    }
    return text;
}

Key InternalKey(int index) {
    const char *pem = InternalTestKey(index);
    if (pem == nullptr) {
        throw SignFailure{
            Format("there is no internal key pair %d, only 0 to %d", index, kInternalKeyPairs - 1)};
    }
    return PrivateKeyFromPem(pem, Format("internal test key pair %d", index));
}

Key SignKeyFile(const Args &args) {
    const std::string path = PathOf(args.szSignKeyFile);
    return PrivateKeyFromPem(FileText(path, "sign key file"), path);
}

Key PublicKeyFile(const std::string &path, const char *what) {
    return PublicKeyFromPem(FileText(path, what), path);
}

Key NextVerifyKey(const Args &args) {
    return PublicKeyFile(PathOf(args.szNextVerifyKeyFile), "next verify key file");
}

/// Signing with a key that does not match the next verify key would make the chip reject all later
/// firmware.
void RequirePair(const Key &signKey, const Key &nextVerifyKey) {
    if (!IsPair(signKey, nextVerifyKey)) {
        throw SignFailure{"the sign key and the next verify key are no pair"};
    }
}

Key SoftwareSignKey(const Args &args) {
    switch (args.enumSWDigitalSignatureMode) {
    case ENUM_SIGN_SW_MODE_VXM_INTERNAL:
        return InternalKey(args.nKeyPair);
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL:
        return SignKeyFile(args);
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT: {
        Key key = SignKeyFile(args);
        RequirePair(key, NextVerifyKey(args));
        return key;
    }
    default:
        throw SignFailure{
            Format("software mode %u cannot sign", unsigned{args.enumSWDigitalSignatureMode})};
    }
}

Key HardwareSignKey(const Args &args) {
    const Key next = NextVerifyKey(args);
    if (PathOf(args.szSignKeyFile).empty()) {
        // The internal key represents one inside the chip, so it cannot match a key of the user.
        return InternalKey(kInternalHardwareKey);
    }
    Key key = SignKeyFile(args);
    RequirePair(key, next);
    return key;
}

/// Hardware mode 1 passes on the next verify key and has no firmware, so the key file is signed.
std::string TextToSign(const Args &args) {
    if (args.enumDigitalSignatureType == ENUM_SIGN_TYPE_HW &&
        args.enumHWDigitalSignatureMode == ENUM_SIGN_HW_MODE_1) {
        return FileText(PathOf(args.szNextVerifyKeyFile), "next verify key file");
    }
    return FileText(PathOf(args.szFwFile), "firmware file");
}

void SignFirmware(const Args &args) {
    if (args.enumDigitalSignatureType != ENUM_SIGN_TYPE_SW &&
        args.enumDigitalSignatureType != ENUM_SIGN_TYPE_HW) {
        throw SignFailure{
            Format("signature type %u is unknown", unsigned{args.enumDigitalSignatureType})};
    }
    const Key key = args.enumDigitalSignatureType == ENUM_SIGN_TYPE_SW ? SoftwareSignKey(args)
                                                                       : HardwareSignKey(args);
    const std::vector<std::uint8_t> signature = Sign(key, TextToSign(args));
    const std::string path = PathOf(args.szSignatureFile);
    if (!ReplaceFile(path, signature.data(), signature.size())) {
        throw SignFailure{
            Format("the signature file cannot be written: %s: %s", path.c_str(), ErrorText(errno))};
    }
}

Key VerifyKey(const Args &args, const char *keyFromFlash) {
    if (keyFromFlash != nullptr) {
        return PublicKeyFromData({keyFromFlash, SCALER_ISP_FLASH_KEY_BYTES}, "key from the flash");
    }
    switch (args.enumSWDigitalSignatureMode) {
    case ENUM_SIGN_SW_MODE_LENOVO:
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL:
        return PublicKeyFile(PathOf(args.szVerifyKeyFile), "verify key file");
    case ENUM_SIGN_SW_MODE_VXM_INTERNAL:
        return InternalKey(args.nKeyPair);
    case ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT:
        return NextVerifyKey(args);
    default:
        throw SignFailure{
            Format("software mode %u is unknown", unsigned{args.enumSWDigitalSignatureMode})};
    }
}

void VerifyFirmware(const Args &args, const char *keyFromFlash) {
    if (args.enumDigitalSignatureType != ENUM_SIGN_TYPE_SW) {
        throw SignFailure{"only software signatures can be verified"};
    }
    const Key key = VerifyKey(args, keyFromFlash);
    const std::string firmware = FileText(PathOf(args.szFwFile), "firmware file");
    const std::string signature = FileText(PathOf(args.szSignatureFile), "signature file");
    if (!IsValidSignature(key, firmware, signature)) {
        throw SignFailure{"the signature is not good: " + PathOf(args.szSignatureFile)};
    }
}

/// Writes the call to the journal and runs action. RETURNS 1, or 0 after one line on standard
/// output.
template <class Action>
int RunExport(const char *function, const Args *args, bool keyGiven, Action &&action) {
    return CatchAll<int>(0, [&] {
        try {
            if (args == nullptr) {
                throw SignFailure{"there is no record"};
            }
            AppendToJournal(DeviceDirectory(kLevelsToLibrary), ArgsLine(function, *args, keyGiven));
            action();
            return 1;
        } catch (const SignFailure &failure) {
            std::printf("Virtual sign/verify: %s\n", failure.text.c_str());
        } catch (const std::exception &error) {
            std::printf("Virtual sign/verify: %s\n", error.what());
        }
        return 0;
    });
}

} // namespace

int SignFwExport(const Args *args) {
    return RunExport("SignFwExport", args, false, [&] { SignFirmware(*args); });
}

int VerifySignatureExport(const Args *args, char *keyFromFlash) {
    return RunExport("VerifySignatureExport", args, keyFromFlash != nullptr,
                     [&] { VerifyFirmware(*args, keyFromFlash); });
}
