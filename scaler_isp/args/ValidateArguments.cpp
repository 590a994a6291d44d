#include "scaler_isp/args/CommandFlow.h"

#include <cstdio>
#include <string_view>

#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/sign/SignatureChecks.h"

namespace {

/// The data of all steps: the raw record, and the two records that they fill.
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

/// What a step decides. Accept ends the validation early, because the other steps do not concern
/// the action.
enum class StepResult { Continue, Accept, Reject };

StepResult ContinueIf(bool accepted) {
    return accepted ? StepResult::Continue : StepResult::Reject;
}

StepResult RejectWith(const char *message) {
    std::fputs(message, stdout);
    return StepResult::Reject;
}

StepResult CheckAction(Validation &v) {
    if (v.args.ulActionMask != 0) {
        if (!IsOneBit(v.args.ulActionMask)) {
            return RejectWith("Action type undefined or more than one type!\n");
        }
        v.setting.enumActionType = ActionOfBit(v.args.ulActionMask);
    }
    if (v.args.ulActionMask == 0 || v.setting.enumActionType == ENUM_ACTION_NONE) {
        return RejectWith("Action type undefined or illegal!\n");
    }
    return StepResult::Continue;
}

StepResult StoreBootCodeAndIspMode(Validation &v) {
    v.setting.enumBootCodeType = v.args.ulBootCodeType;
    v.setting.enumIspMode = v.args.ulIspMode;
    return StepResult::Continue;
}

StepResult StoreMergeInfo(Validation &v) {
    if (v.args.ulMergeInfoRwMask == 0) {
        return StepResult::Continue;
    }
    v.setting.enumMergeFWInfoMode = MergeModeOfMask(v.args.ulMergeInfoRwMask);
    return ContinueIf(v.setting.enumMergeFWInfoMode != ENUM_MERGE_INFO_WRITE ||
                      ConvertMergeInfo(v.args.strMergeWriteData, v.setting.stMergeFwInfo));
}

StepResult StoreSignatureType(Validation &v) {
    if (v.args.ulSignTypeMask == 0) {
        v.setting.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
        return StepResult::Continue;
    }
    if (!IsOneBit(v.args.ulSignTypeMask)) {
        return RejectWith("Digital signature type is undefined or more than one type!\n");
    }
    v.setting.enumDigitalSignatureType = SignatureTypeOfBit(v.args.ulSignTypeMask);
    v.sign.enumDigitalSignatureType = v.setting.enumDigitalSignatureType;
    if (v.setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_NONE) {
        return RejectWith("Digital signature type is illegal!\n");
    }
    return StepResult::Continue;
}

StepResult StoreSignatureMode(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const bool accepted =
        v.IsHardware() ? ConvertSignatureMode(v.args.strDsMode, v.sign.enumHWDigitalSignatureMode)
                       : ConvertSignatureMode(v.args.strDsMode, v.sign.enumSWDigitalSignatureMode);
    if (!accepted) {
        return RejectWith("Digital signature mode is illegal!\n");
    }
    v.setting.enumSWDigitalSignatureMode = v.sign.enumSWDigitalSignatureMode;
    return StepResult::Continue;
}

// QUIRK Boot_path_needs_a_signature_type: the boot firmware is stored in the record only if --sw or
// --hw is given.
StepResult CopySignaturePaths(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const bool firmwareNeeded =
        !v.IsHardware() || v.sign.enumHWDigitalSignatureMode != ENUM_SIGN_HW_MODE_1;
    if (v.args.strFwPath.empty() && firmwareNeeded) {
        return RejectWith("Program fw path is undefined!\n");
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
StepResult CheckSignatureFilesOfProgramming(Validation &v) {
    v.sign.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
    if (v.setting.enumIspMode == SCALER_ISP_MODE_FACTORY) {
        return StepResult::Continue;
    }
    if (v.sign.enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT) {
        // QUIRK Mode_4_continues_after_failed_file_check: the message is printed, and the run
        // continues.
        static_cast<void>(CheckFirmwareAndSignature(v.directories.strCurrent, v.sign));
        return StepResult::Continue;
    }
    return ContinueIf(CheckSignatureArguments(v.directories.strCurrent, v.sign));
}

/// A run that only signs or verifies needs no further step.
StepResult CheckSignatureFiles(Validation &v) {
    if (!v.HasSignature()) {
        return StepResult::Continue;
    }
    const ENUM_CP_ISPTOOL_ACTION_TYPE action = v.setting.enumActionType;
    const ActionRow &row = RowOfAction(action);
    if (!row.MayBeSigned()) {
        return RejectWith("Digital signature type should not be defined only when program fw!\n");
    }
    if (row.OnlySigns()) {
        v.sign.enumSignActionType =
            action == ENUM_ACTION_SIGN ? ENUM_SIGN_ACTION_SIGN : ENUM_SIGN_ACTION_VERIFY;
        return CheckSignatureArguments(v.directories.strCurrent, v.sign) ? StepResult::Accept
                                                                         : StepResult::Reject;
    }
    return v.IsHardware() ? StepResult::Continue : CheckSignatureFilesOfProgramming(v);
}

StepResult StoreVersionLocation(Validation &v) {
    if (v.args.ulVerLocMask == 0) {
        v.setting.enumVersionLocationType = ENUM_VER_LOC_NONE;
        return StepResult::Continue;
    }
    if (!IsOneBit(v.args.ulVerLocMask)) {
        return RejectWith("Get version location type undefined or more than one type!\n");
    }
    if (!ConvertVersionLocation(v.args.ulVerLocMask, v.args.strUserDefinedVerMode,
                                v.setting.enumVersionLocationType,
                                v.setting.enumUserDefinedVersionType)) {
        return RejectWith("Get version type fail\n");
    }
    if (v.setting.enumVersionLocationType == ENUM_VER_LOC_FLASH &&
        !ConvertFlashVersion(v.args, v.setting.stReadVersionFromFlash)) {
        return RejectWith("Version location type flash setting is illegal\n");
    }
    if (v.setting.enumVersionLocationType == ENUM_VER_LOC_NONE) {
        return RejectWith("Version location type is illegal!\n");
    }
    return StepResult::Continue;
}

StepResult StoreCommunicationChannel(Validation &v) {
    return ContinueIf(ConvertCommId(v.args.strComm, v.setting.enumCommID));
}

StepResult StoreSlaveAddress(Validation &v) {
    return ContinueIf(ConvertSlaveAddress(v.args.strSlave, v.setting.nSlaveAddressState,
                                          v.setting.ucSlaveAddress));
}

StepResult BuildBankMap(Validation &v) {
    v.setting.bAutoSearchFW = v.args.bSearchFw;
    FwBankMap bankMap;
    if (!ExpandFirmwareFiles(v.files, v.setting, v.directories.strCurrent, bankMap)) {
        return StepResult::Reject;
    }
    if (CopyMapFwToCStyleStruct(v.setting.stMapFw, bankMap) == 0) {
        return RejectWith("Total bank count exceeds 512!\n");
    }
    return StepResult::Continue;
}

StepResult StoreFlagOptions(Validation &v) {
    v.setting.bCompareVersion = v.args.bCompareVersion;
    v.setting.bIspChannel = v.args.bIspChannel;
    return StepResult::Continue;
}

StepResult ConvertActionArguments(Validation &v) {
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

StepResult StoreSettingFile(Validation &v) {
    SetSettingFileField(v.directories, v.args.strSettingFile, v.setting.wszSettingFile);
    return StepResult::Continue;
}

StepResult StoreKeywordOptions(Validation &v) {
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
    CheckAction,
    StoreBootCodeAndIspMode,
    StoreMergeInfo,
    StoreSignatureType,
    StoreSignatureMode,
    CopySignaturePaths,
    CheckSignatureFiles,
    StoreVersionLocation,
    StoreCommunicationChannel,
    StoreSlaveAddress,
    BuildBankMap,
    StoreFlagOptions,
    ConvertActionArguments,
    StoreSettingFile,
    StoreKeywordOptions,
};

} // namespace

// QUIRK Shorter_settings_path_keeps_tail_of_longer_one: only the characters of a given path are
// stored, without a terminator, so the tail of a longer path in the same field remains.
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
        const StepResult result = step(validation);
        if (result != StepResult::Continue) {
            return result == StepResult::Accept;
        }
    }
    return true;
}
