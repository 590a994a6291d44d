#ifndef SCALER_ISP_TESTS_UNIT_COMMON_COMMAND_TEXT_REFERENCE_H
#define SCALER_ISP_TESTS_UNIT_COMMON_COMMAND_TEXT_REFERENCE_H

#include <optional>
#include <string>
#include <vector>

/// A second, slow reader of command text that takes one character after the other.
namespace reference {

struct Token {
    int result = 0;
    std::wstring word;
    std::size_t next = 0; ///< the position after the token
};

Token NextToken(const std::wstring &text, std::size_t pos);

struct Value {
    int result = 0;
    std::optional<unsigned int> number; ///< stored even where no separator follows
    std::size_t next = 0;
};

/// \param defines  null: no names.
Value NextValue(const std::wstring &text, std::size_t pos, const std::wstring *defines);

std::optional<unsigned int> Define(const std::wstring &name, const std::wstring &defines);

/// What a converter returned and which bytes it stored.
struct Bytes {
    int result = 0;
    std::vector<unsigned char> stored;
};

Bytes Commands(const std::wstring &text, std::size_t capacity);
Bytes Edid(const std::wstring &text, std::size_t capacity);

} // namespace reference

#endif
