#ifndef SCALER_ISP_SETTINGS_INI_TEXT_H
#define SCALER_ISP_SETTINGS_INI_TEXT_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "scaler_isp/common/TextFileEncoding.h"

/// The lines of an INI text, and the writer's rules applied to one section of them. The lines that
/// are added are all at the end of the section's first occurrence.
class IniText {
  public:
    /// \param text    as decoded; must outlive the object, as must the encoding.
    /// \param writes  how many are to be expected. For more than one, keys are found by an index;
    /// REQUIRES then: section and keys are ASCII without "=", newline and space at either end.
    IniText(const TextFileEncoding &encoding, std::string_view text, std::string_view section,
            std::size_t writes);

    /// One write by the letter of the rules in ProfileStore.h.
    void Write(std::string_view key, std::string_view value);

    /// Whether the next write would find these lines if the file were written and read again. False
    /// after a write that changes how the file is decoded or divided into lines.
    bool IsAsReadAgain() const {
        return m_isAsReadAgain;
    }

    /// The complete text.
    std::string Text() const;

  private:
    static constexpr std::size_t kNone = std::string_view::npos;

    struct Line {
        std::string_view text;    ///< without the value that was written
        std::size_t keySize;      ///< kNone if the line has no "="
        std::string_view value;   ///< that was written
        std::size_t write = 0;    ///< the write that set the value, counted from 1
        std::size_t next = kNone; ///< the next line with the same key; only with an index
    };
    struct Section {
        std::size_t header;
        std::size_t end; ///< the first line after the header without "=", or the end of the file
    };
    /// Where a key is.
    struct Lines {
        std::size_t first = kNone; ///< of m_lines, with an index
        std::size_t added = kNone; ///< of m_added
    };

    void FindSections();
    void IndexKeys();
    Lines Find(std::string_view key) const;
    std::size_t FindInSection(const Section &section, std::string_view key,
                              std::size_t &first) const;
    void WriteAdded(std::size_t line, std::string_view key, std::string_view value);
    void SetValue(Line &line, std::string_view value);
    void CheckWritten(const Line &line);
    bool IsUnreadable(const Line &line) const;
    void AppendLine(const Line &line, std::string &text) const;
    void AppendAdded(std::string &text) const;
    std::string_view Keep(std::string text);

    const TextFileEncoding &m_encoding;
    const std::string m_header;
    const bool m_hasIndex;
    std::vector<Line> m_lines;
    std::vector<Section> m_sections;
    std::vector<Line> m_added;
    std::unordered_map<std::string_view, Lines> m_index;
    std::deque<std::string> m_kept; ///< what the lines refer to, but for the text
    std::size_t m_keptSize = 0;
    std::size_t m_textSize;
    std::size_t m_writes = 0;
    std::size_t m_unreadable = 0; ///< lines that the encoding cannot read
    bool m_isAsReadAgain = true;
};

#endif
