#include "check/CallTable.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl::check {
namespace {

using doctor::FindingId;
using doctor::PluginRole;
using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

template <class Function> Function *FunctionAt(void *address) {
    Function *function = nullptr;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

int CallWithSetting(void *function, CallInput &input) {
    return FunctionAt<int(Command *)>(function)(&input.Command());
}

int CallWithKey(void *function, CallInput &input) {
    return FunctionAt<int(Command *, unsigned char *)>(function)(&input.Command(), input.Key());
}

int CallSign(void *function, CallInput &input) {
    return FunctionAt<int(const SignArgs *)>(function)(&input.Sign());
}

int CallVerify(void *function, CallInput &input) {
    return FunctionAt<int(const SignArgs *, char *)>(function)(&input.Sign(), input.KeyFromFlash());
}

template <ENUM_CP_ISPTOOL_ACTION_TYPE Action> void PrepareAction(CallInput &input) {
    input.Command().enumActionType = Action;
}

void PrepareMissingFirmware(CallInput &input) {
    PrepareAction<ENUM_ACTION_ISP>(input);
    STRUCT_C_STYLE_MAP_FW &map = input.Command().stMapFw;
    map.ulFwCount = 1;
    // A full field: a function that expects a terminator reads on into the fields that follow.
    std::fill(std::begin(map.stFwBank[0].wszFwPath), std::end(map.stFwBank[0].wszFwPath), L'x');
    map.stFwBank[0].wszFwPath[0] = L'/';
}

void JudgeMissingFirmware(const CallTarget &, CallInput &, int result, CallReporter &reporter) {
    if (result == SCALER_ISP_SUCCESS) {
        reporter.Add(FindingId::FirmwareNotRead);
    }
}

void PrepareDump(CallInput &input) {
    PrepareAction<ENUM_ACTION_DUMPFLASH>(input);
    input.Command().stDumpFlash.ulDumpLen = kDumpBytes;
    input.StorePath(input.Command().stDumpFlash.wszDumpFile, kDumpFile);
}

void JudgeDump(const CallTarget &, CallInput &input, int result, CallReporter &reporter) {
    std::error_code error;
    const auto size = std::filesystem::file_size(input.PathOf(kDumpFile), error);
    if (result == SCALER_ISP_SUCCESS && (error || size != kDumpBytes)) {
        reporter.Add(FindingId::DumpMissing, std::to_string(error ? 0 : size));
    }
}

void JudgeKey(const CallTarget &, CallInput &input, int result, CallReporter &reporter) {
    if (input.KeyIsTooLong()) {
        reporter.Add(FindingId::KeyTooLong, std::to_string(SCALER_ISP_FLASH_KEY_BYTES));
    } else if (result == SCALER_ISP_SUCCESS && input.KeyIsEmpty()) {
        reporter.Add(FindingId::KeyEmpty);
    }
}

void PrepareInformation(CallInput &input) {
    PrepareAction<ENUM_ACTION_USERDEFINEDINFO>(input);
    input.Command().enumUserDefinedInfoType = 1;
}

void PrepareEeprom(CallInput &input) {
    constexpr std::uint32_t kReadVersion = 2;
    PrepareAction<ENUM_ACTION_EDPISP>(input);
    input.Command().enumEdpIspMode = kReadVersion;
}

template <ENUM_CP_DIGITAL_SIGNATURE_SW_MODE Mode> void PrepareVerify(CallInput &input) {
    SignArgs &args = input.Sign();
    args.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
    args.enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    args.enumSWDigitalSignatureMode = Mode;
    input.StorePath(args.szFwFile, kFirmwareFile);
    input.StorePath(args.szSignatureFile, kSignatureFile);
    input.StorePath(args.szVerifyKeyFile, kKeyFile);
    if (Mode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT) {
        input.StorePath(args.szNextVerifyKeyFile, kKeyFile);
        input.MakeUpKey();
    }
}

void PrepareVerifyLongPaths(CallInput &input) {
    PrepareVerify<ENUM_SIGN_SW_MODE_VXM_EXTERNAL>(input);
    for (auto *field : {&input.Sign().szFwFile, &input.Sign().szSignatureFile}) {
        std::fill(std::begin(*field), std::end(*field), 'x');
        (*field)[0] = '/';
    }
}

void JudgeVerify(const CallTarget &, CallInput &, int result, CallReporter &reporter) {
    if (result != 0) {
        reporter.Add(FindingId::SignatureAccepted, "a signature that nobody has made");
    }
}

template <ENUM_CP_DIGITAL_SIGNATURE_SW_MODE Mode> void PrepareSign(CallInput &input) {
    PrepareVerify<Mode>(input);
    input.Sign().enumSignActionType = ENUM_SIGN_ACTION_SIGN;
    input.StorePath(input.Sign().szSignKeyFile, kKeyFile);
    std::fill(std::begin(input.Sign().szSignatureFile), std::end(input.Sign().szSignatureFile),
              '\0');
    input.StorePath(input.Sign().szSignatureFile, kMadeSignatureFile);
}

// RETURNS false if the file has no such byte.
bool ChangeFirstByte(const std::string &name) {
    std::fstream file(name, std::ios::in | std::ios::out | std::ios::binary);
    const int first = file.get();
    file.seekp(0);
    file.put(static_cast<char>(first ^ 1));
    return file.good();
}

// Changes a file, verifies, and changes it back. RETURNS whether the signature was rejected.
bool ExpectRejected(void *verify, CallInput &input, const char *file, const char *words,
                    CallReporter &reporter) {
    if (!ChangeFirstByte(input.PathOf(file))) {
        return true;
    }
    const bool isRejected = CallVerify(verify, input) == 0;
    if (!isRejected) {
        reporter.Add(FindingId::SignatureAccepted, words);
    }
    ChangeFirstByte(input.PathOf(file));
    return isRejected;
}

/// What VerifySignatureExport says of a signature that SignFwExport has just made.
enum class OwnSignature { Rejected, AcceptedForOthers, Verified };

OwnSignature VerifyOwn(void *verify, CallInput &input, CallReporter &reporter) {
    input.Sign().enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
    if (CallVerify(verify, input) == 0) {
        return OwnSignature::Rejected;
    }
    const bool isFirmwareRead =
        ExpectRejected(verify, input, kFirmwareFile,
                       "a signature for a firmware that was changed after signing", reporter);
    const bool isSignatureRead = ExpectRejected(
        verify, input, kMadeSignatureFile, "a signature of which one bit was changed", reporter);
    return isFirmwareRead && isSignatureRead ? OwnSignature::Verified
                                             : OwnSignature::AcceptedForOthers;
}

void CheckSign(const CallTarget &target, CallInput &input, int result, CallReporter &reporter) {
    std::error_code ignored;
    if (result == 0) {
        return;
    }
    if (!std::filesystem::exists(input.PathOf(kMadeSignatureFile), ignored)) {
        reporter.Add(FindingId::SignatureMissing);
        return;
    }
    if (target.verify == nullptr) {
        return;
    }
    // What is wrong from here on is the fault of the verifying function.
    const std::string signing = reporter.Words();
    reporter.Begin(std::string("VerifySignatureExport") + target.words);
    const OwnSignature own = VerifyOwn(target.verify, input, reporter);
    reporter.Begin(signing);
    if (own == OwnSignature::Verified) {
        reporter.Add(FindingId::OwnSignatureVerified);
    } else if (own == OwnSignature::Rejected &&
               // With a made-up key file the two keys need not be a pair.
               input.Sign().enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_INTERNAL) {
        reporter.Add(FindingId::OwnSignatureRejected);
    }
}

constexpr CallRow kRows[] = {
    {PluginRole::Isp, "IspFlash", " with an empty bank map", PrepareAction<ENUM_ACTION_ISP>,
     CallWithSetting, nullptr},
    {PluginRole::Isp, "IspFlash", " with a missing file of 260 characters", PrepareMissingFirmware,
     CallWithSetting, JudgeMissingFirmware},
    {PluginRole::Isp, "GetKeyFromFlash", "", PrepareAction<ENUM_ACTION_ISP>, CallWithKey, JudgeKey},
    {PluginRole::Isp, "RecordFWVersion", "", PrepareAction<ENUM_ACTION_RECORDVER>, CallWithSetting,
     nullptr},
    {PluginRole::Isp, "DumpFlash", " of 256 bytes", PrepareDump, CallWithSetting, JudgeDump},
    {PluginRole::Isp, "GetUserDefinedInfoFromDDCCI", "", PrepareInformation, CallWithSetting,
     nullptr},
    {PluginRole::Isp, "IspEeprom", " to read the version", PrepareEeprom, CallWithSetting, nullptr},
    {PluginRole::Isp, "GetScalerType", "", PrepareAction<ENUM_ACTION_GETSCALERTYPE>,
     CallWithSetting, nullptr},
    {PluginRole::Isp, "EnterISPModeExport", "", PrepareAction<ENUM_ACTION_ENTERISPMODE>,
     CallWithSetting, nullptr},
    {PluginRole::Isp, "ResetMCUExport", "", PrepareAction<ENUM_ACTION_RESETMCU>, CallWithSetting,
     nullptr},
    {PluginRole::Sign, "VerifySignatureExport", " with an internal key (--dsmode 2)",
     PrepareVerify<ENUM_SIGN_SW_MODE_VXM_INTERNAL>, CallVerify, JudgeVerify},
    {PluginRole::Sign, "VerifySignatureExport", " with a key file (--dsmode 3)",
     PrepareVerify<ENUM_SIGN_SW_MODE_VXM_EXTERNAL>, CallVerify, JudgeVerify},
    {PluginRole::Sign, "VerifySignatureExport", " with a key of the chip (--dsmode 4)",
     PrepareVerify<ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT>, CallVerify, JudgeVerify},
    {PluginRole::Sign, "VerifySignatureExport", " with missing files of 260 characters",
     PrepareVerifyLongPaths, CallVerify, JudgeVerify},
    {PluginRole::Sign, "SignFwExport", " with an internal key (--dsmode 2)",
     PrepareSign<ENUM_SIGN_SW_MODE_VXM_INTERNAL>, CallSign, CheckSign},
    {PluginRole::Sign, "SignFwExport", " with a key file (--dsmode 3)",
     PrepareSign<ENUM_SIGN_SW_MODE_VXM_EXTERNAL>, CallSign, CheckSign},
};

} // namespace

std::span<const CallRow> CallRows() {
    return kRows;
}

} // namespace ispctl::check
