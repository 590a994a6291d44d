#ifndef SCALER_ISP_SETTINGS_INI_READER_H
#define SCALER_ISP_SETTINGS_INI_READER_H

#include <string>
#include <string_view>

#include "scaler_isp/common/TextFileEncoding.h"

/// How a search for a key ended.
enum class IniResult {
    Found,
    EndOfSection, ///< at a line without "="
    EndOfFile,    ///< without the section, or inside it; an overlong line is an end, too
    NoFile        ///< that can be opened
};

/// Searches a text as the encoding has decoded it. The rules are those of ProfileStore.h.
/// \param value  set if the key is found
IniResult FindIniValue(const TextFileEncoding &encoding, std::string_view text,
                       std::wstring_view section, std::wstring_view key, std::wstring &value);

/// A settings file, read once.
class IniReader {
  public:
    using Charset = TextFileEncoding::Charset;

    /// A file that cannot be opened is empty. Throws CallFailure or std::bad_alloc if the reason is
    /// not the path (IsErrorOfPath), or if the file cannot be read to its end.
    /// \param path  the narrow name, as open() accepts it
    explicit IniReader(const std::string &path, Charset charset = Charset::Environment);

    /// \param value  set if the key is found
    IniResult Find(std::wstring_view section, std::wstring_view key, std::wstring &value) const;

    /// The value; empty if the key is not found.
    std::wstring String(std::wstring_view section, std::wstring_view key) const;

    /// As CpNxGetPrivateProfileIntW.
    int Number(std::wstring_view section, std::wstring_view key, int defaultValue) const;

  private:
    TextFileEncoding m_encoding;
    bool m_opened = true;
    std::string m_text;
};

#endif
