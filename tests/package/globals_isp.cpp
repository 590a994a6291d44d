// The ISP plug-in of globals_host.cpp: it uses all three callbacks from IspFlash.

#include "scaler_isp/abi/IspPlugin.h"

namespace {

ScalerIspProgressCallback g_progress = nullptr;
ScalerIspMessageCallback g_message = nullptr;
ScalerIspHubDeviceCallback g_hubDevice = nullptr;

} // namespace

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback hubDevice) {
    g_progress = progress;
    g_message = message;
    g_hubDevice = hubDevice;
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    wchar_t text[] = L"programmed";
    g_progress(1);
    g_message(text);
    g_hubDevice();
    return 0;
}

int ResetMCUExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}
int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}
int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *, unsigned char *) {
    return 0;
}
void SetCommInterface(CNxComm *) {}
