#include "edid/input/DumpLines.h"

#include <algorithm>

namespace ispctl::edid {
namespace {

constexpr std::string_view kSpaces = " \t\r";
constexpr std::size_t kPairsOfLine = 16;
constexpr std::size_t kMinColonDigits = 2;
constexpr std::size_t kMinPlainDigits = 4;

bool IsComment(std::string_view line) {
    return line.starts_with('#') || line.starts_with("//");
}

/// RETURNS whether a text starts with two hexadecimal digits that are a value.
bool StartsWithPair(std::string_view text) {
    return text.size() >= 2 && IsHex(text.substr(0, 2)) &&
           (text.size() == 2 || kSpaces.find(text[2]) != kSpaces.npos);
}

/// Reads one line from left to right.
class LineReader {
  public:
    /// \param arePairs  whether the values have two digits; nothing: the first one tells
    LineReader(const Token &line, DumpKind kind, std::optional<bool> arePairs)
        : m_line(line), m_kind(kind), m_arePairs(arePairs) {}

    DumpLine Read() {
        DumpLine line;
        line.offset = ReadOffset();
        while (std::size_t spaces = SkipSpaces()) {
            if (m_pos == m_line.text.size() || IsEndOfValues(line.values, spaces)) {
                break;
            }
            line.values.push_back(ReadValue());
        }
        return line;
    }

  private:
    std::string_view Rest() const {
        return m_line.text.substr(m_pos);
    }

    std::size_t SkipSpaces() {
        const std::size_t next = std::min(Rest().find_first_not_of(kSpaces), Rest().size());
        m_pos += next;
        return next;
    }

    Token ReadOffset() {
        SkipSpaces();
        if (Rest().starts_with("0x") || Rest().starts_with("0X")) {
            m_pos += 2;
        } else if (Rest().starts_with('+')) {
            ++m_pos;
        }
        const std::string_view rest = Rest();
        const std::size_t length = static_cast<std::size_t>(
            std::find_if_not(rest.begin(), rest.end(), IsHexDigit) - rest.begin());
        const Token offset{rest.substr(0, length), m_line.offset + m_pos};
        m_pos += length;
        if (m_kind == DumpKind::Colon && Rest().starts_with(':')) {
            ++m_pos;
        } else if (length == 0 || m_kind == DumpKind::Colon) {
            Fail(m_kind == DumpKind::Colon ? "expected an offset and a colon"
                                           : "expected an offset");
        }
        if (m_pos < m_line.text.size() && kSpaces.find(m_line.text[m_pos]) == kSpaces.npos) {
            Fail(QuoteCharacter(m_line.text, m_pos) + " is not a hexadecimal digit");
        }
        return offset;
    }

    Token ReadValue() {
        const std::string_view rest = Rest();
        const std::size_t length = std::min(rest.find_first_of(kSpaces), rest.size());
        for (std::size_t i = 0; i < length; ++i) {
            if (!IsHexDigit(rest[i])) {
                m_pos += i;
                Fail(QuoteCharacter(rest, i) + " is not a hexadecimal digit");
            }
        }
        const Token value{rest.substr(0, length), m_line.offset + m_pos};
        m_pos += length;
        return value;
    }

    /// Tells the characters at the end of a line from its values. Half a line of pairs may be set
    /// off by two spaces.
    bool IsEndOfValues(const std::vector<Token> &values, std::size_t spaces) const {
        if (Rest()[0] == '|' || Rest()[0] == '>') {
            return true;
        }
        if (values.empty() || spaces < 2) {
            return false;
        }
        const bool arePairs = m_arePairs.value_or(values.front().text.size() == 2);
        const bool isHalf =
            arePairs && spaces == 2 && values.size() == kPairsOfLine / 2 && StartsWithPair(Rest());
        if (m_kind == DumpKind::Colon) {
            return !isHalf;
        }
        return arePairs && !isHalf && (spaces > 2 || values.size() >= kPairsOfLine);
    }

    [[noreturn]] void Fail(const std::string &message) const {
        throw SyntaxError(m_line.offset + m_pos, message);
    }

    const Token &m_line;
    DumpKind m_kind;
    std::optional<bool> m_arePairs;
    std::size_t m_pos = 0;
};

bool IsColonDump(std::string_view line) {
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || colon < kMinColonDigits) {
        return false;
    }
    const bool hasPrefix = line.starts_with("0x") || line.starts_with("0X");
    if (!IsHex(line.substr(hasPrefix ? 2 : 0, colon - (hasPrefix ? 2 : 0)))) {
        return false;
    }
    const auto values = Split(line.substr(colon + 1), 0, kSpaces);
    // Without a space after it, the colon separates bytes.
    return line.size() > colon + 1 && kSpaces.find(line[colon + 1]) != kSpaces.npos &&
           !values.empty() && values.front().text.find(':') == std::string_view::npos;
}

bool IsPlainDump(std::string_view line) {
    const auto parts = Split(line, 0, kSpaces);
    if (parts.size() < 2) {
        return false;
    }
    std::string_view offset = parts[0].text;
    offset.remove_prefix(offset.starts_with('+') ? 1 : offset.starts_with("0x") ? 2 : 0);
    return offset.size() >= kMinPlainDigits &&
           offset.find_first_not_of('0') == std::string_view::npos &&
           !parts[1].text.starts_with("0x");
}

} // namespace

DumpKind DetectDump(std::string_view text) {
    for (const Token &token : SplitLines(text)) {
        const std::string_view line = TrimSpaces(token.text);
        if (line.empty() || IsComment(line)) {
            continue;
        }
        return IsColonDump(line)   ? DumpKind::Colon
               : IsPlainDump(line) ? DumpKind::Plain
                                   : DumpKind::None;
    }
    return DumpKind::None;
}

std::vector<DumpLine> ReadDumpLines(std::string_view text, DumpKind kind) {
    std::vector<DumpLine> lines;
    bool star = false;
    std::optional<bool> arePairs;
    for (const Token &token : SplitLines(text)) {
        const std::string_view trimmed = TrimSpaces(token.text);
        if (trimmed == "*") {
            star = true;
        } else if (!trimmed.empty() && !IsComment(trimmed)) {
            lines.push_back(LineReader(token, kind, arePairs).Read());
            if (!arePairs && !lines.back().values.empty()) {
                arePairs = lines.back().values.front().text.size() == 2;
            }
            lines.back().followsStar = star;
            star = false;
        }
    }
    return lines;
}

} // namespace ispctl::edid
