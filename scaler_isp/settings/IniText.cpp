#include "scaler_isp/settings/IniText.h"

#include <utility>

#include "scaler_isp/settings/IniLines.h"

IniText::IniText(const TextFileEncoding &encoding, std::string_view text, std::string_view section,
                 std::size_t writes)
    : m_encoding(encoding), m_header(IniHeader(section)), m_hasIndex(writes > 1),
      m_textSize(text.size()) {
    IniLineReader lines(encoding, text);
    std::string_view line;
    while (lines.Next(line)) {
        m_lines.push_back({line, line.find('='), {}});
        m_unreadable += IsUnreadable(m_lines.back()) ? 1U : 0U;
    }
    FindSections();
    if (m_hasIndex) {
        m_index.reserve(m_lines.size() + writes);
        IndexKeys();
        m_isAsReadAgain = encoding.KeepsAscii() && encoding.IsKept(text);
    }
}

void IniText::FindSections() {
    for (std::size_t header = 0; header < m_lines.size(); ++header) {
        if (m_lines[header].text == m_header) {
            std::size_t end = header + 1;
            while (end < m_lines.size() && m_lines[end].keySize != kNone) {
                ++end;
            }
            m_sections.push_back({header, end});
        }
    }
}

/// From the end, so that the first line of a key is entered last.
void IniText::IndexKeys() {
    for (auto section = m_sections.rbegin(); section != m_sections.rend(); ++section) {
        for (std::size_t i = section->end - 1; i > section->header; --i) {
            std::size_t &first = m_index[m_lines[i].text.substr(0, m_lines[i].keySize)].first;
            m_lines[i].next = std::exchange(first, i);
        }
    }
}

// KEPT Header_that_ends_a_section_is_passed_over: the line that ends a section in which the key was
// not found is not looked at again, even if it is the same header.
void IniText::Write(std::string_view key, std::string_view value) {
    ++m_writes;
    value = Keep(std::string(value));
    Lines lines = Find(key);
    if (m_sections.empty()) {
        WriteAdded(lines.added, key, value);
    }
    std::size_t from = 0; // lines in front of it are not looked at again
    for (const Section &section : m_sections) {
        if (section.header < from) {
            continue;
        }
        const std::size_t found = FindInSection(section, key, lines.first);
        if (found != kNone) {
            SetValue(m_lines[found], value);
            from = found + 1;
            continue;
        }
        from = section.end + 1;
        if (section.header == m_sections.front().header) {
            from -= lines.added != kNone ? 1 : 0;
            WriteAdded(lines.added, key, value);
        }
    }
}

IniText::Lines IniText::Find(std::string_view key) const {
    const auto found = m_index.find(key);
    return found != m_index.end() ? found->second : Lines{};
}

/// \param first  a line with the key, from which on the section is searched if there is an index
std::size_t IniText::FindInSection(const Section &section, std::string_view key,
                                   std::size_t &first) const {
    if (m_hasIndex) {
        while (first != kNone && first < section.header) {
            first = m_lines[first].next;
        }
        return first < section.end ? first : kNone;
    }
    for (std::size_t i = section.header + 1; i < section.end; ++i) {
        if (m_lines[i].text.substr(0, m_lines[i].keySize) == key) {
            return i;
        }
    }
    return kNone;
}

void IniText::WriteAdded(std::size_t line, std::string_view key, std::string_view value) {
    if (line != kNone) {
        SetValue(m_added[line], value);
        return;
    }
    const std::string_view text = Keep(std::string(key) + '=');
    m_added.push_back({text, key.size(), value, m_writes});
    CheckWritten(m_added.back());
    if (m_hasIndex) {
        m_index[text.substr(0, key.size())].added = m_added.size() - 1;
    }
}

void IniText::SetValue(Line &line, std::string_view value) {
    m_unreadable -= IsUnreadable(line) ? 1U : 0U;
    if (line.value.find('=') != line.value.npos) {
        line.text = Keep(std::string(line.text).append(TrimEnd(line.value)));
    }
    line.text = UpToLastEquals(line.text);
    line.value = value;
    line.write = m_writes;
    CheckWritten(line);
}

void IniText::CheckWritten(const Line &line) {
    m_unreadable += IsUnreadable(line) ? 1U : 0U;
    const bool becameReadable = m_encoding.IsUnreadable() && m_unreadable == 0;
    const bool overlong =
        line.text.size() + line.value.size() > kIniLineLimit &&
        m_encoding.CountCharacters(line.text) + m_encoding.CountCharacters(line.value) >
            kIniLineLimit;
    m_isAsReadAgain = m_isAsReadAgain && !becameReadable && !overlong &&
                      line.value.find('\n') == line.value.npos && m_encoding.IsKept(line.value);
}

bool IniText::IsUnreadable(const Line &line) const {
    return m_encoding.IsUnreadable() &&
           !(m_encoding.IsReadable(line.text) && m_encoding.IsReadable(line.value));
}

std::string IniText::Text() const {
    std::string text;
    text.reserve(m_textSize + m_keptSize + m_added.size() + m_header.size() + 2);
    const std::size_t end = m_sections.empty() ? m_lines.size() : m_sections.front().end;
    for (std::size_t i = 0; i < end; ++i) {
        AppendLine(m_lines[i], text);
    }
    AppendAdded(text);
    for (std::size_t i = end; i < m_lines.size(); ++i) {
        AppendLine(m_lines[i], text);
    }
    return text;
}

void IniText::AppendAdded(std::string &text) const {
    if (m_sections.empty()) {
        text.append(m_header) += '\n';
    }
    for (const Line &line : m_added) {
        AppendLine(line, text);
    }
}

/// A write trims all lines that it reads: those of the writes before it, but not its own.
void IniText::AppendLine(const Line &line, std::string &text) const {
    text.append(line.text);
    text.append(line.write == m_writes ? line.value : TrimEnd(line.value)) += '\n';
}

std::string_view IniText::Keep(std::string text) {
    m_keptSize += text.size();
    return m_kept.emplace_back(std::move(text));
}
