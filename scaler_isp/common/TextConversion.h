#ifndef SCALER_ISP_COMMON_TEXT_CONVERSION_H
#define SCALER_ISP_COMMON_TEXT_CONVERSION_H

#include <string>

/// The conversions that the library itself calls. A string that the target encoding cannot express,
/// or that is too long, becomes the empty string, as with CCpTransform; any other failure throws
/// (CallFailure, std::bad_alloc), so that a lack of memory is never mistaken for an empty path.

/// Wide characters to UTF-8 and back, by iconv. UNITS: a result has at most 10,239 bytes, or
/// characters. It ends at its first NUL.
std::string Utf8FromWide(const std::wstring &text);
std::wstring WideFromUtf8(const std::string &text);

/// Wide characters to the environment's encoding and back. A string ends at its first NUL.
std::string EnvironmentTextFromWide(const wchar_t *text);
/// \param capacity  UNITS: wide characters; a longer result is truncated.
std::wstring WideFromEnvironmentText(const char *text, std::size_t capacity);

/// As WideFromUtf8, from the environment's encoding. For paths only, where a lack of memory must be
/// noticed: if glibc has no memory to load the character set of a locale, it converts as in plain
/// ASCII and reports any other character as invalid input. Empty also if the locale does not exist.
std::wstring WideFromEnvironmentCharset(const std::string &text);

#endif
