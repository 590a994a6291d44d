#include "scaler_isp/entry/RunFlow.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "scaler_isp/abi/NewRecord.h"
#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"
#include "scaler_isp/args/CommandFlow.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/LibraryDirectory.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/entry/Globals.h"
#include "scaler_isp/entry/RunReport.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr unsigned int kBootEntry = 0;
// The plug-in is not told the size of the buffer; the spare bytes make a longer key harmless.
constexpr std::size_t kKeyBufferBytes = 4096;
static_assert(kKeyBufferBytes > SCALER_ISP_FLASH_KEY_BYTES);

template <int (CCpIsp::*Wrapper)(Command *)> int CallIsp(CCpIsp &isp, Command *setting) {
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

int CallSignVerify(int (CCpSignVerify::*wrapper)(const SignArgs *), CCpSignVerify &plugin,
                   SignArgs *args) {
    return (plugin.*wrapper)(args);
}

/// Passes no key from the flash.
int CallSignVerify(int (CCpSignVerify::*wrapper)(const SignArgs *, char *), CCpSignVerify &plugin,
                   SignArgs *args) {
    return (plugin.*wrapper)(args, nullptr);
}

template <auto Wrapper> int CallSignVerify(CCpSignVerify &plugin, SignArgs *args) {
    return CallSignVerify(Wrapper, plugin, args);
}

/// The function that runs an action, of one plug-in or the other; both null for none.
struct ActionCall {
    ENUM_CP_ISPTOOL_ACTION_TYPE enumAction = ENUM_ACTION_NONE;
    int (*pfnIsp)(CCpIsp &, Command *) = nullptr;
    int (*pfnSignVerify)(CCpSignVerify &, SignArgs *) = nullptr;
};

// The column CALL of actions.def. NO_CALL is not an error: six actions (srstatus to writesafeguard)
// have no plug-in function, and hosts expect success from them. NEVER_RESOLVED calls the wrapper,
// which returns 6 because the function is never looked up.
#define CALL(FUNCTION) CallIsp<&CCpIsp::FUNCTION>, nullptr
#define NEVER_RESOLVED(FUNCTION) CallIsp<&CCpIsp::FUNCTION>, nullptr
#define MERGE_INFO CallMergeFwInfo, nullptr
#define SIGN_VERIFY(FUNCTION) nullptr, CallSignVerify<&CCpSignVerify::FUNCTION>
#define NO_CALL nullptr, nullptr
constexpr ActionCall kActionCalls[] = {
#define SCALER_ISP_ACTION(NAME, BIT, ENUMERATOR, FILES, READS, ACTION_CALL, ...)                   \
    {ENUMERATOR, ACTION_CALL},
#include "scaler_isp/args/actions.def"
};
#undef CALL
#undef NEVER_RESOLVED
#undef MERGE_INFO
#undef SIGN_VERIFY
#undef NO_CALL

/// The call of an action. Hosts may store any number in a record; one without a row calls neither
/// plug-in.
ActionCall CallOfAction(ENUM_CP_ISPTOOL_ACTION_TYPE action) {
    const auto *call = std::find_if(std::begin(kActionCalls), std::end(kActionCalls),
                                    [=](const ActionCall &c) { return c.enumAction == action; });
    return call != std::end(kActionCalls) ? *call : ActionCall();
}

/// The plug-ins' paths relative to the library's directory.
struct PluginNames {
    const wchar_t *pszIspPath;
    const wchar_t *pszSignVerifyName;
};

/// One run: its records and the plug-ins it has loaded. Every step returns a result code; anything
/// but success ends the run. If the system fails in a step, the step catches the exception and
/// returns its own code, so that only exceptions of plug-ins and callbacks leave a run.
class Run {
  public:
    Run(Command &setting, SignArgs &signArgs, const LibraryDirectory &directory,
        const PluginNames &plugins, void *device)
        : m_setting(setting), m_signArgs(signArgs), m_directory(directory), m_plugins(plugins),
          m_device(device) {}

    int Execute() {
        const ActionCall call = CallOfAction(m_setting.enumActionType);
        return call.pfnSignVerify != nullptr ? SignOrVerify(call) : RunIspAction(call);
    }

  private:
    /// The path of a plug-in. If the library's directory is unknown it is empty, which never loads:
    /// a relative path would load a foreign plug-in from the working directory.
    std::string PluginPath(const wchar_t *name) const {
        return m_directory.IsKnown() ? m_directory.strBytes + EnvironmentTextFromWide(name)
                                     : std::string();
    }

    bool LoadIsp() {
        return CatchAll(false, [&] { return m_isp.Load(PluginPath(m_plugins.pszIspPath)); });
    }

    int LoadSignVerify() {
        const bool loaded = CatchAll(
            false, [&] { return m_signVerify.Load(PluginPath(m_plugins.pszSignVerifyName)); });
        return loaded ? SCALER_ISP_SUCCESS : SCALER_ISP_SIGN_PLUGIN_MISSING;
    }

    int SignOrVerify(const ActionCall &call) {
        const int result = LoadSignVerify();
        return result != SCALER_ISP_SUCCESS ? result
                                            : call.pfnSignVerify(m_signVerify, &m_signArgs);
    }

    int RunIspAction(const ActionCall &call) {
        if (!LoadIsp()) {
            return SCALER_ISP_PLUGIN_NOT_LOADED;
        }
        m_isp.SetIDev(m_device);
        m_isp.SetUIFunction(g_funcReturnProg, g_funcShowMsg, g_funcNxGetHubDev);
        int result = CheckSignature();
        if (result == SCALER_ISP_SUCCESS) {
            result = ProgramBootFirmware();
        }
        if (result != SCALER_ISP_SUCCESS) {
            return result; // the plug-in stays loaded, see the quirk in the header
        }
        if (call.pfnIsp != nullptr) {
            result = call.pfnIsp(m_isp, &m_setting);
        }
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
        return result != SCALER_ISP_SUCCESS ? result : RefreshHubDevice();
    }

    int VerifyWithKeyFromFlash() {
        const std::unique_ptr<unsigned char[]> key(
            new (std::nothrow) unsigned char[kKeyBufferBytes]());
        std::unique_ptr<Command> copy(new (std::nothrow) Command(m_setting));
        if (key == nullptr || copy == nullptr) {
            return SCALER_ISP_NO_WORKING_COPY;
        }
        copy->ClearMapFW();
        std::printf("Get Key From Flash ...\n");
        const int result = m_isp.GetKeyFromFlash(copy.get(), key.get());
        copy.reset();
        return result != SCALER_ISP_SUCCESS
                   ? result
                   : m_signVerify.VerifySignature(&m_signArgs, reinterpret_cast<char *>(key.get()));
    }

    /// In factory mode with new boot code, the boot firmware is programmed first, starting at bank
    /// 0.
    int ProgramBootFirmware() {
        if (m_setting.enumBootCodeType != SCALER_ISP_NEW_BOOT_CODE ||
            m_setting.enumIspMode != SCALER_ISP_MODE_FACTORY || m_setting.szBootFwPath[0] == '\0') {
            return SCALER_ISP_SUCCESS;
        }
        const ZeroedPointer<Command> boot = NewCommandRecord();
        if (boot == nullptr) {
            return SCALER_ISP_NO_WORKING_COPY;
        }
        boot->enumActionType = ENUM_ACTION_ISP;
        int result = CatchAll(static_cast<int>(SCALER_ISP_NO_WORKING_COPY),
                              [&] { return MapBootFirmware(*boot); });
        if (result == SCALER_ISP_SUCCESS) {
            result = m_isp.IspFlash(boot.get());
        }
        return result != SCALER_ISP_SUCCESS ? result : RefreshHubDevice();
    }

    // QUIRK Missing_boot_file_gives_plugin_empty_map: a boot firmware that cannot be
    // read is reported, and the plug-in is called with an empty bank map.
    int MapBootFirmware(Command &boot) const {
        FwBankMap files;
        FwBankMap bankMap;
        if (AddFirmwareFile(files, kBootEntry, ReadBounded(m_setting.szBootFwPath))) {
            static_cast<void>(
                ExpandFirmwareFiles(files, boot, Utf8FromWide(m_directory.strName), bankMap));
        }
        return CopyMapFwToCStyleStruct(boot.stMapFw, bankMap) != 0 ? SCALER_ISP_SUCCESS
                                                                   : SCALER_ISP_BOOT_MAP_TOO_LARGE;
    }

    /// A device behind a hub gets another handle when the chip has been accessed. Does nothing with
    /// OperateScaler, which passes no handle.
    int RefreshHubDevice() {
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
    const LibraryDirectory &m_directory;
    const PluginNames &m_plugins;
    void *m_device;
    CCpIsp m_isp;
    CCpSignVerify m_signVerify;
};

int Execute(Command *setting, SignArgs *signArgs, const LibraryDirectory &directory,
            const PluginNames &plugins, void *device) {
    if (setting == nullptr || signArgs == nullptr) {
        return SCALER_ISP_NO_WORKING_COPY;
    }
    return Run(*setting, *signArgs, directory, plugins, device).Execute();
}

/// Unknown if the search fails for any reason, so that the run ends with the code of a plug-in that
/// cannot be loaded.
LibraryDirectory DirectoryOrUnknown() {
    return CatchAll(LibraryDirectory(), [] { return FindLibraryDirectory(); });
}

} // namespace

int ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                   STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, CCpNxString &ispPath,
                   CCpNxString &signVerifyName, void *device) {
    return Execute(setting, signArgs, DirectoryOrUnknown(),
                   {ispPath.c_str(), signVerifyName.c_str()}, device);
}

int DoIsp(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
          STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, void *device) {
    return RunAndReport(setting, signArgs, DirectoryOrUnknown(), device);
}

int RunAndReport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting,
                 STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *signArgs, const LibraryDirectory &directory,
                 void *device) {
    const int result =
        Execute(setting, signArgs, directory, {STR_ISP_DLL_PATH, STR_SIGN_VERIFY_DLL}, device);
    // QUIRK Colour_is_reset_after_newline: the escape sequence that resets the colour follows
    // the newline.
    if (result != SCALER_ISP_SUCCESS) {
        std::printf("\x1b[31mFail! Error Code: 0x%X\n\x1b[m", static_cast<unsigned>(result));
    } else if (setting->enumActionType != ENUM_ACTION_USERDEFINEDINFO) {
        std::printf("\x1b[32mSuccess\n\x1b[m");
    }
    return result;
}
