#ifndef SCALER_ISP_COMMON_TEXT_CONVERSION_H
#define SCALER_ISP_COMMON_TEXT_CONVERSION_H

#include <string>

/// The conversions as the library itself calls them. A string that the target encoding cannot
/// express, or that is too long for it, becomes the empty string, as CCpTransform promises;
/// anything else that goes wrong throws (CallFailure, std::bad_alloc), so that a lack of memory is
/// never taken for an empty path.

/// Wide characters to UTF-8 and back through iconv. UNITS: at most 10,239 bytes, or characters,
/// come out. A result ends at its first NUL.
std::string Utf8FromWide(const std::wstring &text);
std::wstring WideFromUtf8(const std::string &text);

/// Wide characters to the environment's encoding and back. A text ends at its first NUL.
std::string EnvironmentTextFromWide(const wchar_t *text);
/// \param capacity  UNITS: wide characters the result may have; a longer one is truncated.
std::wstring WideFromEnvironmentText(const char *text, std::size_t capacity);

/// Characters of the environment's encoding to wide ones, as WideFromUtf8 converts. For paths only:
/// glibc converts in a locale as in plain ASCII if it had no memory to load the character set, and
/// reports every other character as the text's fault. Empty also if the locale does not exist.
std::wstring WideFromEnvironmentCharset(const std::string &text);

#endif
