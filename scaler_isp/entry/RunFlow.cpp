#include "scaler_isp/entry/RunFlow.h"

#include <cstdio>
#include <memory>
#include <new>
#include <string>

#include "scaler_isp/abi/RecordGaps.h"
#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/LibraryAnchor.h"
#include "scaler_isp/common/Paths.h"
#include "scaler_isp/entry/Globals.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr unsigned int kBootEntry = 0;
// The plug-in knows no size for the key; room behind the promised bytes keeps a longer one
// harmless.
constexpr std::size_t kKeyRoomBytes = 4096;
static_assert(kKeyRoomBytes > SCALER_ISP_FLASH_KEY_BYTES);

template <int (CCpIsp::*Wrapper)(Command *)> int Call(CCpIsp &isp, Command *setting) {
    return (isp.*Wrapper)(setting);
}

int CallMergeFwInfo(CCpIsp &isp, Command *setting) {
    switch (setting->enumMergeFWInfoMode) {
    case ENUM_MERGE_INFO_WRITE:
        return isp.SetMergeFwInfo(setting);
    case ENUM_MERGE_INFO_READ:
        return isp.GetMergeFwInfo(setting, nullptr);
    default:
        return SCALER_ISP_SUCCESS;
    }
}

/// One row an action: the call that carries it out. An action without a row ends with success.
struct DispatchRow {
    ENUM_CP_ISPTOOL_ACTION_TYPE enumAction;
    int (*pfnCall)(CCpIsp &, Command *);
};

constexpr DispatchRow kDispatch[] = {
    {ENUM_ACTION_ISP, Call<&CCpIsp::IspFlash>},
    {ENUM_ACTION_ISPUSER, Call<&CCpIsp::IspFlash>},
    {ENUM_ACTION_ISPDIFF, Call<&CCpIsp::IspFlash>},
    {ENUM_ACTION_ISPCOPY, Call<&CCpIsp::IspFlash>},
    {ENUM_ACTION_FACTORYISP, Call<&CCpIsp::IspFlash>},
    {ENUM_ACTION_RECORDVER, Call<&CCpIsp::RecordFWVersion>},
    {ENUM_ACTION_GETSTATUS, Call<&CCpIsp::GetFWInfo>},
    {ENUM_ACTION_DUMPFLASH, Call<&CCpIsp::DumpFlash>},
    {ENUM_ACTION_USERDEFINEDINFO, Call<&CCpIsp::GetUserDefinedInfoFromDDCCI>},
    {ENUM_ACTION_ERASE, Call<&CCpIsp::ChipEraseFlash>},
    {ENUM_ACTION_EDPISP, Call<&CCpIsp::IspEeprom>},
    {ENUM_ACTION_ENTERISPMODE, Call<&CCpIsp::EnterISPModeExport>},
    {ENUM_ACTION_RESETMCU, Call<&CCpIsp::ResetMCUExport>},
    {ENUM_ACTION_MERGEFWINFO, CallMergeFwInfo},
    {ENUM_ACTION_SENDUSERDEFINEDINFO, Call<&CCpIsp::SendUserDefinedInfo>},
    {ENUM_ACTION_I2CWRITE, Call<&CCpIsp::I2CWriteExport>},
    {ENUM_ACTION_GETSCALERTYPE, Call<&CCpIsp::GetScalerType>},
};

