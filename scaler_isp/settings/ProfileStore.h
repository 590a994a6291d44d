#ifndef SCALER_ISP_SETTINGS_PROFILE_STORE_H
#define SCALER_ISP_SETTINGS_PROFILE_STORE_H

#include "scaler_isp/abi/Export.h"

/// Reads and writes INI files: sections in brackets, key=value lines. Every call opens, reads and
/// closes the file; nothing is kept between calls.
///
/// Syntax
///  - A line ends at a newline (line feed); a carriage return is part of the line. Reading stops at
///    a line of more than 1,023 characters.
///  - Spaces (U+0020 only) at both ends of a line are ignored.
///  - "[Name]" alone on a line begins a section; names are compared exactly.
///  - The key is the text before the first "=", the value the text after the last "=", both
///    trimmed.
///  - A section ends at the first line without "=", even an empty one. There are no comments.
///
/// The wide family (W) reads and writes text in the encoding of the environment's locale; in a
/// plain ASCII locale, and for a file with bytes that are invalid in the encoding, it does so byte
/// for byte (byte n is U+00n). Names are compared as characters. The narrow family (A) never
/// converts. File names are UTF-8, or wide.
///
/// Writing
///  - At every moment the file holds all its old or all its new bytes, even if the process is
///    killed or the disk is full: the new bytes go to ".ScalerIsp.tmp" in the same directory, which
///    is then renamed. A symbolic link stays and its target is replaced; mode, owner and extended
///    attributes are preserved. This is no protection against a power cut.
///  - A file is overwritten in place if it has several hard links, is not a regular file, or if its
///    owner or directory does not permit the rename. If that fails, the old bytes are restored; if
///    the process is killed meanwhile, they are lost.
///  - A file that exists but cannot be read completely is not changed.
///  - Writers lock the directory (flock). One that does not get the lock within five seconds gives
///    up.
///
/// Common parameters: section, key and default are NUL-terminated, null counts as empty; `size` is
/// the capacity of the buffer in characters, terminator included. At most size - 1 characters are
/// copied, and none into a null buffer or with size 0.

/// Reads one value.
/// RETURNS the number of characters copied if the key was found; otherwise 0, after copying the
/// default. A file that cannot be read as far as the key, or to its end without finding it, is
/// treated as one that cannot be opened.
// QUIRK Line_without_equals_ends_the_section: the lookup stops at a line without "=", returns 0 and
// does not copy the default; the buffer is unchanged.
SCALER_ISP_API unsigned int CpNxGetPrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                                         const wchar_t *defaultValue,
                                                         wchar_t *buffer, unsigned int size,
                                                         const wchar_t *fileName);

/// Reads one number: decimal, hexadecimal after 0x, octal after a leading zero; parsing stops at
/// the first invalid character, and a value without a number is 0. Truncated to 32 bits. RETURNS
/// the default if the key is missing or its value is empty.
// QUIRK Text_without_a_number_is_zero: "Key=abc" gives 0, "Key=" the default.
SCALER_ISP_API int CpNxGetPrivateProfileIntW(const wchar_t *section, const wchar_t *key,
                                             int defaultValue, const wchar_t *fileName);

/// Writes one value: replaces it, or adds the key at the end of its section, or adds the section at
/// the end of the file; a missing file is created. All lines are trimmed and end with a newline.
/// RETURNS 1 if written. If the file cannot be opened for writing, PRINTS "Open file error \n" to
/// standard output and returns 0. If a string cannot be expressed in the file's encoding, the old
/// contents cannot be read, the disk is full or the lock is not obtained, returns 0 without a
/// message, and the file is unchanged.
// QUIRK Writer_compares_untrimmed_name: writing K does not replace "K = 1", but adds a second line
// that the reader never finds.
// QUIRK Overlong_line_is_lost_in_a_rewrite: a write removes a line of more than 1,023 characters
// and everything after it.
SCALER_ISP_API int CpNxWritePrivateProfileStringW(const wchar_t *section, const wchar_t *key,
                                                  const wchar_t *value, const wchar_t *fileName);

/// As the wide form, except for a file that cannot be opened.
// QUIRK Narrow_getter_copies_no_default_for_a_missing_file: it prints "Error \n" to standard output
// and returns 0; the buffer is unchanged.
SCALER_ISP_API unsigned int CpNxGetPrivateProfileStringA(const char *section, const char *key,
                                                         const char *defaultValue, char *buffer,
                                                         unsigned int size, const char *fileName);

/// As the wide form; also PRINTS "Error \n" for a missing file.
SCALER_ISP_API int CpNxGetPrivateProfileIntA(const char *section, const char *key, int defaultValue,
                                             const char *fileName);

/// As the wide form.
SCALER_ISP_API int CpNxWritePrivateProfileStringA(const char *section, const char *key,
                                                  const char *value, const char *fileName);

#endif
