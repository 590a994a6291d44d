#include "scaler_isp/entry/Globals.h"

CCpNxString g_cpStrCurDir;
CCpNxString g_cpStrSettingFilePath;
CCpIspArgsParse *g_pcArgsParse = nullptr;

ScalerIspProgressCallback g_funcReturnProg = nullptr;
ScalerIspMessageCallback g_funcShowMsg = nullptr;
ScalerIspHubDeviceCallback g_funcNxGetHubDev = nullptr;

const wchar_t *const STR_ISP_DLL_PATH = L"PlugIn/libIsp.dylib";
const wchar_t *const STR_SIGN_VERIFY_DLL = L"libSignVerify.dylib";
