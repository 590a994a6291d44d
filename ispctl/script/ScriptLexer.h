#ifndef ISPCTL_SCRIPT_SCRIPT_LEXER_H
#define ISPCTL_SCRIPT_SCRIPT_LEXER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "script/ScriptErrors.h"

namespace ispctl {

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
/// API. What is no token is reported and left out; a wrong number is 0.
class ScriptLexer {
  public:
    /// \param errors  must live longer
    ScriptLexer(std::string_view text, ScriptErrors &errors);

    const ScriptToken &Current() const {
        return m_token;
    }
    /// RETURNS the current token and advances to the next.
    ScriptToken Next();

  private:
    void ReadToken();
    void SkipWhitespace();
    void SkipBlockComment();
    void SkipCharacter();
    void Advance(std::size_t bytes);
    char At(std::size_t offset) const {
        return m_pos + offset < m_text.size() ? m_text[m_pos + offset] : '\0';
    }

    std::string_view m_text;
    ScriptErrors &m_errors;
    std::size_t m_pos = 0;
    std::size_t m_line = 1;
    std::size_t m_column = 1;
    ScriptToken m_token;
};

} // namespace ispctl

#endif
