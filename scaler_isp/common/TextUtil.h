#ifndef SCALER_ISP_COMMON_TEXT_UTIL_H
#define SCALER_ISP_COMMON_TEXT_UTIL_H

#include <string>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// Turns a whole text into a number: white space, a sign, then decimal digits, hexadecimal ones
/// after 0x or 0X, or octal ones after a leading zero (strtol of C99). The empty text is 0.
/// \param value  the number, cut to 32 bits ("0xffffffff" is -1); -1 where the text is no number.
/// RETURNS 1 when the whole text is a number, else 0.
// QUIRK Leading_zero_means_octal: 010 is 8, and 09 is no number.
SCALER_ISP_API int StringtoInt(const std::string &text, int &value);

/// Splits a text at any of the delimiter characters.
/// \param keepEmpty  non-zero keeps empty fields; a trailing empty field is never kept.
SCALER_ISP_API std::vector<std::string> StringSplit(const std::string &text, const char *delimiters,
                                                    int keepEmpty);

/// Removes every blank (the space character, nothing else), inner ones too.
SCALER_ISP_API void DeleteBlankW(std::wstring &text);

/// Removes leading and trailing blanks.
SCALER_ISP_API void StringTrimW(std::wstring &text);

/// Removes leading and trailing blanks.
// QUIRK DeleteBlankA_only_trims: the narrow form keeps inner blanks, the wide DeleteBlankW does not.
SCALER_ISP_API void DeleteBlankA(std::string &text);

/// Whether the value is not 0.
SCALER_ISP_API bool ConvertBOOLTobool(int value);

#endif
