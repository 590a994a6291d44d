#ifndef SCALER_ISP_ABI_RESULT_CODES_H
#define SCALER_ISP_ABI_RESULT_CODES_H

/// \file
/// Every result code that the library itself forms. Any other value of OperateScaler comes
/// unchanged from a plug-in.

/// One row a code: X(name, value, meaning in one line).
#define SCALER_ISP_RESULT_CODES(X)                                                                 \
    X(SCALER_ISP_SUCCESS, 0, "success")                                                            \
    X(SCALER_ISP_REFUSED, -1, "the command line was refused, or the call failed")                  \
    X(SCALER_ISP_FUNCTION_MISSING, 6, "the plug-in does not offer the function of this action")    \
    X(SCALER_ISP_PLUGIN_NOT_LOADED, 0xD67, "the ISP plug-in PlugIn/libIsp.dylib cannot be loaded") \
    X(SCALER_ISP_NO_WORKING_COPY, 0xD69, "no memory for a working copy of the command")            \
    X(SCALER_ISP_BOOT_MAP_TOO_LARGE, 0xDA0, "the boot firmware needs more than 512 banks")         \
    X(SCALER_ISP_NO_HUB_DEVICE, 0x2B0D, "the host has no device behind the hub")                   \
    X(SCALER_ISP_SIGNING_FAILED, 0x4002, "the firmware could not be signed")                       \
    X(SCALER_ISP_BAD_SIGNATURE, 0x4003, "the signature of the firmware is not good")               \
    X(SCALER_ISP_SIGN_PLUGIN_MISSING, 0x4004,                                                      \
      "the sign/verify plug-in libSignVerify.dylib or "                                            \
      "its function is not available")

enum ScalerIspResultCode {
#define SCALER_ISP_RESULT_CODE_VALUE(NAME, VALUE, MEANING) NAME = VALUE,
    SCALER_ISP_RESULT_CODES(SCALER_ISP_RESULT_CODE_VALUE)
#undef SCALER_ISP_RESULT_CODE_VALUE
};

#endif
