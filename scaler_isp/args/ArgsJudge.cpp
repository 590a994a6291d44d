#include <cstdio>
#include <string_view>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/ProgrammingActions.h"
#include "scaler_isp/args/SettingFilePath.h"
#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/sign/CCpDigitalSignArgsHandle.h"

namespace {

/// How the judgement goes on after a step.
enum class Verdict { GoOn, Accepted, Refused };

Verdict GoOnIf(bool accepted) {
    return accepted ? Verdict::GoOn : Verdict::Refused;
}

Verdict Refuse(const char *message) {
    std::fputs(message, stdout);
    return Verdict::Refused;
}

/// Actions that a digital signature may go with.
bool MayBeSigned(ENUM_CP_ISPTOOL_ACTION_TYPE action) {
    return action == ENUM_ACTION_VERIFY || action == ENUM_ACTION_SIGN || ProgramsFirmware(action);
}

} // namespace

/// The steps that turn a raw record into the two records, in the order of kSteps.
class ArgumentJudge {
  public:
    ArgumentJudge(CCpIspArgsParse &parser, STRUCT_CP_ISP_CMD_ARGS &args)
        : m_parser(parser), m_args(args), m_setting(parser.m_stSetting),
          m_sign(parser.m_stDigitalSignArgs) {}

    int Run();

  private:
    using Step = Verdict (ArgumentJudge::*)();
    static const Step kSteps[];

    static int Mask(std::uint32_t mask) {
        return static_cast<int>(mask);
    }

    Verdict Action() {
        if (m_args.ulActionMask != 0) {
            if (m_parser.JudgeUniqueAttribute(Mask(m_args.ulActionMask)) == 0) {
                return Refuse("Action type undefined or more than one type!\n");
            }
            m_parser.GetActionType(Mask(m_args.ulActionMask), m_setting.enumActionType);
        }
        if (m_args.ulActionMask == 0 || m_setting.enumActionType == ENUM_ACTION_NONE) {
            return Refuse("Action type undefined or illegal!\n");
        }
        return Verdict::GoOn;
    }

    Verdict BootCodeAndIspMode() {
        m_setting.enumBootCodeType = m_args.ulBootCodeType;
        m_setting.enumIspMode = m_args.ulIspMode;
        return Verdict::GoOn;
    }

    Verdict MergeInfo() {
        if (m_args.ulMergeInfoRwMask == 0) {
            return Verdict::GoOn;
        }
        m_parser.GetMergeFwInfoMode(Mask(m_args.ulMergeInfoRwMask), m_setting.enumMergeFWInfoMode);
        return GoOnIf(
            m_setting.enumMergeFWInfoMode != ENUM_MERGE_INFO_WRITE ||
            m_parser.GetMergeFwInfoCmd(m_args.strMergeWriteData, m_setting.stMergeFwInfo) != 0);
    }

    Verdict SignatureType() {
        if (m_args.ulSignTypeMask == 0) {
            m_setting.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
            return Verdict::GoOn;
        }
        if (m_parser.JudgeUniqueAttribute(Mask(m_args.ulSignTypeMask)) == 0) {
            return Refuse("Digital signature type is undefined or more than one type!\n");
        }
        m_parser.GetDigitalSignatureType(Mask(m_args.ulSignTypeMask),
                                         m_setting.enumDigitalSignatureType);
        m_sign.enumDigitalSignatureType = m_setting.enumDigitalSignatureType;
        if (m_setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_NONE) {
            return Refuse("Digital signature type is illegal!\n");
        }
        return Verdict::GoOn;
    }

    Verdict SignatureMode() {
        if (!HasSignature()) {
            return Verdict::GoOn;
        }
        const int accepted =
            IsHardware() ? m_parser.GetDigitalSignatureHwMode(m_args.strDsMode,
                                                              m_sign.enumHWDigitalSignatureMode)
                         : m_parser.GetDigitalSignatureSwMode(m_args.strDsMode,
                                                              m_sign.enumSWDigitalSignatureMode);
        if (accepted == 0) {
            return Refuse("Digital signature mode is illegal!\n");
        }
        m_setting.enumSWDigitalSignatureMode = m_sign.enumSWDigitalSignatureMode;
        return Verdict::GoOn;
    }

