// The sign/verify plug-in of globals_host.cpp: every signature is good.

#include "scaler_isp/abi/SignVerifyPlugin.h"

int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *) {
    return 1;
}

int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *, char *) {
    return 1;
}
