#include "scaler_isp/settings/IniText.h"

#include <algorithm>
#include <utility>

#include "scaler_isp/settings/IniLines.h"

namespace {

/// Creating an index costs about as much as this many searches.
constexpr std::size_t kSearchesWithoutIndex = 16;
constexpr std::size_t kBlockBytes = std::size_t{16} * 1024;

} // namespace

IniText::IniText(const TextFileEncoding &encoding, std::string_view text, std::string_view section)
    : m_encoding(encoding), m_header(IniHeader(section)), m_textSize(text.size()) {
    Divide(text, m_lines);
    FindSections();
}

/// Appends the lines of a text. False if it stopped at a line over the limit.
bool IniText::Divide(std::string_view text, std::vector<Line> &lines) const {
    IniLineReader reader(m_encoding, text);
    std::string_view line;
    while (reader.Next(line)) {
        lines.push_back({line, line.find('='), {}});
    }
    return reader.IsAtEnd();
}

void IniText::FindSections() {
    m_undecodable = 0;
    m_sections.clear();
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        m_undecodable += IsUndecodable(m_lines[i]) ? 1U : 0U;
        if (m_lines[i].text == m_header) {
            std::size_t end = i + 1;
            while (end < m_lines.size() && m_lines[end].keySize != kNone) {
                ++end;
            }
            m_sections.push_back({i, end});
        }
    }
}

/// Backwards, so that the first line of a key is entered last.
void IniText::IndexKeys() {
    for (std::size_t left = m_sections.size(); left > 0; --left) {
        const Section &section = m_sections[left - 1];
        for (std::size_t i = section.end - 1; i > section.header; --i) {
            std::size_t &first = m_index[m_lines[i].text.substr(0, m_lines[i].keySize)].line;
            m_lines[i].next = std::exchange(first, i);
        }
    }
    m_hasIndex = true;
    for (std::size_t i = 0; i < m_added.size(); ++i) {
        IndexAdded(i);
    }
}

/// Of several lines with the same key the first wins.
void IniText::IndexAdded(std::size_t number) {
    const Line &line = m_added[number];
    std::size_t &added = m_index[line.text.substr(0, line.keySize)].added;
    added = std::min(added, number);
}

// QUIRK Header_that_ends_section_is_skipped: if the key is not found in a section, the line
// that ends the section is skipped, even if it is the same header again.
void IniText::Write(std::string_view key, std::string_view value) {
    if (!m_valuesAreLines) {
        ReadWrittenLines();
    }
    ++m_writes;
    value = Store(value);
    KeyIndex::Entry entry = Find(key);
    if (m_sections.empty()) {
        m_lines.push_back({m_header, m_header.find('='), {}});
        m_sections.push_back({m_lines.size() - 1, m_lines.size()});
    }
    std::size_t from = 0; // earlier lines have been searched
    for (const Section &section : m_sections) {
        if (section.header < from) {
            continue;
        }
        const std::size_t found = FindInSection(section, entry);
        if (found != kNone) {
            SetValue(m_lines[found], value);
            from = found + 1;
            continue;
        }
        from = section.end + 1;
        if (section.header == m_sections.front().header) {
            from -= entry.added != kNone ? 1 : 0;
            WriteAdded(entry, value);
        }
    }
}

KeyIndex::Entry IniText::Find(std::string_view key) {
    if (!m_hasIndex && ++m_searches > kSearchesWithoutIndex) {
        IndexKeys();
    }
    if (m_hasIndex) {
        const KeyIndex::Entry *entry = m_index.Find(key);
        return entry != nullptr ? *entry : KeyIndex::Entry{key};
    }
    const auto added = std::find_if(m_added.begin(), m_added.end(), [key](const Line &line) {
        return line.text.substr(0, line.keySize) == key;
    });
    KeyIndex::Entry entry{key};
    if (added != m_added.end()) {
        entry.added = static_cast<std::size_t>(added - m_added.begin());
    }
    return entry;
}

/// With an index, advances the entry to its first line in the section or after it.
std::size_t IniText::FindInSection(const Section &section, KeyIndex::Entry &entry) const {
    if (m_hasIndex) {
        while (entry.line != kNone && entry.line < section.header) {
            entry.line = m_lines[entry.line].next;
        }
        return entry.line < section.end ? entry.line : kNone;
    }
    for (std::size_t i = section.header + 1; i < section.end; ++i) {
        if (m_lines[i].text.substr(0, m_lines[i].keySize) == entry.key) {
            return i;
        }
    }
    return kNone;
}

void IniText::WriteAdded(const KeyIndex::Entry &entry, std::string_view value) {
    if (entry.added != kNone) {
        SetValue(m_added[entry.added], value);
        return;
    }
    const std::string_view text = Store(entry.key, "=");
    Add({text, entry.key.size(), value, m_writes});
    CheckWritten(m_added.back());
}

