#ifndef SCALER_ISP_ABI_DIGITAL_SIGN_ARGS_H
#define SCALER_ISP_ABI_DIGITAL_SIGN_ARGS_H

/// \file
/// The record that the sign/verify plug-in receives: 1,840 bytes, little-endian, no padding.
/// A binary interface with separately built libraries. Readable as C99 and as C++.

#include <stdint.h>

#include "scaler_isp/abi/Enumeration.h"
#include "scaler_isp/abi/Export.h"

/// Size of every path field, in characters. A string of this length or more fills the field
/// completely and has NO terminator: read at most 260 characters, never a C string.
#define SCALER_ISP_PATH_CHARS 260

/// Key data of the next key generation, as GetKeyFromFlash of the ISP plug-in fills it and
/// VerifySignatureExport of the sign/verify plug-in reads it. UNITS: bytes.
#define SCALER_ISP_FLASH_KEY_BYTES 1220

/// What to do with the firmware file.
SCALER_ISP_ENUM_TYPE(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE) {
    ENUM_SIGN_ACTION_NONE = 0,
    ENUM_SIGN_ACTION_SIGN = 1,  ///< make a signature for szFwFile
    ENUM_SIGN_ACTION_VERIFY = 2 ///< verify szFwFile with szSignatureFile
};

/// Who holds the keys.
SCALER_ISP_ENUM_TYPE(ENUM_CP_DIGITAL_SIGNATURE_TYPE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_DIGITAL_SIGNATURE_TYPE) {
    ENUM_SIGN_TYPE_NONE = 0,
    ENUM_SIGN_TYPE_SW = 1, ///< key files on the host (--sw)
    ENUM_SIGN_TYPE_HW = 2  ///< hardware signature (--hw)
};

/// Key scheme of a software signature.
SCALER_ISP_ENUM_TYPE(ENUM_CP_DIGITAL_SIGNATURE_SW_MODE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_DIGITAL_SIGNATURE_SW_MODE) {
    ENUM_SIGN_SW_MODE_NONE = 0,
    ENUM_SIGN_SW_MODE_LENOVO = 1,           ///< verify key file only, so it cannot sign
    ENUM_SIGN_SW_MODE_VXM_INTERNAL = 2,     ///< internal key pair, chosen by nKeyPair
    ENUM_SIGN_SW_MODE_VXM_EXTERNAL = 3,     ///< sign key file to sign, verify key file to verify
    ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT = 4 ///< as 3, with the verify key of the next generation
};

/// Mode of a hardware signature; the plug-in gives 2, 3 and 4 their meaning.
SCALER_ISP_ENUM_TYPE(ENUM_CP_DIGITAL_SIGNATURE_HW_MODE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_DIGITAL_SIGNATURE_HW_MODE) {
    ENUM_SIGN_HW_MODE_NONE = 0,
    ENUM_SIGN_HW_MODE_1 = 1, ///< works without a firmware file
    ENUM_SIGN_HW_MODE_2 = 2,
    ENUM_SIGN_HW_MODE_3 = 3,
    ENUM_SIGN_HW_MODE_4 = 4
};

/// All signature settings of one run. The plug-in only reads them, during the call. Strings are
/// UTF-8, zero-padded, at most SCALER_ISP_PATH_CHARS bytes.
/// The path of a file that the library opened to check it is absolute; otherwise it is as given,
/// and relative to the library's directory.
typedef struct STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS {
    ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE enumSignActionType;
    ENUM_CP_DIGITAL_SIGNATURE_TYPE enumDigitalSignatureType;
    ENUM_CP_DIGITAL_SIGNATURE_SW_MODE enumSWDigitalSignatureMode; ///< meaningful for type 1 only
    ENUM_CP_DIGITAL_SIGNATURE_HW_MODE enumHWDigitalSignatureMode; ///< meaningful for type 2 only
    int32_t nKeyPair;                                ///< internal key pair, 0..4 (software mode 2)
    char szFwFile[SCALER_ISP_PATH_CHARS];            ///< absolute path of the firmware file
    char szSignatureFile[SCALER_ISP_PATH_CHARS];     ///< path of the signature (--signfile)
    char szKeyPair[SCALER_ISP_PATH_CHARS];           ///< value of --keypair, verbatim
    char szVerifyKeyFile[SCALER_ISP_PATH_CHARS];     ///< path (--vkfile)
    char szSignKeyFile[SCALER_ISP_PATH_CHARS];       ///< path (--skfile)
    char szSubCertFile[SCALER_ISP_PATH_CHARS];       ///< --subcert, verbatim
    char szNextVerifyKeyFile[SCALER_ISP_PATH_CHARS]; ///< path (--nextvkfile)

#ifdef __cplusplus
    /// Zeroes every byte.
    SCALER_ISP_API STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS();
#endif
} STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

#endif
