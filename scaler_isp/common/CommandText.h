#ifndef SCALER_ISP_COMMON_COMMAND_TEXT_H
#define SCALER_ISP_COMMON_COMMAND_TEXT_H

#include <string>

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// Byte lists written as text: "0x12, 0x34 // comment". Numbers are separated by commas or line
/// ends; comments are /* */ and //; names can stand for numbers.
///
/// Texts are wide and need no terminator: `length` counts their characters. A word is a run of
/// letters, digits and underscores; of a longer one 256 characters count. Nothing is printed, and
/// nothing is read or written outside the given buffers. Null texts count as empty.

/// Token results of GetNextWord.
enum ScalerIspToken : int {
    SCALER_ISP_TOKEN_NONE = 0, ///< end of the text, an open comment, or a character of no token
    SCALER_ISP_TOKEN_WORD = 1,
    SCALER_ISP_TOKEN_COMMENT = 2,
    SCALER_ISP_TOKEN_LINE_END = 3,
    SCALER_ISP_TOKEN_COMMA = 4,
    SCALER_ISP_TOKEN_OPENING_BRACE = 5,
    SCALER_ISP_TOKEN_CLOSING_BRACE = 6
};

/// Reads one token and advances the position behind it.
/// \param word          receives the word of a token 1, cleared first; no terminator when full.
/// \param wordCapacity  UNITS: characters of room in `word`.
/// RETURNS a ScalerIspToken.
SCALER_ISP_API int GetNextWord(wchar_t *text, unsigned int &pos, unsigned int length, wchar_t *word,
                               unsigned int wordCapacity);

/// Reads one number and the separator behind it. Other words before the separator are passed over.
/// \param defines  NUL-terminated text with names, as for GetDefineValue; null: no names.
/// \param value    receives the number where one was found.
/// RETURNS 1 when a value was read; 6 at a closing brace or when the text ends before a word; 0 at
/// a character of no token and for a word that is no value; another token where the text ends
/// behind the value.
// QUIRK Value_before_a_trailing_comment_is_not_delivered: a value with only a comment behind it at
// the very end of the text is lost; a line end behind it delivers it.
SCALER_ISP_API unsigned int FindNextBytes(wchar_t *text, unsigned int &pos, unsigned int length,
                                          wchar_t *defines, unsigned int *value);

/// Converts a byte list. UNITS: capacity in bytes; reading stops when it is reached.
/// RETURNS the number of bytes; 0 as soon as a value is above 255.
SCALER_ISP_API int CmdToBin(wchar_t *text, unsigned int length, unsigned char *bytes,
                            unsigned int capacity);

/// Converts an EDID (VESA E-EDID) written as a byte list.
/// RETURNS the number of bytes; 0 where a value is above 255, the bytes do not fit, or their sum is
/// not 0 modulo 256.
// QUIRK Edid_checksum_covers_the_whole_buffer: the sum is taken over all bytes as one block.
SCALER_ISP_API int EDIDToBin(wchar_t *text, unsigned int length, unsigned char *bytes,
                             unsigned int capacity);

/// Finds a name in a text of lines "#define NAME 0x1F" and converts the word behind it.
/// RETURNS 1 when found, else 0; a hexadecimal word that cannot be converted is found as 0.
SCALER_ISP_API int GetDefineValue(wchar_t *name, wchar_t *defines, unsigned int *value);

/// Reads `count` hexadecimal digits, the first one highest. RETURNS 0 for anything else, for no
/// digits and for more than 8.
SCALER_ISP_API unsigned int HexStrToInt(wchar_t *digits, unsigned char count);
SCALER_ISP_API unsigned int HexStrToInt(CCpNxString &digits, unsigned char count);

/// Converts numbers separated by commas, without comments or names.
/// RETURNS the number of bytes; 0 for a piece that is no number from 0 to 255.
// QUIRK Capacity_0_means_no_limit: the buffer must then hold every byte of the text.
SCALER_ISP_API int ConvetStringToByteArry(std::string text, unsigned char *bytes,
                                          unsigned int capacity);

#endif
