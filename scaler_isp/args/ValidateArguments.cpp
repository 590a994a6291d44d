#include "scaler_isp/args/CommandFlow.h"

#include <cstdio>
#include <string_view>

#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/sign/SignatureChecks.h"

namespace {

/// What the steps work on: the raw record, and the two records that they fill.
struct Validation {
    RawArgs &args;
    const ArgsDirectories &directories;
    const FwBankMap &files;
    CommandRecord &setting;
    SignRecord &sign;

    bool HasSignature() const {
        return setting.enumDigitalSignatureType != ENUM_SIGN_TYPE_NONE;
    }
    bool IsHardware() const {
        return setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_HW;
    }
};

/// What follows a step. Accepted ends the validation early: the rest does not concern the action.
enum class StepResult { Continue, Accepted, Refused };

StepResult ContinueIf(bool accepted) {
    return accepted ? StepResult::Continue : StepResult::Refused;
}

StepResult Refuse(const char *message) {
    std::fputs(message, stdout);
    return StepResult::Refused;
}

StepResult Action(Validation &v) {
    if (v.args.ulActionMask != 0) {
        if (!IsOneBit(v.args.ulActionMask)) {
            return Refuse("Action type undefined or more than one type!\n");
        }
        v.setting.enumActionType = ActionOfBit(v.args.ulActionMask);
    }
    if (v.args.ulActionMask == 0 || v.setting.enumActionType == ENUM_ACTION_NONE) {
        return Refuse("Action type undefined or illegal!\n");
    }
    return StepResult::Continue;
}

StepResult BootCodeAndIspMode(Validation &v) {
    v.setting.enumBootCodeType = v.args.ulBootCodeType;
    v.setting.enumIspMode = v.args.ulIspMode;
    return StepResult::Continue;
}

StepResult MergeInfo(Validation &v) {
    if (v.args.ulMergeInfoRwMask == 0) {
        return StepResult::Continue;
    }
    v.setting.enumMergeFWInfoMode = MergeModeOfMask(v.args.ulMergeInfoRwMask);
    return ContinueIf(v.setting.enumMergeFWInfoMode != ENUM_MERGE_INFO_WRITE ||
                      ConvertMergeInfo(v.args.strMergeWriteData, v.setting.stMergeFwInfo));
}

StepResult SignatureTypeOption(Validation &v) {
    if (v.args.ulSignTypeMask == 0) {
        v.setting.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
        return StepResult::Continue;
    }
    if (!IsOneBit(v.args.ulSignTypeMask)) {
        return Refuse("Digital signature type is undefined or more than one type!\n");
    }
    v.setting.enumDigitalSignatureType = SignatureTypeOfBit(v.args.ulSignTypeMask);
    v.sign.enumDigitalSignatureType = v.setting.enumDigitalSignatureType;
    if (v.setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_NONE) {
        return Refuse("Digital signature type is illegal!\n");
    }
    return StepResult::Continue;
}

StepResult SignatureMode(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const bool accepted =
        v.IsHardware() ? ConvertSignatureMode(v.args.strDsMode, v.sign.enumHWDigitalSignatureMode)
                       : ConvertSignatureMode(v.args.strDsMode, v.sign.enumSWDigitalSignatureMode);
    if (!accepted) {
        return Refuse("Digital signature mode is illegal!\n");
    }
    v.setting.enumSWDigitalSignatureMode = v.sign.enumSWDigitalSignatureMode;
    return StepResult::Continue;
}

// QUIRK Boot_path_needs_a_signature_type: the boot firmware reaches the record only together with
// --sw or --hw.
StepResult SignatureTexts(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const bool firmwareNeeded =
        !v.IsHardware() || v.sign.enumHWDigitalSignatureMode != ENUM_SIGN_HW_MODE_1;
    if (v.args.strFwPath.empty() && firmwareNeeded) {
        return Refuse("Program fw path is undefined!\n");
    }
    CopyBounded(v.setting.szBootFwPath, std::string_view(v.args.strBootFwPath));
    CopyBounded(v.sign.szFwFile, std::string_view(v.args.strFwPath));
    CopyBounded(v.sign.szSignatureFile, std::string_view(v.args.strSignFile));
    CopyBounded(v.sign.szKeyPair, std::string_view(v.args.strKeyPair));
    CopyBounded(v.sign.szVerifyKeyFile, std::string_view(v.args.strVkFile));
    CopyBounded(v.sign.szSignKeyFile, std::string_view(v.args.strSkFile));
    CopyBounded(v.sign.szSubCertFile, std::string_view(v.args.strSubCert));
    CopyBounded(v.sign.szNextVerifyKeyFile, std::string_view(v.args.strNextVkFile));
    return StepResult::Continue;
}

/// The files of a software signature that is verified before the firmware is programmed.
StepResult SignatureFilesOfProgramming(Validation &v) {
    v.sign.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
    if (v.setting.enumIspMode == SCALER_ISP_MODE_FACTORY) {
        return StepResult::Continue;
    }
    if (v.sign.enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT) {
        // QUIRK Mode_4_goes_on_after_a_failed_file_check: the message is printed, and the run goes
        // on.
        static_cast<void>(CheckFirmwareAndSignature(v.directories.strCurrent, v.sign));
        return StepResult::Continue;
    }
    return ContinueIf(CheckSignatureArguments(v.directories.strCurrent, v.sign));
}

/// Checks the signature files. A run that only signs or verifies ends here.
StepResult SignatureFiles(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const ENUM_CP_ISPTOOL_ACTION_TYPE action = v.setting.enumActionType;
    const ActionRow &row = RowOfAction(action);
    if (!row.MayBeSigned()) {
        return Refuse("Digital signature type should not be defined only when program fw!\n");
    }
    if (row.OnlySigns()) {
        v.sign.enumSignActionType =
            action == ENUM_ACTION_SIGN ? ENUM_SIGN_ACTION_SIGN : ENUM_SIGN_ACTION_VERIFY;
        return CheckSignatureArguments(v.directories.strCurrent, v.sign) ? StepResult::Accepted
                                                                         : StepResult::Refused;
    }
    return v.IsHardware() ? StepResult::Continue : SignatureFilesOfProgramming(v);
}

StepResult VersionLocation(Validation &v) {
    if (v.args.ulVerLocMask == 0) {
        v.setting.enumVersionLocationType = ENUM_VER_LOC_NONE;
        return StepResult::Continue;
    }
    if (!IsOneBit(v.args.ulVerLocMask)) {
        return Refuse("Get version location type undefined or more than one type!\n");
    }
    if (!ConvertVersionLocation(v.args.ulVerLocMask, v.args.strUserDefinedVerMode,
                                v.setting.enumVersionLocationType,
                                v.setting.enumUserDefinedVersionType)) {
        return Refuse("Get version type fail\n");
    }
    if (v.setting.enumVersionLocationType == ENUM_VER_LOC_FLASH &&
        !ConvertFlashVersion(v.args, v.setting.stReadVersionFromFlash)) {
        return Refuse("Version location type flash setting is illegal\n");
    }
    if (v.setting.enumVersionLocationType == ENUM_VER_LOC_NONE) {
        return Refuse("Version location type is illegal!\n");
    }
    return StepResult::Continue;
}

StepResult CommunicationChannel(Validation &v) {
    return ContinueIf(ConvertCommId(v.args.strComm, v.setting.enumCommID));
}

StepResult SlaveAddress(Validation &v) {
    return ContinueIf(ConvertSlaveAddress(v.args.strSlave, v.setting.nSlaveAddressState,
                                          v.setting.ucSlaveAddress));
}

StepResult BankMap(Validation &v) {
    v.setting.bAutoSearchFW = v.args.bSearchFw;
    FwBankMap bankMap;
    if (!ExpandFirmwareFiles(v.files, v.setting, v.directories.strCurrent, bankMap)) {
        return StepResult::Refused;
    }
    if (CopyMapFwToCStyleStruct(v.setting.stMapFw, bankMap) == 0) {
        return Refuse("Total bank count exceeds 512!\n");
    }
    return StepResult::Continue;
}

StepResult Switches(Validation &v) {
    v.setting.bCompareVersion = v.args.bCompareVersion;
    v.setting.bIspChannel = v.args.bIspChannel;
    return StepResult::Continue;
}

StepResult ActionArguments(Validation &v) {
    switch (RowOfAction(v.setting.enumActionType).enumReads) {
    case ActionReads::USER_FLAG:
        return ContinueIf(
            ConvertUserFlag(v.args.strFlagAddr, v.args.strFlagData, v.setting.stFlagSetting));
    case ActionReads::DUMP_RANGE:
        return ContinueIf(ConvertDumpRange(v.args, v.setting.stDumpFlash));
    case ActionReads::I2C_BYTES:
        return ContinueIf(ConvertI2CWrite(v.args, v.setting.stI2CWrite));
    case ActionReads::NOTHING:
        break;
    }
    return StepResult::Continue;
}

StepResult SettingFile(Validation &v) {
    SetSettingFileField(v.directories, v.args.strSettingFile, v.setting.wszSettingFile);
    return StepResult::Continue;
}

StepResult Keywords(Validation &v) {
    v.setting.enumEdpIspMode = v.args.ulEdpIspMode;
    v.setting.enumUserDefinedInfoType = v.args.ulUserDefinedInfoType;
    v.setting.enumMergeFWGeneration = v.args.ulMergeFwGeneration;
    v.setting.enumMergeFWInfoType = v.args.ulMergeInfoType;
    v.setting.enumSendExtraCmdMode = v.args.ulSendExtraCmdMode;
    return StepResult::Continue;
}

using Step = StepResult (*)(Validation &);

// The order decides which of several problems is reported.
constexpr Step kSteps[] = {
    Action,         BootCodeAndIspMode, MergeInfo,       SignatureTypeOption,  SignatureMode,
    SignatureTexts, SignatureFiles,     VersionLocation, CommunicationChannel, SlaveAddress,
    BankMap,        Switches,           ActionArguments, SettingFile,          Keywords,
};

} // namespace

// QUIRK Shorter_setting_file_keeps_the_tail_of_the_longer: exactly the characters of a given path are
// stored, without a terminator; after a longer path in the same field its tail remains.
void SetSettingFileField(const ArgsDirectories &directories, std::string &givenFile,
                         PathField &field) {
    const LibraryDirectory &library = directories.stLibrary;
    if (!givenFile.empty()) {
        givenFile = ResolveFile(givenFile, Utf8FromWide(library.strName));
        WideFromUtf8(givenFile).copy(field, SCALER_ISP_PATH_CHARS);
        return;
    }
    const CCpNxString path = DefaultSettingFile(library);
    const bool fits = path.size() < SCALER_ISP_PATH_CHARS;
    field[fits ? path.copy(field, path.size()) : 0] = L'\0';
}

bool ValidateArguments(RawArgs &args, const ArgsDirectories &directories, const FwBankMap &files,
                       CommandRecord &setting, SignRecord &sign) {
    Validation validation{args, directories, files, setting, sign};
    for (const Step step : kSteps) {
        const StepResult verdict = step(validation);
        if (verdict != StepResult::Continue) {
            return verdict == StepResult::Accepted;
        }
    }
    return true;
}
