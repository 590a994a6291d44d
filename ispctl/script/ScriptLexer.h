#ifndef ISPCTL_SCRIPT_SCRIPT_LEXER_H
#define ISPCTL_SCRIPT_SCRIPT_LEXER_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ispctl {

/// An error in a script text and its position. Lines and columns count from 1; a column is a
/// character, as editors count.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(std::size_t line, std::size_t column, const std::string &text)
        : std::runtime_error(text), m_line(line), m_column(column) {}

    std::size_t Line() const {
        return m_line;
    }
    std::size_t Column() const {
        return m_column;
    }

  private:
    std::size_t m_line;
    std::size_t m_column;
};

/// One token of a script text.
struct ScriptToken {
    enum class Kind { End, Newline, Name, Number, Punctuation };

    Kind kind = Kind::End;
    std::string_view text;
    std::uint32_t number = 0; ///< of a Number
    std::size_t line = 1;
    std::size_t column = 1;

    bool Is(char sign) const {
        return kind == Kind::Punctuation && text.front() == sign;
    }
    [[noreturn]] void Fail(const std::string &reason) const {
        throw ScriptError(line, column, reason);
    }
};

/// Splits a script text into tokens. Comments are /* */ and //, as in the byte lists of the C++
/// API. Throws ScriptError.
class ScriptLexer {
  public:
    explicit ScriptLexer(std::string_view text);

    const ScriptToken &Current() const {
        return m_token;
    }
    /// RETURNS the current token and advances to the next.
    ScriptToken Next();

  private:
    void ReadToken();
    void SkipWhitespace();
    void SkipBlockComment();
    void Advance(std::size_t bytes);
    char At(std::size_t offset) const {
        return m_pos + offset < m_text.size() ? m_text[m_pos + offset] : '\0';
    }

    std::string_view m_text;
    std::size_t m_pos = 0;
    std::size_t m_line = 1;
    std::size_t m_column = 1;
    ScriptToken m_token;
};

} // namespace ispctl

#endif
