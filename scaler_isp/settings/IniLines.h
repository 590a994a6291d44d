#ifndef SCALER_ISP_SETTINGS_INI_LINES_H
#define SCALER_ISP_SETTINGS_INI_LINES_H

#include <cstddef>
#include <string>
#include <string_view>

#include "scaler_isp/common/TextFileEncoding.h"

/// How an INI text is divided into lines, shared by the reader and the writer.

/// Longest line that is read. UNITS: characters, without the newline.
constexpr std::size_t kIniLineLimit = 1023;

/// Without trailing spaces.
inline std::string_view TrimEnd(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// Without leading and trailing spaces (U+0020 only).
inline std::string_view Trim(std::string_view text) {
    text = TrimEnd(text);
    return text.substr(text.empty() ? 0 : text.find_first_not_of(' '));
}

/// The text up to and including the last "="; empty if there is none. Searches forward, which is
/// faster, because most lines have only one.
inline std::string_view UpToLastEquals(std::string_view line) {
    std::size_t size = 0;
    for (std::size_t at = line.find('='); at != std::string_view::npos; at = line.find('=', size)) {
        size = at + 1;
    }
    return line.substr(0, size);
}

/// "[section]"
inline std::string IniHeader(std::string_view section) {
    return std::string("[").append(section).append("]");
}

/// Iterates over the lines of a decoded text, which must outlive the lines. The last line needs no
/// newline, and no empty line follows the last newline. A line ends at its first NUL, but the
/// characters after it count towards the limit.
class IniLineReader {
  public:
    IniLineReader(const TextFileEncoding &encoding, std::string_view text)
        : m_encoding(encoding), m_rest(text), m_hasNul(text.find('\0') != std::string_view::npos) {}

    /// Reads the next line, trimmed. False at the end, and at a line over the limit.
    bool Next(std::string_view &line) {
        line = m_rest.substr(0, m_rest.find('\n'));
        const bool overlong =
            line.size() > kIniLineLimit && m_encoding.CountCharacters(line) > kIniLineLimit;
        if (m_rest.empty() || overlong) {
            return false;
        }
        m_rest.remove_prefix(line.size() < m_rest.size() ? line.size() + 1 : line.size());
        line = Trim(m_hasNul ? line.substr(0, line.find('\0')) : line);
        return true;
    }

    /// Whether everything was read; otherwise the next line is over the limit.
    bool IsAtEnd() const {
        return m_rest.empty();
    }

  private:
    const TextFileEncoding &m_encoding;
    std::string_view m_rest;
    bool m_hasNul; ///< tested once for all lines, because hardly any text has a NUL
};

#endif
