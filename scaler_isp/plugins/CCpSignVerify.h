#ifndef SCALER_ISP_PLUGINS_CCP_SIGN_VERIFY_H
#define SCALER_ISP_PLUGINS_CCP_SIGN_VERIFY_H

#include <string>

#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Owns the handle of the sign/verify plug-in and maps its return values to result codes: 0
/// success, 0x4002 not signed, 0x4003 signature invalid, 0x4004 not loaded.
class SCALER_ISP_API CCpSignVerify {
  public:
    CCpSignVerify();
    virtual ~CCpSignVerify(); ///< leaves a loaded plug-in loaded
    CCpSignVerify(const CCpSignVerify &) = delete;
    CCpSignVerify &operator=(const CCpSignVerify &) = delete;

    /// Resets the handle and both function pointers to null without closing anything.
    void Init();

    /// Frees the current plug-in, then opens the one at `path`; both functions are required.
    /// PRINTS "dlopen - %s\n" or "dlsym - %s\n" with the loader's message on failure.
    /// RETURNS 1 if loaded; otherwise 0, and nothing stays open.
    int LoadSignVerfiyDllFile(wchar_t *path);

    /// The same with a path in the system's form, for the library itself.
    SCALER_ISP_INTERNAL bool Load(const std::string &path);

    /// Closes the plug-in and resets its function pointers; does nothing if none is loaded.
    void FreeSignVerfiyDllFile();

    int SignFw(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args);

    /// \param key  SCALER_ISP_FLASH_KEY_BYTES bytes of key data from the chip's flash, or null.
    int VerifySignature(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *args, char *key);

  private:
    void *m_hSignVerifyDll;
    int (*m_pfnSignFwExport)(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *);
    int (*m_pfnVerifySignatureExport)(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *, char *);
};

/// Loads the plug-in at `path`, an absolute path. RETURNS 0, or 0x4004 if it cannot be loaded.
/// \param directory  accepted but not used.
SCALER_ISP_API int LoadSignVerfiyDll(CCpSignVerify &signVerify, CCpNxString directory,
                                     CCpNxString &path);

#endif
