#ifndef SCALER_ISP_SETTINGS_INI_TEXT_H
#define SCALER_ISP_SETTINGS_INI_TEXT_H

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/common/TextFileEncoding.h"
#include "scaler_isp/settings/KeyIndex.h"

/// The lines of an INI text, to which writes of one section are applied. Many writes have a linear
/// cost, because after some of them keys are found by an index.
class IniText {
  public:
    /// \param text  the decoded text; must outlive the object, as must the encoding.
    /// \param section  REQUIRES for several writes: section and keys are ASCII without "=",
    ///                 newline, or a space at either end.
    IniText(const TextFileEncoding &encoding, std::string_view text, std::string_view section);

    /// Performs one write exactly by the rules in ProfileStore.h.
    void Write(std::string_view key, std::string_view value);

    /// Whether encoding the text and decoding it again would give the same lines.
    bool IsDecodedTheSame() const;

    /// The complete text.
    std::string Text() const;

  private:
    static constexpr std::size_t kNone = KeyIndex::kNone;

    struct Line {
        std::string_view text;    ///< without a value that was written
        std::size_t keySize;      ///< kNone if the line has no "="
        std::string_view value;   ///< the written value
        std::size_t write = 0;    ///< the write that set the value, counted from 1
        std::size_t next = kNone; ///< the next line with the same key; only with an index
    };
    struct Section {
        std::size_t header;
        std::size_t end; ///< the first line after the header without "=", or the end of the file
    };

    bool Divide(std::string_view text, std::vector<Line> &lines) const;
    void FindSections();
    void IndexKeys();
    void IndexAdded(std::size_t number);
    KeyIndex::Entry Find(std::string_view key);
    std::size_t FindInSection(const Section &section, KeyIndex::Entry &entry) const;
    void WriteAdded(const KeyIndex::Entry &entry, std::string_view value);
    void SetValue(Line &line, std::string_view value);
    void CheckWritten(const Line &line);
    void ReadWrittenLines();
    bool DivideAdded();
    void DivideAll();
    bool IsUndecodable(const Line &line) const;
    void Add(const Line &line);
    template <class Visit> void ForEachLine(Visit visit) const;
    std::string_view Store(std::string_view text, std::string_view more = {});

    const TextFileEncoding &m_encoding;
    const std::string m_header;
    std::vector<Line> m_lines;
    std::vector<Section> m_sections;
    std::vector<Line> m_added;   ///< at the end of the first section
    std::vector<Line> m_divided; ///< after the added ones, in reverse order: they end the section
    KeyIndex m_index;
    bool m_hasIndex = false;
    std::size_t m_searches = 0;        ///< without an index
    std::deque<std::string> m_storage; ///< strings that the lines refer to, in addition to the text
    std::size_t m_storageSize = 0;
    std::size_t m_textSize;
    std::size_t m_writes = 0;
    std::size_t m_undecodable = 0; ///< number of lines that the encoding cannot decode
    bool m_valuesAreLines = true;  ///< no written value must be divided into lines
    bool m_valuesRoundTrip = true; ///< all written values survive encoding and decoding
};

#endif
