#ifndef ISPCTL_EDID_INPUT_SOURCE_TEXT_H
#define ISPCTL_EDID_INPUT_SOURCE_TEXT_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl::edid {

/// Text that is not what its form requires; thrown by the parsers of the forms.
class SyntaxError : public std::runtime_error {
  public:
    /// \param offset  of the bad character in the text
    SyntaxError(std::size_t offset, const std::string &message)
        : std::runtime_error(message), m_offset(offset), m_message(message) {}

    std::size_t Offset() const {
        return m_offset;
    }
    /// As what(), which ends at a NUL of the text.
    const std::string &Message() const {
        return m_message;
    }

  private:
    std::size_t m_offset;
    std::string m_message;
};

/// UNITS: lines and characters, both from 1.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;
};
Position LineAndColumn(std::string_view text, std::size_t offset);

/// A part of a text, which knows where it is.
struct Token {
    std::string_view text;
    std::size_t offset = 0;
};

/// RETURNS the parts between separators.
/// \param offset  of text in the complete text
std::vector<Token> Split(std::string_view text, std::size_t offset, std::string_view separators);

/// RETURNS the lines without their newlines, empty ones included.
std::vector<Token> SplitLines(std::string_view text);

std::string_view TrimSpaces(std::string_view text);
bool IsHexDigit(char c);
unsigned int HexValue(char digit);
/// RETURNS whether there is at least one character and all are hexadecimal digits.
bool IsHex(std::string_view text);

/// RETURNS the text with spaces in place of all comments, so that offsets stay: /* */, and // and #
/// to the end of the line.
std::string BlankComments(std::string_view text);

/// RETURNS the character at an offset in quotes, as it is named in messages.
std::string QuoteCharacter(std::string_view text, std::size_t offset);

/// RETURNS text without a byte order mark and as UTF-8, if it has one of UTF-8 or UTF-16; nothing
/// if there is a mark of UTF-16, but the rest is not text.
std::optional<std::string> WithoutByteOrderMark(std::string_view content);

} // namespace ispctl::edid

#endif
