/* An ISP plug-in that does nothing, so that a call costs only the library's own work. */
#include "scaler_isp/abi/IspPlugin.h"

/* clang-format off */
#define IGNORES_ITS_RECORD(NAME) \
    int NAME(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) { (void)setting; return 0; }
/* clang-format on */

IGNORES_ITS_RECORD(IspFlash)
IGNORES_ITS_RECORD(RecordFWVersion)
IGNORES_ITS_RECORD(DumpFlash)
IGNORES_ITS_RECORD(GetUserDefinedInfoFromDDCCI)
IGNORES_ITS_RECORD(IspEeprom)
IGNORES_ITS_RECORD(EnterISPModeExport)
IGNORES_ITS_RECORD(ResetMCUExport)
IGNORES_ITS_RECORD(GetScalerType)

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting, unsigned char *key) {
    (void)setting;
    (void)key;
    return 0;
}

void SetCommInterface(CNxComm *comm) {
    (void)comm;
}

void SetUIFunction(ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback hubDevice) {
    (void)progress;
    (void)message;
    (void)hubDevice;
}
