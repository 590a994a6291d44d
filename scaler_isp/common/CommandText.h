#ifndef SCALER_ISP_COMMON_COMMAND_TEXT_H
#define SCALER_ISP_COMMON_COMMAND_TEXT_H

#include <string>

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Byte lists written as text: "0x12, 0x34 // comment". Numbers are separated by commas or
/// newlines; comments are /* */ and //; names may be used for numbers.
///
/// Texts are wide and need no terminator: `length` counts their characters. A word is a sequence of
/// letters, digits and underscores, of which only the first 256 are compared and converted. Nothing
/// is printed, and nothing is read or written outside the given buffers. A null text counts as
/// empty.

/// Token results of GetNextWord.
enum ScalerIspToken : int {
    SCALER_ISP_TOKEN_NONE = 0, ///< end of the text, an unclosed comment, or an invalid character
    SCALER_ISP_TOKEN_WORD = 1,
    SCALER_ISP_TOKEN_COMMENT = 2,
    SCALER_ISP_TOKEN_LINE_END = 3,
    SCALER_ISP_TOKEN_COMMA = 4,
    SCALER_ISP_TOKEN_OPENING_BRACE = 5,
    SCALER_ISP_TOKEN_CLOSING_BRACE = 6
};

/// Reads one token and advances `pos` past it.
/// \param word          receives the word of token 1; zeroed first, no terminator if full.
/// \param wordCapacity  UNITS: capacity of `word` in characters.
/// RETURNS a ScalerIspToken.
SCALER_ISP_API int GetNextWord(wchar_t *text, unsigned int &pos, unsigned int length, wchar_t *word,
                               unsigned int wordCapacity);

/// Reads one number and the separator after it. Other tokens before the separator are ignored.
/// \param defines  NUL-terminated text that defines names, as for GetDefineValue; null: no names.
/// \param value    receives the number if one is found.
/// RETURNS 1 if a value was read; 6 at a closing brace, or if the text ends before a word; 0 at an
/// invalid character, or for a word that is not a value; the last skipped token if the text ends
/// before a separator.
// QUIRK Value_before_a_trailing_comment_is_not_delivered: a value is lost if only a comment without
// a newline follows it at the end of the text.
SCALER_ISP_API unsigned int FindNextBytes(wchar_t *text, unsigned int &pos, unsigned int length,
                                          wchar_t *defines, unsigned int *value);

/// Converts a byte list. UNITS: capacity in bytes; reading stops when the buffer is full.
/// RETURNS the number of bytes; 0 if a value is above 255.
SCALER_ISP_API int CmdToBin(wchar_t *text, unsigned int length, unsigned char *bytes,
                            unsigned int capacity);

/// Converts an EDID (VESA E-EDID) written as a byte list.
/// RETURNS the number of bytes; 0 if a value is above 255, the bytes do not fit, or their sum is
/// not 0 modulo 256.
// QUIRK Edid_checksum_covers_the_whole_buffer: the checksum is computed over all bytes, not per
// 128-byte block.
SCALER_ISP_API int EDIDToBin(wchar_t *text, unsigned int length, unsigned char *bytes,
                             unsigned int capacity);

/// Finds a name in a text of lines "#define NAME 0x1F" and converts the word after it.
/// RETURNS 1 if found, else 0; a hexadecimal word that cannot be converted gives the value 0.
SCALER_ISP_API int GetDefineValue(wchar_t *name, wchar_t *defines, unsigned int *value);

/// Reads `count` hexadecimal digits, most significant first. RETURNS 0 for any other character, for
/// no digits and for more than 8.
SCALER_ISP_API unsigned int HexStrToInt(wchar_t *digits, unsigned char count);
SCALER_ISP_API unsigned int HexStrToInt(CCpNxString &digits, unsigned char count);

/// Converts numbers separated by commas, without comments or names.
/// RETURNS the number of bytes; 0 if a piece is not a number from 0 to 255.
// QUIRK Capacity_0_means_no_limit: the buffer must then have space for every byte of the text.
SCALER_ISP_API int ConvetStringToByteArry(std::string text, unsigned char *bytes,
                                          unsigned int capacity);

#endif
