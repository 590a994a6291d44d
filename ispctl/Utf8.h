#ifndef ISPCTL_UTF8_H
#define ISPCTL_UTF8_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ispctl {

/// The first character of a string.
struct FirstCharacter {
    char32_t value = 0;
    std::size_t length = 0; ///< UNITS: bytes; 0: no valid character starts there
};

/// REQUIRES: bytes is not empty.
FirstCharacter DecodeFirst(std::string_view bytes);

/// Converts UTF-8 to 32-bit characters. RETURNS nothing for invalid bytes, which include overlong
/// forms, surrogates and values above 0x10FFFF.
std::optional<std::wstring> WideFromUtf8(std::string_view bytes);

/// A string in which everything that is not a character is escaped.
struct EscapedText {
    std::string text;     ///< valid UTF-8
    bool escaped = false; ///< true: \xNN is a byte, \x{N} a value that is not a character,
                          ///< and \\ one backslash
};

/// RETURNS the bytes unchanged if they are valid UTF-8, otherwise escaped.
EscapedText EscapeBytes(std::string_view bytes);

/// RETURNS the characters as UTF-8; surrogates and values above 0x10FFFF are escaped.
EscapedText EscapeWide(std::wstring_view text);

/// RETURNS how many bytes at the end are the start of an incomplete character: 0 to 3.
std::size_t UnfinishedTail(std::string_view bytes);

} // namespace ispctl

#endif
