#ifndef SCALER_ISP_ENTRY_GLOBALS_H
#define SCALER_ISP_ENTRY_GLOBALS_H

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

class CCpIspArgsParse;

/// \file
/// The state that the entry points keep for the current call. Because of it, there can be only one
/// call at a time in a process.
///
/// A host that calls DoIsp or ExecuteProcess directly, without OperateScaler, sets the callbacks
/// here first. Everything else may only be read, between calls; the library never reads the two
/// paths.

/// Directory of the library file, ending in "/", as found by the last call with a command line.
/// Empty before the first such call, and if the directory is unknown or cannot be expressed in the
/// environment's encoding.
extern SCALER_ISP_API CCpNxString g_cpStrCurDir;

/// Path of IspSetting.ini in that directory.
extern SCALER_ISP_API CCpNxString g_cpStrSettingFilePath;

/// The parser of the current call, OWNED by the library; null between calls. If the command line
/// had invalid quotes or there was no memory for its arguments, the parser stays until the next
/// call or until the library is unloaded.
extern SCALER_ISP_API CCpIspArgsParse *g_pcArgsParse;

/// The callbacks that the ISP plug-in receives through SetUIFunction: those of the last
/// OperateScaler call, or those that a host has stored here. Each may be null.
extern SCALER_ISP_API ScalerIspProgressCallback g_funcReturnProg;
extern SCALER_ISP_API ScalerIspMessageCallback g_funcShowMsg;

/// Returns the device handle to use after the chip behind a hub has been accessed; with null the
/// run ends with 0x2B0D. Called only for communication channel 6, and only if the run received a
/// device handle, which OperateScaler never passes. No entry point sets it.
extern SCALER_ISP_API ScalerIspHubDeviceCallback g_funcNxGetHubDev;

/// Path of the ISP plug-in, and file name of the sign/verify plug-in, relative to the library's
/// directory.
extern SCALER_ISP_API const wchar_t *const STR_ISP_DLL_PATH;
extern SCALER_ISP_API const wchar_t *const STR_SIGN_VERIFY_DLL;

#endif
