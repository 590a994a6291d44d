#ifndef SCALER_ISP_SIMULATOR_COMMON_TEXT_H
#define SCALER_ISP_SIMULATOR_COMMON_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace virtual_scaler {

/// Converts a record's field, at most `bound` characters: a full field has no terminator.
/// RETURNS UTF-8; values that are not characters become U+FFFD.
std::string FromWide(const wchar_t *field, std::size_t bound);
std::string FromNarrow(const char *field, std::size_t bound);

/// Converts UTF-8 to wide characters; each invalid byte becomes U+FFFD.
std::wstring ToWide(std::string_view utf8);

/// printf into a string.
__attribute__((format(printf, 1, 2))) std::string Format(const char *format, ...);

/// RETURNS the text in double quotes on one line, with quotes, backslashes and control characters
/// escaped.
std::string Quoted(std::string_view text);

/// RETURNS two upper-case hexadecimal digits per byte, separated by spaces.
std::string HexBytes(const std::uint8_t *bytes, std::size_t count);

/// RETURNS the text without spaces, tabs and newlines at both ends.
std::string_view Trimmed(std::string_view text);

/// Calls visit(number, text) for each line that is neither empty nor a comment (#). Lines are
/// numbered from 1; the text is trimmed.
template <class Function> void ForEachLine(std::string_view text, Function &&visit) {
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::string_view content = Trimmed(line);
        if (!content.empty() && content.front() != '#') {
            visit(number, content);
        }
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : text.size());
    }
}

/// Parses an integer, decimal or hexadecimal with 0x. RETURNS false for anything else, or if it is
/// greater than `maximum`.
bool ParseNumber(std::string_view text, std::uint32_t maximum, std::uint32_t &number);

} // namespace virtual_scaler

#endif
