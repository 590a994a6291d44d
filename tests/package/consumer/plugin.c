#include <scaler_isp/abi/IspPlugin.h>
#include <scaler_isp/abi/SignVerifyPlugin.h>

static ScalerIspProgressCallback progress;

void SetUIFunction(ScalerIspProgressCallback progressCallback, ScalerIspMessageCallback message,
                   ScalerIspHubDeviceCallback hubDevice) {
    progress = progressCallback;
    (void)message;
    (void)hubDevice;
}

void SetCommInterface(CNxComm *comm) {
    (void)comm;
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *setting) {
    if (progress) {
        progress(100);
    }
    return setting->stMapFw.ulFwCount == 0 && setting->enumActionType == ENUM_ACTION_ISP;
}

int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args, char *keyFromFlash) {
    return args->enumSignActionType == ENUM_SIGN_ACTION_VERIFY && keyFromFlash != NULL;
}
