#ifndef SCALER_ISP_COMMON_CCP_TRANSFORM_H
#define SCALER_ISP_COMMON_CCP_TRANSFORM_H

#include <string>

#include "scaler_isp/abi/Export.h"

/// Converts text between wide characters (UTF-32, host order), UTF-8 and the locale's multibyte
/// encoding. Every operation returns the converted text; on any failure, of the text or of the
/// system, the empty text. Nothing is printed or thrown. A result ends at its first NUL.
///
/// The UTF-8 operations use iconv (POSIX) with a descriptor of their own and may run on any thread.
/// The locale operations (ANSI, CHAR, WCHAR in the name) use a locale of the calling thread, made
/// from the environment (LC_ALL, LC_CTYPE, LANG), and give the thread its own back: the locale of
/// the process stays as it is, and other threads see nothing. If the environment names a locale
/// that does not exist, the one in force is used. They may run on any thread, unless another one
/// changes the environment at the same time.
class SCALER_ISP_API CCpTransform {
  public:
    CCpTransform() = default;
    CCpTransform(const CCpTransform &) = default;
    CCpTransform &operator=(const CCpTransform &) = default;
    virtual ~CCpTransform();

    /// Wide to UTF-8. UNITS: at most 10,239 bytes come out; a longer result is a failure.
    std::string ConvertUnicodeStringToUTF8(const std::wstring &text) const;

    /// UTF-8 to wide. UNITS: at most 10,239 characters come out; a longer result is a failure.
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
