#ifndef SCALER_ISP_TESTS_UNIT_SETTINGS_REFERENCE_PROFILE_H
#define SCALER_ISP_TESTS_UNIT_SETTINGS_REFERENCE_PROFILE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// The INI rules a second time, slow and plain, to hold the library against. Shares nothing with
/// it.
namespace reference {

/// How the bytes of a file are taken.
enum class Encoding { Bytes, Utf8 };

/// UTF-8 to characters; nothing for bytes that are no UTF-8.
std::optional<std::wstring> DecodeUtf8(const std::string &bytes);

/// The lines of a file as they are before trimming.
std::vector<std::wstring> Lines(const std::string &bytes, Encoding encoding);

struct Read {
    unsigned int result;
    std::optional<std::wstring> buffer; ///< nothing where the buffer was not touched
    bool operator==(const Read &other) const {
        return result == other.result && buffer == other.buffer;
    }
};
Read GetString(const std::string &bytes, Encoding encoding, const std::wstring &section,
               const std::wstring &key, const std::wstring &defaultValue);

/// The bytes after a write; nothing where a character cannot be expressed.
std::optional<std::string> Write(const std::string &bytes, Encoding encoding,
                                 const std::wstring &section, const std::wstring &key,
                                 const std::wstring &value);

/// Every file of up to `count` of the lines.
std::vector<std::string> SmallFiles(std::size_t count, const std::vector<std::string> &lines);

} // namespace reference

#endif
