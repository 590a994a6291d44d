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
/// REQUIRES for several writes: section and keys are ASCII without "=", newline, or a space at
/// either end.
using IniWrites = std::span<const IniWrite>;

/// Applies all writes to the bytes of a settings file, with the same result as if each had read and
/// replaced the file. RETURNS how many the encoding can express; the others change nothing.
std::size_t EditIniBytes(TextFileEncoding &encoding, const std::string &before,
                         std::wstring_view section, IniWrites writes, std::string &after);

/// Counts the writes that the encoding can express, each tested with the unchanged file.
std::size_t CountEncodableWrites(TextFileEncoding &encoding, const std::string &file,
                                 IniWrites writes);

/// The same for a file, which is replaced only once. Throws CallFailure or std::bad_alloc.
/// PRINTS "Open file error \n" for every encodable write if the file cannot be opened for writing.
/// RETURNS 1 if the file was written; otherwise 0, and the file is unchanged.
int EditIniFile(const std::string &path, TextFileEncoding::Charset charset,
                std::wstring_view section, IniWrites writes);

#endif