void IniText::Add(const Line &line) {
    m_added.push_back(line);
    if (m_hasIndex) {
        IndexAdded(m_added.size() - 1);
    }
}

void IniText::SetValue(Line &line, std::string_view value) {
    m_undecodable -= IsUndecodable(line) ? 1U : 0U;
    // The value begins after the last "=" of a line, which may be within the previous value.
    if (line.value.find('=') != std::string_view::npos) {
        line.text = Store(line.text, TrimEnd(line.value));
    }
    line.text = UpToLastEquals(line.text);
    line.value = value;
    line.write = m_writes;
    CheckWritten(line);
}

void IniText::CheckWritten(const Line &line) {
    m_undecodable += IsUndecodable(line) ? 1U : 0U;
    m_valuesRoundTrip = m_valuesRoundTrip && m_encoding.RoundTrips(line.value);
    m_valuesAreLines = m_valuesAreLines && line.value.find('\n') == std::string_view::npos &&
                       line.text.size() + line.value.size() <= kIniLineLimit;
}

/// Divides the values of the last write into lines, as the next write would read them from the
/// file.
void IniText::ReadWrittenLines() {
    m_valuesAreLines = true;
    if (!DivideAdded()) {
        DivideAll();
    }
}

/// The case of a single added line, without iterating over all lines, so that many such values have
/// a linear cost. RETURNS false, and does nothing, in any other case.
bool IniText::DivideAdded() {
    if (m_sections.size() != 1 || m_added.empty() || m_added.back().write != m_writes) {
        return false;
    }
    std::vector<Line> lines;
    const bool isComplete =
        Divide(Store(Store(m_added.back().text, m_added.back().value), "\n"), lines);
    const auto end = std::find_if(lines.begin(), lines.end(),
                                  [](const Line &line) { return line.keySize == kNone; });
    if (!isComplete || end == lines.begin() ||
        std::any_of(end, lines.end(), [this](const Line &line) { return line.text == m_header; })) {
        return false;
    }
    m_undecodable -= IsUndecodable(m_added.back()) ? 1U : 0U;
    for (const Line &line : lines) {
        m_undecodable += IsUndecodable(line) ? 1U : 0U;
    }
    m_added.back() = lines.front();
    std::for_each(lines.begin() + 1, end, [this](const Line &line) { Add(line); });
    m_divided.insert(m_divided.end(), std::make_reverse_iterator(lines.end()),
                     std::make_reverse_iterator(end));
    return true;
}

/// Needed if a divided value may end the section or begin another one.
void IniText::DivideAll() {
    std::vector<Line> lines;
    lines.reserve(m_lines.size() + m_added.size() + m_divided.size() + 2);
    bool more = true;
    ForEachLine([&](const Line &line) {
        if (more && line.write == m_writes) {
            more = Divide(Store(Store(line.text, line.value), "\n"), lines);
        } else if (more) {
            lines.push_back(line);
        }
    });
    m_lines.swap(lines);
    m_added.clear();
    m_divided.clear();
    m_index.Clear();
    m_hasIndex = false;
    m_searches = 0;
    FindSections();
}

bool IniText::IsUndecodable(const Line &line) const {
    return m_encoding.IsUndecodable() &&
           !(m_encoding.CanDecode(line.text) && m_encoding.CanDecode(line.value));
}

bool IniText::IsDecodedTheSame() const {
    return m_valuesRoundTrip && !(m_encoding.IsUndecodable() && m_undecodable == 0);
}

/// A write trims the lines that it reads, hence the values of earlier writes but not its own.
std::string IniText::Text() const {
    std::string text;
    text.reserve(m_textSize + m_storageSize + m_lines.size() + m_added.size());
    ForEachLine([&](const Line &line) {
        text.append(line.text);
        text.append(line.write == m_writes ? line.value : TrimEnd(line.value)) += '\n';
    });
    return text;
}

template <class Visit> void IniText::ForEachLine(Visit visit) const {
    const auto end = m_sections.empty()
                         ? m_lines.end()
                         : m_lines.begin() + static_cast<std::ptrdiff_t>(m_sections.front().end);
    std::for_each(m_lines.begin(), end, visit);
    std::for_each(m_added.begin(), m_added.end(), visit);
    std::for_each(m_divided.rbegin(), m_divided.rend(), visit);
    std::for_each(end, m_lines.end(), visit);
}

/// Stores strings in large blocks, which is cheaper than one allocation per value.
std::string_view IniText::Store(std::string_view text, std::string_view more) {
    const std::size_t size = text.size() + more.size();
    if (m_storage.empty() || m_storage.back().capacity() - m_storage.back().size() < size) {
        m_storage.emplace_back().reserve(std::max(size, kBlockBytes));
    }
    m_storageSize += size;
    std::string &block = m_storage.back();
    block.append(text).append(more);
    return std::string_view(block).substr(block.size() - size);
}
