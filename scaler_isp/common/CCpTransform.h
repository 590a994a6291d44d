#ifndef SCALER_ISP_COMMON_CCP_TRANSFORM_H
#define SCALER_ISP_COMMON_CCP_TRANSFORM_H

#include <string>

#include "scaler_isp/abi/Export.h"

/// Converts strings between wide characters (UTF-32, host byte order), UTF-8 and the locale's
/// multibyte encoding. Every operation returns the converted string, or the empty string if the
/// input is invalid or the system fails. Nothing is printed or thrown. A result ends at its first
/// NUL.
///
/// The UTF-8 operations open their own iconv (POSIX) descriptor and may run on any thread. The
/// locale operations (ANSI, CHAR, WCHAR in the name) switch the calling thread to a locale made
/// from the environment (LC_ALL, LC_CTYPE, LANG) and restore its previous one: the locale of the
/// process and other threads are not affected. If the environment names a locale that does not
/// exist, the current one is used. They may run on any thread unless another thread changes the
/// environment at the same time.
class SCALER_ISP_API CCpTransform {
  public:
    CCpTransform() = default;
    CCpTransform(const CCpTransform &) = default;
    CCpTransform &operator=(const CCpTransform &) = default;
    virtual ~CCpTransform();

    /// Wide to UTF-8. UNITS: a result of more than 10,239 bytes is a failure.
    std::string ConvertUnicodeStringToUTF8(const std::wstring &text) const;

    /// UTF-8 to wide. UNITS: a result of more than 10,239 characters is a failure.
    std::wstring ConvertUTF8StringToUnicode(const std::string &text) const;

    /// The same as ConvertUTF8StringToUnicode.
    std::wstring ConvertStringToWString(const std::string &text) const;

    /// Wide to the encoding of the environment's locale.
    std::string ConvertUnicodeStringToANSI(const std::wstring &text) const;
    std::string ConvertWCHARToCHAR(const wchar_t *text) const;       ///< null counts as empty
    std::string ConvertWCHARToANSIString(const wchar_t *text) const; ///< null counts as empty

    /// The encoding of the environment's locale to wide.
    std::wstring ConvertANSIStringToUnicode(const std::string &text) const;
    std::wstring ConvertCHARToUnicodeString(const char *text) const; ///< null counts as empty
};

#endif
