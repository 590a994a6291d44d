#ifndef SCALER_ISP_COMMON_UTF8_H
#define SCALER_ISP_COMMON_UTF8_H

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 without a locale and without iconv. Overlong forms and surrogates are invalid.

bool IsUtf8(std::string_view bytes);

/// Appends the characters. False if one is not a Unicode character; the contents of `bytes` are
/// then unspecified.
bool AppendUtf8(std::wstring_view text, std::string &bytes);

/// REQUIRES: IsUtf8(bytes).
std::wstring WideFromValidUtf8(std::string_view bytes);

/// UNITS: characters. REQUIRES: IsUtf8(bytes).
std::size_t CountUtf8Characters(std::string_view bytes);

/// Length of the ASCII prefix.
std::size_t AsciiPrefix(std::string_view bytes);

constexpr wchar_t kLastAscii = 0x7F;
constexpr wchar_t kLastByte = 0xFF;

/// Appends every character as one byte with its value. False, with `bytes` unchanged, if one is
/// above `last`, which is kLastAscii or kLastByte.
bool AppendAsBytes(wchar_t last, std::wstring_view text, std::string &bytes);

#endif
