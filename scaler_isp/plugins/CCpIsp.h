#ifndef SCALER_ISP_PLUGINS_CCP_ISP_H
#define SCALER_ISP_PLUGINS_CCP_ISP_H

#include <string>

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/Export.h"

class CNxComm;

/// Owns the handle of the ISP plug-in and offers its functions. isp_functions.def lists them.
///
/// A wrapper passes its arguments on unchanged and returns the plug-in's result; without a function
/// it calls nothing: wrappers with a code return 6, SetIDev returns 0, the others do nothing.
// QUIRK Functions_never_looked_up_answer_6: GetFWInfo, SendUserDefinedInfo, ChipEraseFlash,
// GetMergeFwInfo, SetMergeFwInfo, I2CWriteExport and BankEraseFlash always return 6, and SetIDev 0,
// even where the plug-in exports them.
class SCALER_ISP_API CCpIsp {
  public:
    CCpIsp();
    // QUIRK Destructor_leaves_the_plugin_loaded: whoever loads a plug-in calls FreeIspDllFile.
    virtual ~CCpIsp();
    CCpIsp(const CCpIsp &) = delete;
    CCpIsp &operator=(const CCpIsp &) = delete;

    /// Forgets the handle and all functions without closing anything.
    void Init();

    /// Frees a plug-in loaded before, then opens the one at `path` and looks its functions up.
    /// PRINTS "dlopen - %sn" with the loader's text where it cannot be opened; nothing where a
    /// required function is missing. RETURNS 1 when loaded, else 0 and nothing stays open.
    // QUIRK Open_failure_message_ends_in_the_letter_n: there is no line end behind it.
    int LoadIspDllFile(wchar_t *path);

    /// The same for a path as the system knows it; for the library itself.
    SCALER_ISP_INTERNAL bool Load(const std::string &path);

    /// Closes the plug-in and forgets its functions; does nothing when none is loaded.
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
