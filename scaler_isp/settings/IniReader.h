#ifndef SCALER_ISP_SETTINGS_INI_READER_H
#define SCALER_ISP_SETTINGS_INI_READER_H

#include <string>
#include <string_view>

#include "scaler_isp/common/TextFileEncoding.h"

/// How a search for a key ended.
enum class IniResult {
    Found,
    EndOfSection, ///< at a line without "="
    EndOfFile,    ///< or at an overlong line, before or inside the section
    NoFile        ///< the file cannot be opened
};

/// Searches a decoded text by the rules of ProfileStore.h.
/// \param value  set if the key is found
IniResult FindIniValue(const TextFileEncoding &encoding, std::string_view text,
                       std::wstring_view section, std::wstring_view key, std::wstring &value);

/// Looks up one key of a file, and reads no more of the file than that takes. Throws CallFailure or
/// std::bad_alloc if the cause is not the path (IsErrorOfPath), or if the file cannot be read as
/// far as the key.
/// \param path   the path in the system's form, as for open()
/// \param value  set if the key is found
IniResult FindInFile(const std::string &path, TextFileEncoding::Charset charset,
                     std::wstring_view section, std::wstring_view key, std::wstring &value);

/// A settings file, read once for many keys.
class IniReader {
  public:
    /// A file that cannot be opened counts as empty. Throws CallFailure or std::bad_alloc if the
    /// cause is not the path, or if the file cannot be read to its end.
    /// \param path  the path in the system's form, as for open()
    explicit IniReader(const std::string &path);

    /// The value, or the empty string if the key is not found.
    std::wstring String(std::wstring_view section, std::wstring_view key) const;

    /// As CpNxGetPrivateProfileIntW.
    int Number(std::wstring_view section, std::wstring_view key, int defaultValue) const;

  private:
    TextFileEncoding m_encoding;
    std::string m_text;
};

#endif
