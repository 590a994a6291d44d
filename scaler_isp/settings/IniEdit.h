#ifndef SCALER_ISP_SETTINGS_INI_EDIT_H
#define SCALER_ISP_SETTINGS_INI_EDIT_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "scaler_isp/common/TextFileEncoding.h"

/// A key to write, without NUL.
struct IniWrite {
    std::wstring_view key;
    std::wstring_view value;
};
/// If there are several, section and keys are ASCII without "=", newline and space at either end.
using IniWrites = std::span<const IniWrite>;

/// The bytes of a settings file after all writes, one after the other, as if each had read the file
/// again. RETURNS how many could be expressed in the encoding; the others change nothing.
std::size_t EditIniBytes(TextFileEncoding &encoding, const std::string &before,
                         std::wstring_view section, IniWrites writes, std::string &after);

/// How many of the writes the encoding can express, each tried on the file as it is.
std::size_t CountPossibleWrites(TextFileEncoding &encoding, const std::string &file,
                                IniWrites writes);

/// The same for a file, which is replaced once. Throws CallFailure or std::bad_alloc.
/// PRINTS "Open file error \n" for every write that was possible if the file cannot be opened for
/// writing. RETURNS 1 if the file was written, else 0, and it is as it was.
int EditIniFile(const std::string &path, TextFileEncoding::Charset charset,
                std::wstring_view section, IniWrites writes);

#endif
