#ifndef SCALER_ISP_PLUGINS_CCP_ISP_H
#define SCALER_ISP_PLUGINS_CCP_ISP_H

#include <string>

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/Export.h"

class CNxComm;

/// Owns the handle of the ISP plug-in and wraps its functions, which isp_functions.def lists.
///
/// A wrapper passes its arguments unchanged and returns the plug-in's result. Without a function it
/// calls nothing: wrappers with a result code return 6, SetIDev returns 0, the others do nothing.
// QUIRK Functions_never_looked_up_return_6: GetFWInfo, SendUserDefinedInfo, ChipEraseFlash,
// GetMergeFwInfo, SetMergeFwInfo, I2CWriteExport and BankEraseFlash always return 6, and SetIDev 0,
// even if the plug-in exports them.
class SCALER_ISP_API CCpIsp {
  public:
    CCpIsp();
    // QUIRK Destructor_leaves_the_plugin_loaded: the destructor does not unload the plug-in; call
    // FreeIspDllFile first.
    virtual ~CCpIsp();
    CCpIsp(const CCpIsp &) = delete;
    CCpIsp &operator=(const CCpIsp &) = delete;

    /// Resets the handle and all function pointers to null without closing anything.
    void Init();

    /// Frees the current plug-in, then opens the one at `path` and looks up its functions.
    /// PRINTS "dlopen - %sn" with the loader's message if it cannot be opened; nothing if a
    /// required function is missing. RETURNS 1 if loaded; otherwise 0, and nothing stays open.
    // QUIRK Open_failure_message_ends_in_the_letter_n: the message ends with the letter n instead
    // of a newline.
    int LoadIspDllFile(wchar_t *path);

    /// The same with a path in the system's form, for the library itself.
    SCALER_ISP_INTERNAL bool Load(const std::string &path);

    /// Closes the plug-in and resets its function pointers; does nothing if none is loaded.
    void FreeIspDllFile();

#define SCALER_ISP_STATUS_FUNCTION(NAME, PARAMETERS, ARGUMENTS) int NAME PARAMETERS;
#define SCALER_ISP_VOID_FUNCTION(NAME, PARAMETERS, ARGUMENTS) void NAME PARAMETERS;
#define SCALER_ISP_DEVICE_FUNCTION(NAME, PARAMETERS, ARGUMENTS) int NAME PARAMETERS;
#include "scaler_isp/plugins/isp_functions.def"

  private:
    void *m_hIspDll;
#define SCALER_ISP_STATUS_FUNCTION(NAME, PARAMETERS, ARGUMENTS) int(*m_pfn##NAME) PARAMETERS;
#define SCALER_ISP_VOID_FUNCTION(NAME, PARAMETERS, ARGUMENTS) void(*m_pfn##NAME) PARAMETERS;
#define SCALER_ISP_DEVICE_FUNCTION(NAME, PARAMETERS, ARGUMENTS) void(*m_pfn##NAME) PARAMETERS;
#include "scaler_isp/plugins/isp_functions.def"
};

#endif
