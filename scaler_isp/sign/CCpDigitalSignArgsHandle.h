#ifndef SCALER_ISP_SIGN_CCP_DIGITAL_SIGN_ARGS_HANDLE_H
#define SCALER_ISP_SIGN_CCP_DIGITAL_SIGN_ARGS_HANDLE_H

#include <string>

#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"

/// Checks that the settings of a signature record are supported and that its files exist, and
/// replaces the checked paths with absolute ones.
///
/// Every check returns 1 if it passes. Otherwise it PRINTS one message to standard output,
/// beginning "Digital signature: ", and returns 0; fields that were already replaced stay so. A
/// `char *` parameter is a path field of the record: 260 bytes, not necessarily terminated,
/// replaced in place with zero padding. Null counts as an empty field that cannot be written.
class SCALER_ISP_API CCpDigitalSignArgsHandle {
  public:
    /// The directory, ending in "/", against which relative paths are resolved.
    void SetCurrentDir(const std::string &directory);
    std::string GetCurrentDir() const;

    /// Rejects signing with software mode 1 and verifying with a hardware signature; accepts
    /// everything else.
    int CheckDigitalSignatureType(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action,
                                  ENUM_CP_DIGITAL_SIGNATURE_TYPE type,
                                  ENUM_CP_DIGITAL_SIGNATURE_SW_MODE swMode) const;

    /// Determines the signature file: for signing, the given one, or the firmware path followed by
    /// ".sig"; for verifying, the given one, which must exist.
    int GetSignatureFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, std::string firmware,
                         char *signature) const;

    /// \param subCert  null: no sub-certificate is checked.
    int CheckLenovoKeyFile(char *verifyKey, char *subCert) const;

    /// \param keyPair  receives 0..4; 0 for an empty string and if the string is rejected.
    int CheckVxmInternalKey(std::string text, int &keyPair) const;

    int CheckVxmExternalKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char *verifyKey,
                                char *signKey) const;
    int CheckVxmExternalNextKeyFile(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE action, char *signKey,
                                    char *nextVerifyKey) const;
    int CheckVxmHwKeyFile(char *signKey, char *nextVerifyKey) const;

    /// All checks of one run: type, firmware file, signature file, key files.
    int JudgeArgument(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const;

    /// The same without the keys: type, firmware file, signature file.
    int JudgeArgumentFwFileAndSigFile(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args) const;

  private:
    std::string m_strCurrentDir;
};

#endif