    // KEPT Boot_path_needs_a_signature_type: the boot firmware reaches the record only
    // together with --sw or --hw.
    Verdict SignatureTexts() {
        if (!HasSignature()) {
            return Verdict::GoOn;
        }
        const bool firmwareNeeded =
            !IsHardware() || m_sign.enumHWDigitalSignatureMode != ENUM_SIGN_HW_MODE_1;
        if (m_args.strFwPath.empty() && firmwareNeeded) {
            return Refuse("Program fw path is undefined!\n");
        }
        CopyBounded(m_setting.szBootFwPath, std::string_view(m_args.strBootFwPath));
        CopyBounded(m_sign.szFwFile, std::string_view(m_args.strFwPath));
        CopyBounded(m_sign.szSignatureFile, std::string_view(m_args.strSignFile));
        CopyBounded(m_sign.szKeyPair, std::string_view(m_args.strKeyPair));
        CopyBounded(m_sign.szVerifyKeyFile, std::string_view(m_args.strVkFile));
        CopyBounded(m_sign.szSignKeyFile, std::string_view(m_args.strSkFile));
        CopyBounded(m_sign.szSubCertFile, std::string_view(m_args.strSubCert));
        CopyBounded(m_sign.szNextVerifyKeyFile, std::string_view(m_args.strNextVkFile));
        return Verdict::GoOn;
    }

    /// Checks the signature files. A run that only signs or verifies ends here.
    Verdict SignatureFiles() {
        if (!HasSignature()) {
            return Verdict::GoOn;
        }
        if (!MayBeSigned(m_setting.enumActionType)) {
            return Refuse("Digital signature type should not be defined only when program fw!\n");
        }
        CCpDigitalSignArgsHandle checker;
        checker.SetCurrentDir(m_parser.GetCurrentDir());
        if (m_setting.enumActionType == ENUM_ACTION_SIGN) {
            m_sign.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
            return checker.JudgeArgument(&m_sign) != 0 ? Verdict::Accepted : Verdict::Refused;
        }
        if (m_setting.enumActionType == ENUM_ACTION_VERIFY) {
            m_sign.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
            return checker.JudgeArgument(&m_sign) != 0 ? Verdict::Accepted : Verdict::Refused;
        }
        if (IsHardware()) {
            return Verdict::GoOn;
        }
        m_sign.enumSignActionType = ENUM_SIGN_ACTION_VERIFY; // the programmed file is verified
        if (m_setting.enumIspMode == SCALER_ISP_MODE_FACTORY) {
            return Verdict::GoOn;
        }
        if (m_sign.enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT) {
            // KEPT Mode_4_goes_on_after_a_failed_file_check: the message is printed, and the
            // run goes on.
            static_cast<void>(checker.JudgeArgumentFwFileAndSigFile(&m_sign));
            return Verdict::GoOn;
        }
        return GoOnIf(checker.JudgeArgument(&m_sign) != 0);
    }

    Verdict VersionLocation() {
        if (m_args.ulVerLocMask == 0) {
            m_setting.enumVersionLocationType = ENUM_VER_LOC_NONE;
            return Verdict::GoOn;
        }
        if (m_parser.JudgeUniqueAttribute(Mask(m_args.ulVerLocMask)) == 0) {
            return Refuse("Get version location type undefined or more than one type!\n");
        }
        if (m_parser.GetVersionType(Mask(m_args.ulVerLocMask), m_setting.enumVersionLocationType,
                                    m_setting.enumUserDefinedVersionType,
                                    m_args.strUserDefinedVerMode) == 0) {
            return Refuse("Get version type fail\n");
        }
        if (m_setting.enumVersionLocationType == ENUM_VER_LOC_FLASH &&
            m_parser.GetReadVersionFromFlashSetting(m_args, m_setting.stReadVersionFromFlash) ==
                0) {
            return Refuse("Version location type flash setting is illegal\n");
        }
        if (m_setting.enumVersionLocationType == ENUM_VER_LOC_NONE) {
            return Refuse("Version location type is illegal!\n");
        }
        return Verdict::GoOn;
    }

    Verdict CommunicationChannel() {
        return GoOnIf(m_parser.GetCommID(m_args.strComm, m_setting.enumCommID) != 0);
    }

