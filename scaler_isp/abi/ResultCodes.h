#ifndef SCALER_ISP_ABI_RESULT_CODES_H
#define SCALER_ISP_ABI_RESULT_CODES_H

/// \file
/// Every result code that the library itself returns. Any other result of OperateScaler comes
/// unchanged from a plug-in.

/// One row per code: X(name, value, meaning, likely cause, remedy). A macro that needs only the
/// first three is best written X(NAME, VALUE, MEANING, ...).
/* clang-format off */
#define SCALER_ISP_RESULT_CODES(X) \
    X(SCALER_ISP_SUCCESS, 0, "success", \
      "everything requested was done", \
      "none needed") \
    X(SCALER_ISP_REFUSED, -1, "the command line was refused, or the call failed", \
      "an option, a value or a file that the action needs is missing or wrong; or the system was out of memory or descriptors, or a plug-in failed", \
      "read the message printed before the result; the page options.md says what each option needs") \
    X(SCALER_ISP_FUNCTION_MISSING, 6, "the plug-in does not offer the function of this action", \
      "the ISP plug-in does not support this action, or no plug-in is ever called for it", \
      "use a plug-in that exports the function, or another action") \
    X(SCALER_ISP_PLUGIN_NOT_LOADED, 0xD67, "the ISP plug-in PlugIn/libIsp.dylib cannot be loaded", \
      "the file is missing from PlugIn in the library's directory, is built for another architecture, or lacks a library or a required function", \
      "put the plug-in there; a line that begins with dlopen gives the loader's reason; without such a line a required function or memory is missing") \
    X(SCALER_ISP_NO_WORKING_COPY, 0xD69, "no memory for a working copy of the command", \
      "the system is out of memory", \
      "free memory and run the command again") \
    X(SCALER_ISP_BOOT_MAP_TOO_LARGE, 0xDA0, "the boot firmware needs more than 512 banks", \
      "the file given with --boot is larger than 32 MiB", \
      "give the boot firmware of this device") \
    X(SCALER_ISP_NO_HUB_DEVICE, 0x2B0D, "the host found no device behind the hub", \
      "the callback of the host returned no device", \
      "reconnect the device; the host must return a valid handle") \
    X(SCALER_ISP_SIGNING_FAILED, 0x4002, "the firmware could not be signed", \
      "the sign/verify plug-in rejected the key or the firmware, or could not write the signature", \
      "check the key files, the scheme of --dsmode and the directory of the signature") \
    X(SCALER_ISP_BAD_SIGNATURE, 0x4003, "the firmware signature is invalid", \
      "the signature was made for another firmware or with another key", \
      "use the signature and the key that were delivered with this firmware") \
    X(SCALER_ISP_SIGN_PLUGIN_MISSING, 0x4004, "the sign/verify plug-in libSignVerify.dylib or its function is not available", \
      "the file is missing from the library's directory, or does not export both functions", \
      "put the plug-in there; the line that begins with dlopen or dlsym names what is missing")
/* clang-format on */

enum ScalerIspResultCode {
#define SCALER_ISP_RESULT_CODE_VALUE(NAME, VALUE, MEANING, CAUSE, REMEDY) NAME = VALUE,
    SCALER_ISP_RESULT_CODES(SCALER_ISP_RESULT_CODE_VALUE)
#undef SCALER_ISP_RESULT_CODE_VALUE
};

#endif
