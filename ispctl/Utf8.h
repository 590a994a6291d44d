#ifndef ISPCTL_UTF8_H
#define ISPCTL_UTF8_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ispctl {

/// The first character of a text.
struct FirstCharacter {
    char32_t value = 0;
    std::size_t length = 0; ///< UNITS: bytes; 0: no valid character begins there
};

/// REQUIRES: bytes is not empty.
FirstCharacter DecodeFirst(std::string_view bytes);

/// UTF-8 to 32-bit characters. RETURNS nothing for invalid bytes: overlong forms, surrogates and
/// numbers above 0x10FFFF are invalid, too.
std::optional<std::wstring> WideFromUtf8(std::string_view bytes);

/// Text in which everything that is no character is written visibly.
struct EscapedText {
    std::string text;     ///< valid UTF-8
    bool escaped = false; ///< true: \xNN stands for a byte, \x{N} for a number that is no
                          ///< character, and \\ for one backslash
};

/// RETURNS the bytes as they are where they are valid UTF-8, else escaped.
EscapedText EscapeBytes(std::string_view bytes);

/// RETURNS the characters as UTF-8; surrogates and numbers above 0x10FFFF are escaped.
EscapedText EscapeWide(std::wstring_view text);

/// RETURNS how many bytes at the end of bytes begin a character that is not complete yet: 0..3.
std::size_t UnfinishedTail(std::string_view bytes);

} // namespace ispctl

#endif
