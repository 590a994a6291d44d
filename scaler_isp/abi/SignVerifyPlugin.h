#ifndef SCALER_ISP_ABI_SIGN_VERIFY_PLUGIN_H
#define SCALER_ISP_ABI_SIGN_VERIFY_PLUGIN_H

/// \file
/// What the sign/verify plug-in exports: libSignVerify.dylib beside the library, both functions
/// required. For plug-in authors; hosts do not need this header. C99 and C++.

#include "scaler_isp/abi/DigitalSignArgs.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Makes the signature args->szSignatureFile for args->szFwFile.
/// RETURNS non-zero for success; 0 ends the run with 0x4002.
SCALER_ISP_API int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args);

/// Checks args->szFwFile against args->szSignatureFile.
/// \param keyFromFlash  key data that the ISP plug-in read from the chip, of
///                      SCALER_ISP_FLASH_KEY_BYTES bytes, or null when the key comes from the
///                      record's key files.
/// RETURNS non-zero when the signature is good; 0 ends the run with 0x4003.
SCALER_ISP_API int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args,
                                         char *keyFromFlash);

#ifdef __cplusplus
}
#endif

#endif
