/* An ISP plug-in that only checks what it receives, so that a call costs the library's own work. */
#include "scaler_isp/abi/IspPlugin.h"

/* clang-format off */
#define IGNORES_ITS_RECORD(NAME) \
    int NAME(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) { (void)setting; return 0; }
/* clang-format on */

IGNORES_ITS_RECORD(RecordFWVersion)
IGNORES_ITS_RECORD(DumpFlash)
IGNORES_ITS_RECORD(GetUserDefinedInfoFromDDCCI)
IGNORES_ITS_RECORD(IspEeprom)
IGNORES_ITS_RECORD(EnterISPModeExport)
IGNORES_ITS_RECORD(ResetMCUExport)

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) {
    return setting->stMapFw.ulFwCount == 16 && setting->stMapFw.ulTargetBank[15] == 15 &&
                   setting->stMapFw.stFwBank[15].ulFileBank == 15 &&
                   setting->stMapFw.stFwBank[15].wszFwPath[0] == L'/'
               ? 0
               : 1;
}

int GetScalerType(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) {
    return setting->enumCommID == 3 ? 0 : 1;
}

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
