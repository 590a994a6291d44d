#include "doctor/SettingText.h"

#include <algorithm>
#include <set>

namespace ispctl::doctor {
namespace {

constexpr std::size_t kLineLimit = 1023;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string_view TrimEnd(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view Trim(std::string_view text) {
    text = TrimEnd(text);
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

bool IsHeader(std::string_view line) {
    return line.size() >= 2 && line.front() == '[' && line.back() == ']';
}

/// Walks over the lines as the reader does.
class Examination {
  public:
    explicit Examination(const CountCharacters &count) : m_count(count) {}

    SettingText Run(std::string_view bytes) {
        if (bytes.starts_with(kUtf8Mark) || bytes.starts_with("\xFF\xFE") ||
            bytes.starts_with("\xFE\xFF")) {
            Add(FindingId::SettingMark);
            bytes.remove_prefix(bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 2);
        }
        CountCarriageReturns(bytes);
        while (!bytes.empty()) {
            ++m_line;
            const std::string_view line = bytes.substr(0, bytes.find('\n'));
            const std::size_t length = line.size() > kLineLimit ? m_count(line) : line.size();
            if (length > kLineLimit) {
                Add(FindingId::SettingLongLine, std::to_string(length));
                break;
            }
            bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
            Examine(line);
        }
        return std::move(m_text);
    }

  private:
    enum class Where { Outside, Section, AfterEnd, RepeatedSection };

    void Add(FindingId id, std::string detail = {}) {
        m_text.findings.push_back({id, m_line, std::move(detail)});
    }

    void CountCarriageReturns(std::string_view bytes) {
        std::size_t count = 0;
        std::size_t first = 0;
        std::size_t line = 1;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool endsLine = i + 1 == bytes.size() || bytes[i + 1] == '\n';
            if (bytes[i] == '\r' && endsLine && ++count == 1) {
                first = line;
            }
            line += bytes[i] == '\n' ? 1U : 0U;
        }
        if (count > 0) {
            m_text.findings.push_back(
                {FindingId::SettingCarriageReturn, first, std::to_string(count)});
        }
    }

    void Examine(std::string_view line) {
        if (const std::size_t nul = line.find('\0'); nul != std::string_view::npos) {
            Add(FindingId::SettingNul);
            line = line.substr(0, nul);
        } else if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        line = Trim(line);
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            ExamineOther(line);
            return;
        }
        const std::string_view after = line.substr(line.rfind('=') + 1);
        const std::string_view key = TrimEnd(line.substr(0, equals));
        if (key.starts_with('\t') || key.ends_with('\t') || Trim(after).starts_with('\t') ||
            after.ends_with('\t')) {
            Add(FindingId::SettingTab);
        }
        ExamineKey(std::string(key), key.size() != equals, std::string(Trim(after)));
        if (m_where == Where::Section && line.rfind('=') != equals) {
            Add(FindingId::SettingEquals);
        }
    }

    // A line without "=" opens a section, or ends one.
    void ExamineOther(std::string_view line) {
        if (!IsHeader(line)) {
            if (IsHeader(Trim(line.substr(0, line.find_last_not_of('\t') + 1)))) {
                Add(FindingId::SettingTab);
            }
            m_where = m_where == Where::Section ? Where::AfterEnd : m_where;
            m_endLine = m_where == Where::AfterEnd && m_endLine == 0 ? m_line : m_endLine;
            return;
        }
        m_section = line.substr(1, line.size() - 2);
        m_sectionLine = m_line;
        m_keys.clear();
        m_endLine = 0;
        const bool isNew = m_sections.insert(m_section).second;
        m_where = isNew ? Where::Section : Where::RepeatedSection;
        if (!isNew) {
            Add(FindingId::SettingSectionRepeated, std::string(line));
        }
    }

    void ExamineKey(const std::string &key, bool spaces, std::string value) {
        switch (m_where) {
        case Where::Outside:
            Add(FindingId::SettingOutside, key);
            return;
        case Where::AfterEnd:
            Add(FindingId::SettingAfterEnd, std::to_string(m_endLine));
            return;
        case Where::RepeatedSection:
            return; // the section itself is reported
        case Where::Section:
            break;
        }
        if (!m_keys.insert(key).second) {
            Add(FindingId::SettingKeyRepeated, key);
            return;
        }
        if (spaces) {
            Add(FindingId::SettingKeySpaces, key);
        }
        m_text.seen.push_back({m_section, key, std::move(value), m_line, m_sectionLine});
    }

    const CountCharacters &m_count;
    SettingText m_text;
    std::size_t m_line = 0;
    std::size_t m_endLine = 0; ///< the line that ended the section; 0: none
    Where m_where = Where::Outside;
    std::string m_section;
    std::size_t m_sectionLine = 0;
    std::set<std::string> m_sections;
    std::set<std::string> m_keys;
};

} // namespace

SettingText ExamineSettings(std::string_view bytes, const CountCharacters &count) {
    return Examination(count).Run(bytes);
}

} // namespace ispctl::doctor
