// An ISP plug-in in C++ that calls the host back from the action resetmcu, so that what the host's
// callback throws unwinds through it.

#include "scaler_isp/abi/IspPlugin.h"

namespace {

ScalerIspProgressCallback g_progress = nullptr;

} // namespace

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback,
                   ScalerIspHubDeviceCallback) {
    g_progress = progress;
}

int ResetMCUExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    g_progress(50);
    return 0;
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *, unsigned char *) {
    return 0;
}

void SetCommInterface(CNxComm *) {}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *) {
    return 0;
}
