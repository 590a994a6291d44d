#ifndef SCALER_ISP_COMMON_TEXT_UTIL_H
#define SCALER_ISP_COMMON_TEXT_UTIL_H

#include <string>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// Converts a complete string to a number: white space, a sign, then decimal digits, hexadecimal
/// digits after 0x or 0X, or octal digits after a leading zero (strtol of C99). The empty string is
/// 0.
/// \param value  the number modulo 2^32 ("0xffffffff" is -1); -1 if the string is not a number.
/// RETURNS 1 if the complete string is a number, else 0.
// QUIRK Leading_zero_means_octal: 010 is 8, and 09 is not a number.
SCALER_ISP_API int StringtoInt(const std::string &text, int &value);

/// Splits a string at any of the delimiter characters.
/// \param keepEmpty  non-zero keeps empty fields; a trailing empty field is never kept.
SCALER_ISP_API std::vector<std::string> StringSplit(const std::string &text, const char *delimiters,
                                                    int keepEmpty);

/// Removes all spaces (U+0020 only), inner ones included.
SCALER_ISP_API void DeleteBlankW(std::wstring &text);

/// Removes leading and trailing spaces.
SCALER_ISP_API void StringTrimW(std::wstring &text);

/// Removes leading and trailing spaces.
// QUIRK DeleteBlankA_only_trims: the narrow form keeps inner spaces, whereas the wide DeleteBlankW
// removes them.
SCALER_ISP_API void DeleteBlankA(std::string &text);

/// Whether the value is not 0.
SCALER_ISP_API bool ConvertBOOLTobool(int value);

#endif
