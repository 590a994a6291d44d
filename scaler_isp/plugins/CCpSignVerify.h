#ifndef SCALER_ISP_PLUGINS_CCP_SIGN_VERIFY_H
#define SCALER_ISP_PLUGINS_CCP_SIGN_VERIFY_H

#include <string>

#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Owns the handle of the sign/verify plug-in and turns its answers into result codes:
/// 0 success, 0x4002 not signed, 0x4003 signature not good, 0x4004 not loaded.
class SCALER_ISP_API CCpSignVerify {
  public:
    CCpSignVerify();
    virtual ~CCpSignVerify(); ///< leaves a loaded plug-in loaded
    CCpSignVerify(const CCpSignVerify &) = delete;
    CCpSignVerify &operator=(const CCpSignVerify &) = delete;

    /// Forgets the handle and both functions without closing anything.
    void Init();

    /// Frees a plug-in loaded before, then opens the one at `path`; both functions are required.
    /// PRINTS "dlopen - %s\n" or "dlsym - %s\n" with the loader's text on failure.
    /// RETURNS 1 when loaded, else 0 and nothing stays open.
    int LoadSignVerfiyDllFile(wchar_t *path);

    /// The same for a path as the system knows it; for the library itself.
    SCALER_ISP_INTERNAL bool Load(const std::string &path);

    /// Closes the plug-in and forgets its functions; does nothing when none is loaded.
    void FreeSignVerfiyDllFile();

    int SignFw(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args);

    /// \param key  SCALER_ISP_FLASH_KEY_BYTES bytes of key data from the chip's flash, or null.
    int VerifySignature(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args, char *key);

  private:
    void *m_hSignVerifyDll;
    int (*m_pfnSignFwExport)(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *);
    int (*m_pfnVerifySignatureExport)(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *, char *);
};

/// Loads the plug-in at a full path. RETURNS 0, or 0x4004 where it cannot be loaded.
/// \param directory  accepted and not used.
SCALER_ISP_API int LoadSignVerfiyDll(CCpSignVerify &signVerify, CCpNxString directory,
                                     CCpNxString &path);

#endif
