#ifndef SCALER_ISP_SIMULATOR_COMMON_TEXT_H
#define SCALER_ISP_SIMULATOR_COMMON_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace virtual_scaler {

/// Text of a record's field, at most `bound` characters: a full field has no terminator.
/// RETURNS UTF-8; what is no character becomes U+FFFD.
std::string FromWide(const wchar_t *field, std::size_t bound);
std::string FromNarrow(const char *field, std::size_t bound);

/// UTF-8 to wide characters; bytes that are no UTF-8 become U+FFFD each.
std::wstring ToWide(std::string_view utf8);

/// printf into a string.
__attribute__((format(printf, 1, 2))) std::string Format(const char *format, ...);

/// The text in double quotes, on one line: quotes, backslashes and control characters are escaped.
std::string Quoted(std::string_view text);

/// Two upper-case hexadecimal digits a byte, separated by blanks.
std::string HexBytes(const std::uint8_t *bytes, std::size_t count);

/// Without blanks, tabs and line ends at both ends.
std::string_view Trimmed(std::string_view text);

/// Calls line(number, text) for each line that is neither empty nor a comment (#). Numbers begin at
/// 1; the text has no blanks at its ends.
template <class Function> void ForEachLine(std::string_view text, Function &&line) {
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view whole = text.substr(0, text.find('\n'));
        const std::string_view content = Trimmed(whole);
        if (!content.empty() && content.front() != '#') {
            line(number, content);
        }
        text.remove_prefix(whole.size() < text.size() ? whole.size() + 1 : text.size());
    }
}

/// A whole number, decimal or with 0x. RETURNS false for anything else and above `maximum`.
bool ParseNumber(std::string_view text, std::uint32_t maximum, std::uint32_t &number);

} // namespace virtual_scaler

#endif
