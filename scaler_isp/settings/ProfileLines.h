#ifndef SCALER_ISP_SETTINGS_PROFILE_LINES_H
#define SCALER_ISP_SETTINGS_PROFILE_LINES_H

#include <cstddef>
#include <string>
#include <string_view>

/// How an INI text falls into lines: what the reader and the writer have in common.

/// UNITS: characters of a line, without its line feed.
constexpr std::size_t kProfileLineLimit = 1023;

/// The text without leading and trailing blanks (the space character, nothing else).
template <class Char> std::basic_string_view<Char> TrimBlanks(std::basic_string_view<Char> text) {
    while (!text.empty() && text.front() == Char(' ')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == Char(' ')) {
        text.remove_suffix(1);
    }
    return text;
}

/// The position of the last "=". Looks from the front, where the search is fast and the first one
/// is mostly the last.
template <class Char> std::size_t FindLastEquals(std::basic_string_view<Char> line) {
    std::size_t last = line.find(Char('='));
    for (std::size_t next = last; next != line.npos; next = line.find(Char('='), last + 1)) {
        last = next;
    }
    return last;
}

/// "[section]"
template <class Char> std::basic_string<Char> ProfileHeader(std::basic_string_view<Char> section) {
    std::basic_string<Char> header;
    header.reserve(section.size() + 2);
    header += Char('[');
    header += section;
    header += Char(']');
    return header;
}

/// Walks over the lines of a text, which must outlive the lines. The last line needs no line feed,
/// and there is no empty line behind the last line feed. A line is cut at its first NUL, which
/// counts for the limit like any character.
template <class Char> class ProfileLineReader {
  public:
    using View = std::basic_string_view<Char>;

    explicit ProfileLineReader(View text)
        : m_rest(text), m_hasNul(text.find(Char('\0')) != View::npos) {}

    /// Takes the next line, trimmed. False at the end, and a line over the limit is the end.
    bool Next(View &line) {
        std::size_t size = m_rest.substr(0, kProfileLineLimit + 1).find(Char('\n'));
        if (size == View::npos) {
            if (m_rest.empty() || m_rest.size() > kProfileLineLimit) {
                return false;
            }
            size = m_rest.size();
        }
        line = m_rest.substr(0, size);
        if (m_hasNul) {
            line = line.substr(0, line.find(Char('\0')));
        }
        line = TrimBlanks(line);
        m_rest.remove_prefix(size < m_rest.size() ? size + 1 : size);
        return true;
    }

    /// Whether the end was a line over the limit.
    bool StoppedEarly() const {
        return !m_rest.empty();
    }

  private:
    View m_rest;
    bool m_hasNul; ///< asked once for all lines, since hardly any text has one
};

#endif
