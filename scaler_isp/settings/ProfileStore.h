#ifndef SCALER_ISP_SETTINGS_PROFILE_STORE_H
#define SCALER_ISP_SETTINGS_PROFILE_STORE_H

#include "scaler_isp/abi/Export.h"

/// Reads and writes INI files: sections in brackets, key=value lines. Every call opens, reads and
/// closes the file; nothing is kept between calls.
///
/// Syntax
///  - A line ends at a line feed; a carriage return is part of the line. A line of more than 1,023
///    characters ends the reading of the file.
///  - A line is trimmed of blanks (the space character only) before it is looked at.
///  - "[Name]" alone on a line opens a section; names are exact.
///  - The key stands before the first "=", trimmed; the value after the last "=", trimmed.
///  - A section ends at the first line without "=", an empty one included. There are no comments.
///
/// The wide family (W) reads and writes text in the encoding of the environment's locale; byte for
/// byte (byte n is U+00n) in a plain ASCII locale, and for a file that holds bytes which the
/// encoding does not know. Names are compared as characters. The narrow family (A) never converts.
/// File names are UTF-8, or wide.
///
/// Writing
///  - At every moment the file holds all its old or all its new bytes, even if the process is
///  killed
///    or the disk is full: the new bytes go to ".ScalerIsp.tmp" in the same directory, which is
///    then renamed. A symbolic link stays and its target is replaced; mode, owner and extended
///    attributes stay. It is no protection against a power cut.
///  - A file with several hard links, one that is not a regular file, and one whose owner or
///    directory does not permit the rename, is overwritten in place. If that fails, the old bytes
///    are put back; if the process is killed meanwhile, they are lost.
///  - A file that exists but cannot be read completely is not written.
///  - Writers take turns by a lock (flock) on the directory. One that does not get its turn within
///    five seconds gives up.
///
/// Common parameters: section, key and default are NUL-terminated, null counts as empty; `size` is
/// the capacity of the buffer in characters, terminator included. At most size - 1 characters are
/// copied, and nothing at all into a null buffer or with size 0.

/// Reads one value.
/// RETURNS the number of characters copied when the key was found; otherwise 0, and the default is
/// copied. A file that cannot be read to its end is treated as one that cannot be opened.
// QUIRK Line_without_equals_ends_the_section: the lookup stops at a line without "=" and then
// returns 0 without copying the default; the buffer keeps what it held.
SCALER_ISP_API unsigned int CpNxGetPrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                                         const wchar_t *defaultValue,
                                                         wchar_t *buffer, unsigned int size,
                                                         const wchar_t *fileName);

/// Reads one number: decimal, hexadecimal after 0x, octal after a leading zero; reading stops at
/// the first character that does not fit, and text without a number is 0. Cut to 32 bits. RETURNS
/// the default where the key is missing or its value empty.
// QUIRK Text_without_a_number_is_zero: "Key=abc" is 0, "Key=" is the default.
SCALER_ISP_API int CpNxGetPrivateProfileIntW(const wchar_t *section, const wchar_t *key,
                                             int defaultValue, const wchar_t *fileName);

/// Writes one value: replaces it, or adds the key at the end of its section, or adds the section at
/// the end of the file; a missing file is created. All lines are trimmed and end in a line feed.
/// RETURNS 1 when written. If the file cannot be opened for writing, 0 after PRINTING
/// "Open file error \n" to standard output. If a string cannot be expressed in the file's encoding,
/// the old contents cannot be read, the disk is full or the turn does not come: 0 without a
/// message, and the file is as it was.
// QUIRK Writer_compares_the_raw_name: "K = 1" is not replaced by writing K; a second line is added
// that the reader never sees.
// QUIRK Overlong_line_is_lost_in_a_rewrite: a line of more than 1,023 characters and everything
// behind it is gone after a write.
SCALER_ISP_API int CpNxWritePrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                                  const wchar_t *value, const wchar_t *fileName);

/// As the wide form, but for a file that cannot be opened.
// QUIRK Narrow_getter_copies_no_default_for_a_missing_file: it PRINTS "Error \n" to standard output
// and returns 0; the buffer keeps what it held.
SCALER_ISP_API unsigned int CpNxGetPrivateProfileStringA(const char *section, const char *key,
                                                         const char *defaultValue, char *buffer,
                                                         unsigned int size, const char *fileName);

/// As the wide form; PRINTS "Error \n" for a missing file too.
SCALER_ISP_API int CpNxGetPrivateProfileIntA(const char *section, const char *key, int defaultValue,
                                             const char *fileName);

/// As the wide form.
SCALER_ISP_API int CpNxWritePrivateProfileStringA(const char *section, const char *key,
                                                  const char *value, const char *fileName);

#endif
