#ifndef SCALER_ISP_ENTRY_GLOBALS_H
#define SCALER_ISP_ENTRY_GLOBALS_H

#include "scaler_isp/abi/Callbacks.h"
#include "scaler_isp/common/CCpNxString.h"

class CCpIspArgsParse;

/// The state of the current call. Every call sets it afresh, which is why there can be only one at
/// a time; all of it is hidden from other binaries.

extern CCpNxString g_cpStrCurDir;          ///< the library's folder, ending in "/"
extern CCpNxString g_cpStrSettingFilePath; ///< that folder's IspSetting.ini
extern CCpIspArgsParse *g_pcArgsParse; ///< parser of the call; after a bad line the leftover one

extern ScalerIspProgressCallback g_funcReturnProg;
extern ScalerIspMessageCallback g_funcShowMsg;
extern ScalerIspHubDeviceCallback g_funcNxGetHubDev; ///< never set by the entry points

extern const wchar_t *const STR_ISP_DLL_PATH;
extern const wchar_t *const STR_SIGN_VERIFY_DLL;

#endif
