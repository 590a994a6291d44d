#ifndef SCALER_ISP_SIGN_SIGNATURE_CHECKS_H
#define SCALER_ISP_SIGN_SIGNATURE_CHECKS_H

#include <string>

#include "scaler_isp/abi/DigitalSignArgs.h"

/// The checks of the signature options and their files. Each prints one message for the first
/// problem and returns false. A relative path is resolved against `directory`, and the field of a
/// checked path receives the resolved one. Path parameters are fields of SCALER_ISP_PATH_CHARS
/// bytes; null counts as empty. A failure of the system throws.

using SignatureAction = ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE;
using SignatureType = ENUM_CP_DIGITAL_SIGNATURE_TYPE;
using SoftwareMode = ENUM_CP_DIGITAL_SIGNATURE_SW_MODE;

/// Checks everything that the record's action, type and mode need.
bool CheckSignatureArguments(const std::string &directory,
                             STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args);

/// Checks only the firmware and its signature, not the keys.
bool CheckFirmwareAndSignature(const std::string &directory,
                               STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args);

// The parts.
bool CheckSignatureType(SignatureAction action, SignatureType type, SoftwareMode swMode);
bool CheckSignatureFile(const std::string &directory, SignatureAction action,
                        const std::string &firmware, char *signature);
bool CheckLenovoKeys(const std::string &directory, char *verifyKey, char *subCert);
bool CheckInternalKeyPair(const std::string &text, int &keyPair);
bool CheckExternalKeys(const std::string &directory, SignatureAction action, char *verifyKey,
                       char *signKey);
bool CheckExternalNextKeys(const std::string &directory, SignatureAction action, char *signKey,
                           char *nextVerifyKey);
bool CheckHardwareKeys(const std::string &directory, char *signKey, char *nextVerifyKey);

#endif
