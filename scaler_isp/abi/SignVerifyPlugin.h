#ifndef SCALER_ISP_ABI_SIGN_VERIFY_PLUGIN_H
#define SCALER_ISP_ABI_SIGN_VERIFY_PLUGIN_H

/// \file
/// Exports of the sign/verify plug-in, libSignVerify.dylib in the library's directory; both
/// functions are required. For plug-in authors; hosts do not need this header. C99 and C++.

#include "scaler_isp/abi/DigitalSignArgs.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Signs args->szFwFile and writes the signature to args->szSignatureFile.
/// RETURNS non-zero for success; 0 ends the run with 0x4002.
SCALER_ISP_API int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args);

/// Verifies args->szFwFile with args->szSignatureFile.
/// \param keyFromFlash  key data that the ISP plug-in has read from the chip,
///                      SCALER_ISP_FLASH_KEY_BYTES bytes; null if the key comes from the record's
///                      key files.
/// RETURNS non-zero if the signature is valid; 0 ends the run with 0x4003.
SCALER_ISP_API int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args,
                                         char *keyFromFlash);

#ifdef __cplusplus
}
#endif

#endif
