#include "script/ScriptLexer.h"

#include <charconv>
#include <fmt/format.h>

namespace ispctl {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsNameCharacter(char c) {
    return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

// A leading zero is rejected, because the byte lists of the C++ API read such a number as octal.
std::uint32_t ParseNumber(const ScriptToken &token) {
    std::string_view digits = token.text;
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
        base = 16;
    } else if (digits.size() > 1 && digits.front() == '0') {
        token.Fail(fmt::format("{} has a leading zero; write it without, or in hexadecimal with 0x",
                               digits));
    }
    std::uint32_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error == std::errc::result_out_of_range) {
        token.Fail(fmt::format("{} does not fit in 32 bits", token.text));
    }
    if (error != std::errc() || end != digits.data() + digits.size()) {
        token.Fail(fmt::format("{} is not a number", token.text));
    }
    return number;
}

} // namespace

ScriptLexer::ScriptLexer(std::string_view text, ScriptErrors &errors)
    : m_text(text), m_errors(errors) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    m_text.remove_prefix(m_text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    ReadToken();
}

ScriptToken ScriptLexer::Next() {
    const ScriptToken token = m_token;
    ReadToken();
    return token;
}

void ScriptLexer::Advance(std::size_t bytes) {
    for (; bytes > 0; --bytes, ++m_pos) {
        const char c = m_text[m_pos];
        if (c == '\n') {
            ++m_line;
            m_column = 1;
        } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) { // first byte of a character
            ++m_column;
        }
    }
}

void ScriptLexer::SkipBlockComment() {
    const std::size_t end = m_text.find("*/", m_pos + 2);
    if (end == std::string_view::npos) {
        m_errors.Add({m_line, m_column, "unterminated comment"});
    }
    Advance((end == std::string_view::npos ? m_text.size() : end + 2) - m_pos);
}

void ScriptLexer::SkipWhitespace() {
    while (m_pos < m_text.size()) {
        const char c = At(0);
        if (c == ' ' || c == '\t' || c == '\r') {
            Advance(1);
        } else if (c == '/' && At(1) == '*') {
            SkipBlockComment();
        } else if (c == '/' && At(1) == '/') {
            const std::size_t end = m_text.find('\n', m_pos);
            Advance((end == std::string_view::npos ? m_text.size() : end) - m_pos);
        } else {
            return;
        }
    }
}

void ScriptLexer::SkipCharacter() {
    std::size_t bytes = 1;
    while ((static_cast<unsigned char>(At(bytes)) & 0xC0U) == 0x80U) {
        ++bytes;
    }
    Advance(bytes);
}

void ScriptLexer::ReadToken() {
    SkipWhitespace();
    m_token = {ScriptToken::Kind::End, "", 0, m_line, m_column};
    if (m_pos == m_text.size()) {
        return;
    }
    const char c = At(0);
    std::size_t length = 1;
    if (IsNameCharacter(c)) {
        while (IsNameCharacter(At(length))) {
            ++length;
        }
        m_token.kind = IsDigit(c) ? ScriptToken::Kind::Number : ScriptToken::Kind::Name;
    } else if (c == '\n') {
        m_token.kind = ScriptToken::Kind::Newline;
    } else if (c == ',' || c == '=' || c == '{' || c == '}') {
        m_token.kind = ScriptToken::Kind::Punctuation;
    } else {
        m_errors.Add({m_line, m_column, "unexpected character"});
        m_token.kind = ScriptToken::Kind::Punctuation; // none that a statement accepts
        m_token.text = m_text.substr(m_pos, 1);
        SkipCharacter();
        return;
    }
    m_token.text = m_text.substr(m_pos, length);
    if (m_token.kind == ScriptToken::Kind::Number) {
        try {
            m_token.number = ParseNumber(m_token);
        } catch (const ScriptError &error) {
            m_errors.Add(error);
        }
    }
    Advance(length);
}

} // namespace ispctl
