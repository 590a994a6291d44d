#ifndef SCALER_ISP_SETTINGS_INI_READER_H
#define SCALER_ISP_SETTINGS_INI_READER_H

#include <string>
#include <string_view>

#include "scaler_isp/common/TextFileEncoding.h"

/// A settings file, read once. The rules are those of ProfileStore.h.
class IniReader {
  public:
    using Charset = TextFileEncoding::Charset;

    /// How a search ended.
    enum class Result {
        Found,
        EndOfSection, ///< at a line without "="
        EndOfFile,    ///< without the section, or inside it; an overlong line is an end, too
        NoFile        ///< that can be opened
    };

    /// A file that cannot be opened is empty. Throws CallFailure or std::bad_alloc if the reason is
    /// not the path (IsErrorOfPath), or if the file cannot be read to its end.
    /// \param path  the narrow name, as open() accepts it
    explicit IniReader(const std::string &path, Charset charset = Charset::Environment);

    /// \param value  set if the key is found
    Result Find(std::wstring_view section, std::wstring_view key, std::wstring &value) const;

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