    Verdict SlaveAddress() {
        return GoOnIf(m_parser.GetSlaveAddress(m_args.strSlave, m_setting.nSlaveAddressState,
                                               m_setting.ucSlaveAddress) != 0);
    }

    Verdict BankMap() {
        m_setting.bAutoSearchFW = m_args.bSearchFw;
        FwBankMap bankMap;
        if (m_parser.JudgeFwMap(bankMap) == 0) {
            return Verdict::Refused;
        }
        if (CopyMapFwToCStyleStruct(m_setting.stMapFw, bankMap) == 0) {
            return Refuse("Total bank count exceeds 512!\n");
        }
        return Verdict::GoOn;
    }

    Verdict Switches() {
        m_setting.bCompareVersion = m_args.bCompareVersion;
        m_setting.bIspChannel = m_args.bIspChannel;
        return Verdict::GoOn;
    }

    Verdict ActionArguments() {
        switch (m_setting.enumActionType) {
        case ENUM_ACTION_ISPUSER:
            return GoOnIf(m_parser.GetUserFlag(m_args.strFlagAddr, m_args.strFlagData,
                                               m_setting.stFlagSetting) != 0);
        case ENUM_ACTION_DUMPFLASH:
            return GoOnIf(m_parser.GetDumpFlashCmd(m_args, m_setting.stDumpFlash) != 0);
        case ENUM_ACTION_I2CWRITE:
            return GoOnIf(m_parser.GetI2CWriteActionTypeSetting(m_args, m_setting.stI2CWrite) != 0);
        default:
            return Verdict::GoOn;
        }
    }

    Verdict SettingFile() {
        if (m_args.strSettingFile.empty()) {
            GetDefaultSettingFilePathName(m_setting.wszSettingFile, SCALER_ISP_PATH_CHARS);
        } else {
            StoreSettingFile(m_args.strSettingFile, m_setting.wszSettingFile);
        }
        return Verdict::GoOn;
    }

    Verdict Words() {
        m_setting.enumEdpIspMode = m_args.ulEdpIspMode;
        m_setting.enumUserDefinedInfoType = m_args.ulUserDefinedInfoType;
        m_setting.enumMergeFWGeneration = m_args.ulMergeFwGeneration;
        m_setting.enumMergeFWInfoType = m_args.ulMergeInfoType;
        m_setting.enumSendExtraCmdMode = m_args.ulSendExtraCmdMode;
        return Verdict::GoOn;
    }

    bool HasSignature() const {
        return m_setting.enumDigitalSignatureType != ENUM_SIGN_TYPE_NONE;
    }

    bool IsHardware() const {
        return m_setting.enumDigitalSignatureType == ENUM_SIGN_TYPE_HW;
    }

    CCpIspArgsParse &m_parser;
    STRUCT_CP_ISP_CMD_ARGS &m_args;
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &m_setting;
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &m_sign;
};

// The order decides which of several problems is reported.
const ArgumentJudge::Step ArgumentJudge::kSteps[] = {
    &ArgumentJudge::Action,
    &ArgumentJudge::BootCodeAndIspMode,
    &ArgumentJudge::MergeInfo,
    &ArgumentJudge::SignatureType,
    &ArgumentJudge::SignatureMode,
    &ArgumentJudge::SignatureTexts,
    &ArgumentJudge::SignatureFiles,
    &ArgumentJudge::VersionLocation,
    &ArgumentJudge::CommunicationChannel,
    &ArgumentJudge::SlaveAddress,
    &ArgumentJudge::BankMap,
    &ArgumentJudge::Switches,
    &ArgumentJudge::ActionArguments,
    &ArgumentJudge::SettingFile,
    &ArgumentJudge::Words,
};

int ArgumentJudge::Run() {
    for (const Step step : kSteps) {
        const Verdict verdict = (this->*step)();
        if (verdict != Verdict::GoOn) {
            return verdict == Verdict::Accepted ? 1 : 0;
        }
    }
    return 1;
}

int CCpIspArgsParse::JudgeArgument(STRUCT_CP_ISP_CMD_ARGS &args) {
    return ResultOrOnThrow(0, [&] { return ArgumentJudge(*this, args).Run(); });
}
