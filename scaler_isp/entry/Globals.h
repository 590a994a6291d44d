#ifndef SCALER_ISP_ENTRY_GLOBALS_H
#define SCALER_ISP_ENTRY_GLOBALS_H

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

class CCpIspArgsParse;

/// \file
/// The state that the entry points keep for the current call. It is why there can be only one call
/// at a time in a process.
///
/// A host that calls DoIsp or ExecuteProcess itself, without OperateScaler, sets the callbacks here
/// first. Everything else is for reading, between calls; the library never reads the two paths
/// back.

/// Directory of the library's own file, ending in "/", from the last call that had a command line;
/// empty before the first one, and if it is unknown or cannot be expressed in the environment's
/// encoding.
extern SCALER_ISP_API CCpNxString g_cpStrCurDir;

/// The path of IspSetting.ini in that directory.
extern SCALER_ISP_API CCpNxString g_cpStrSettingFilePath;

/// The parser of the running call, OWNED by the library; null between calls. After a command line
/// with bad quotes, or without memory for its words, it stays until the next call or until the
/// library is unloaded.
extern SCALER_ISP_API CCpIspArgsParse *g_pcArgsParse;

/// What the ISP plug-in receives through its SetUIFunction: the callbacks of the last OperateScaler
/// call, or what a host has stored here. Each may be null.
extern SCALER_ISP_API ScalerIspProgressCallback g_funcReturnProg;
extern SCALER_ISP_API ScalerIspMessageCallback g_funcShowMsg;

/// Returns the device handle to use after the chip was touched behind a hub, or null: the run then
/// ends with 0x2B0D. Called only for communication channel 6 and only if the run was given a device
/// handle, which OperateScaler never does. No entry point sets it.
extern SCALER_ISP_API ScalerIspHubDeviceCallback g_funcNxGetHubDev;

/// Path of the ISP plug-in below the library's directory, and file name of the sign/verify plug-in
/// in it.
extern SCALER_ISP_API const wchar_t *const STR_ISP_DLL_PATH;
extern SCALER_ISP_API const wchar_t *const STR_SIGN_VERIFY_DLL;

#endif