/// One run: the records it works on and the plug-ins it has loaded. Every step returns a result
/// code; anything but success ends the run.
class Run {
  public:
    Run(Command &setting, SignArgs &signArgs, const CCpNxString &ispPath,
        const CCpNxString &signVerifyName, void *device)
        : m_setting(setting), m_signArgs(signArgs),
          m_folder(GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL)), m_ispPath(m_folder + ispPath),
          m_signVerifyPath(m_folder + signVerifyName), m_device(device) {}

    int Execute() {
        switch (m_setting.enumActionType) {
        case ENUM_ACTION_VERIFY:
            return Verify();
        case ENUM_ACTION_SIGN:
            return Sign();
        default:
            return Operate();
        }
    }

  private:
    int LoadSignVerify() {
        return LoadSignVerfiyDll(m_signVerify, m_folder, m_signVerifyPath);
    }

    int Verify() {
        const int result = LoadSignVerify();
        return result != SCALER_ISP_SUCCESS ? result
                                            : m_signVerify.VerifySignature(&m_signArgs, nullptr);
    }

    int Sign() {
        const int result = LoadSignVerify();
        return result != SCALER_ISP_SUCCESS ? result : m_signVerify.SignFw(&m_signArgs);
    }

    int Operate() {
        if (m_isp.LoadIspDllFile(m_ispPath.GetBuffer()) == 0) {
            return SCALER_ISP_PLUGIN_NOT_LOADED;
        }
        m_isp.SetIDev(m_device);
        m_isp.SetUIFunction(g_funcReturnProg, g_funcShowMsg, g_funcNxGetHubDev);
        int result = CheckSignature();
        if (result == SCALER_ISP_SUCCESS) {
            result = ProgramBootFirmware();
        }
        if (result != SCALER_ISP_SUCCESS) {
            return result; // the plug-in stays loaded
        }
        result = Dispatch();
        m_isp.FreeIspDllFile();
        return result;
    }

    /// A software signature is verified before anything is programmed.
    int CheckSignature() {
        if (m_setting.enumIspMode != SCALER_ISP_MODE_NORMAL ||
            m_setting.enumDigitalSignatureType != ENUM_SIGN_TYPE_SW) {
            return SCALER_ISP_SUCCESS;
        }
        int result = LoadSignVerify();
        if (result == SCALER_ISP_SUCCESS) {
            result = m_signArgs.enumSWDigitalSignatureMode == ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT
                         ? VerifyWithKeyFromFlash()
                         : m_signVerify.VerifySignature(&m_signArgs, nullptr);
        }
        return result != SCALER_ISP_SUCCESS ? result : UseHubDevice();
    }

    int VerifyWithKeyFromFlash() {
        std::string key(kKeyRoomBytes, '\0');
        std::unique_ptr<Command> copy(new (std::nothrow) Command(m_setting));
        if (copy == nullptr) {
            return SCALER_ISP_NO_WORKING_COPY;
        }
        copy->ClearMapFW();
        std::printf("Get Key From Flash ...\n");
        const int result =
            m_isp.GetKeyFromFlash(copy.get(), reinterpret_cast<unsigned char *>(key.data()));
        copy.reset();
        return result != SCALER_ISP_SUCCESS ? result
                                            : m_signVerify.VerifySignature(&m_signArgs, key.data());
    }

    /// In factory mode with new boot code the boot firmware goes to bank 0 first.
    int ProgramBootFirmware() {
        if (m_setting.enumBootCodeType != SCALER_ISP_NEW_BOOT_CODE ||
            m_setting.enumIspMode != SCALER_ISP_MODE_FACTORY || m_setting.szBootFwPath[0] == '\0') {
            return SCALER_ISP_SUCCESS;
        }
        const std::unique_ptr<CCpIspArgsParse> parser(new (std::nothrow) CCpIspArgsParse);
        const std::unique_ptr<Command> boot(new (std::nothrow) Command);
        if (parser == nullptr || boot == nullptr) {
            return SCALER_ISP_NO_WORKING_COPY;
        }
        ClearGaps(*boot);
        boot->enumActionType = ENUM_ACTION_ISP;
        if (MapBootFirmware(*parser, *boot) == 0) {
            return SCALER_ISP_BOOT_MAP_TOO_LARGE;
        }
        const int result = m_isp.IspFlash(boot.get());
        return result != SCALER_ISP_SUCCESS ? result : UseHubDevice();
    }

    // KEPT Missing_boot_file_reaches_the_plugin_as_an_empty_map: a boot firmware that cannot be
    // read is reported, and the plug-in is called with no banks.
    int MapBootFirmware(CCpIspArgsParse &parser, Command &boot) {
        const std::string path = ReadBounded(m_setting.szBootFwPath);
        parser.SetISPCmdSetting(boot);
        parser.SetCurrentDir(m_folder.GetStringBufferBaseOnOS());
        parser.InsertCommandFwFile(kBootEntry, path.c_str());
        FwBankMap bankMap;
        parser.JudgeFwMap(bankMap);
        return CopyMapFwToCStyleStruct(boot.stMapFw, bankMap);
    }

    int Dispatch() {
        for (const DispatchRow &row : kDispatch) {
            if (row.enumAction == m_setting.enumActionType) {
                return row.pfnCall(m_isp, &m_setting);
            }
        }
        return SCALER_ISP_SUCCESS;
    }

    /// A device behind a hub has another handle after the chip was touched. With OperateScaler
    /// there is neither a handle nor a callback, so nothing happens.
    int UseHubDevice() {
        if (m_setting.enumCommID != COMM_ID_HUB || g_funcNxGetHubDev == nullptr ||
            m_device == nullptr) {
            return SCALER_ISP_SUCCESS;
        }
        m_device = g_funcNxGetHubDev();
        if (m_device == nullptr) {
            return SCALER_ISP_NO_HUB_DEVICE;
        }
        m_isp.SetIDev(m_device);
        return SCALER_ISP_SUCCESS;
    }

    Command &m_setting;
    SignArgs &m_signArgs;
    CCpNxString m_folder;
    CCpNxString m_ispPath;
    CCpNxString m_signVerifyPath;
    void *m_device;
    CCpIsp m_isp;
    CCpSignVerify m_signVerify;
};

} // namespace

int ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                   STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, CCpNxString &ispPath,
                   CCpNxString &signVerifyName, void *device) {
    if (setting == nullptr || signArgs == nullptr) {
        return SCALER_ISP_NO_WORKING_COPY;
    }
    return Run(*setting, *signArgs, ispPath, signVerifyName, device).Execute();
}

int DoIsp(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
          STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, void *device) {
    CCpNxString ispPath = STR_ISP_DLL_PATH;
    CCpNxString signVerifyName = STR_SIGN_VERIFY_DLL;
    const int result = ExecuteProcess(setting, signArgs, ispPath, signVerifyName, device);
    // KEPT Colour_is_reset_behind_the_line_end: the reset follows the line feed.
    if (result != SCALER_ISP_SUCCESS) {
        std::printf("\x1b[31mFail! Error Code: 0x%X\n\x1b[m", static_cast<unsigned>(result));
    } else if (setting->enumActionType != ENUM_ACTION_USERDEFINEDINFO) {
        std::printf("\x1b[32mSuccess\n\x1b[m");
    }
    return result;
}
