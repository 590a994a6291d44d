#include "scaler_isp/settings/FwBankEdit.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "scaler_isp/settings/ProfileEdit.h"
#include "scaler_isp/settings/ProfileLines.h"

namespace {

using Value = FwBankKeys::Value;

/// All writes in one walk over the lines. What one write puts down is never of concern for another
/// but for this: its line is trimmed when the next one reads it.
class FwBankPass {
  public:
    FwBankPass(NativeEncoding &encoding, const FwBankKeys &keys, const std::string &before)
        : m_encoding(encoding), m_keys(keys), m_form(encoding.Take(before)), m_lines(before),
          m_seen(keys.Count()) {
        m_text.reserve(before.size() + before.size() / 8);
    }

    /// False where it is not certain that the result is that of single writes.
    bool Run() {
        std::string header = "[";
        if (!m_encoding.KeepsFile() ||
            m_encoding.AppendKept(FwBankKeys::kSection, header) != TextFate::Kept) {
            return false;
        }
        header += ']';
        CopyLines(header);
        if (m_sections == 0) {
            PutLine(header);
            EndSection();
        }
        // The limit is one of characters, so with longer ones a line may be longer in bytes.
        return m_certain && (m_form == FileForm::OneByteEach || !m_lines.StoppedEarly());
    }

    std::string &Text() {
        return m_text;
    }

    std::size_t Written() const {
        return m_keys.Count() - m_impossible;
    }

  private:
    void CopyLines(std::string_view header) {
        bool inSection = false;
        std::string_view line;
        while (m_lines.Next(line)) {
            const std::size_t equals = inSection ? line.find('=') : 0;
            if (inSection && equals != std::string_view::npos) {
                PutKeyLine(line, equals);
                continue;
            }
            if (inSection) {
                EndSection();
                // Only a write that did not find its key passes over the line that ends a section.
                m_certain = m_certain && line != header;
            }
            PutLine(line);
            inSection = line == header;
            if (inSection) {
                m_seen.assign(m_keys.Count(), false);
            }
        }
        if (inSection) {
            EndSection();
        }
    }

    /// Keys that are missing are added to the first section.
    void EndSection() {
        for (std::size_t i = 0; m_sections == 0 && i < m_keys.Count(); ++i) {
            if (!m_seen[i] && m_keys.FirstOfName(i) == i) {
                const std::size_t begin = m_text.size();
                m_keys.AppendName(i, m_text);
                m_text += '=';
                PutValue(i, begin, {});
            }
        }
        ++m_sections;
    }

    void PutKeyLine(std::string_view line, std::size_t equals) {
        const std::size_t index = m_keys.Find(line.substr(0, equals));
        if (index == FwBankKeys::kNone || m_seen[index]) {
            PutLine(line);
            return;
        }
        m_seen[index] = true;
        const std::size_t begin = m_text.size();
        m_text += line.substr(0, FindLastEquals(line) + 1);
        PutValue(index, begin, line);
    }

    /// Completes the line that starts at `begin`; where the value is impossible, it becomes
    /// `former`.
    void PutValue(std::size_t index, std::size_t begin, std::string_view former) {
        const std::size_t value = m_text.size();
        switch (AppendValue(m_keys.LastOfName(index), m_text)) {
        case TextFate::Kept:
            break;
        case TextFate::Impossible:
            m_impossible += m_sections == 0 ? 1U : 0U;
            m_text.resize(begin);
            if (former.data() != nullptr) {
                PutLine(former);
            }
            return;
        case TextFate::Unknown:
            m_certain = false;
            break;
        }
        // An earlier write of the name may have had a longer number.
        const std::size_t longest = std::max(m_text.size(), value + kLongestDecimal);
        m_certain = m_certain && m_text.find('\n', value) == std::string::npos &&
                    longest - begin <= kProfileLineLimit;
        // Where the last write is not possible, the one before it is a number.
        while (index + 1 != m_keys.Count() && m_text.back() == ' ') {
            m_text.pop_back();
        }
        m_text += '\n';
    }

    TextFate AppendValue(std::size_t index, std::string &text) const {
        const Value value = m_keys.ValueOf(index);
        if (const int *number = std::get_if<int>(&value)) {
            AppendDecimal(*number, text);
            return TextFate::Kept;
        }
        return m_encoding.AppendKept(*std::get_if<std::wstring_view>(&value), text);
    }

    void PutLine(std::string_view line) {
        m_text += line;
        m_text += '\n';
    }

    const NativeEncoding &m_encoding;
    const FwBankKeys &m_keys;
    FileForm m_form;
    ProfileLineReader<char> m_lines;
    std::string m_text;
    std::size_t m_sections = 0; ///< that have ended
    std::vector<bool> m_seen;   ///< keys that the section has
    std::size_t m_impossible = 0;
    bool m_certain = true;
};

/// Hands every key over as a write of its own. RETURNS how many of the writes were possible.
template <class Write> std::size_t ForEachKey(const FwBankKeys &keys, Write write) {
    std::size_t possible = 0;
    for (std::size_t i = 0; i < keys.Count(); ++i) {
        std::string name;
        std::string number;
        keys.AppendName(i, name);
        const Value value = keys.ValueOf(i);
        const auto *path = std::get_if<std::wstring_view>(&value);
        if (path == nullptr) {
            AppendDecimal(*std::get_if<int>(&value), number);
        }
        const std::wstring wideName(name.begin(), name.end()); // both are ASCII
        const std::wstring wideNumber(number.begin(), number.end());
        const bool done = write({FwBankKeys::kSection, wideName, path ? *path : wideNumber});
        possible += done ? 1U : 0U;
    }
    return possible;
}

} // namespace

std::size_t EditFwBanks(NativeEncoding &encoding, const std::string &before, const FwBankKeys &keys,
                        std::string &after) {
    FwBankPass pass(encoding, keys, before);
    if (pass.Run()) {
        after = std::move(pass.Text());
        return pass.Written();
    }
    std::string next;
    after = before;
    return ForEachKey(keys, [&](const KeyWrite<wchar_t> &write) {
        const bool possible = EditProfileBytes(encoding, after, write, next);
        if (possible) {
            after.swap(next);
        }
        return possible;
    });
}

std::size_t CountPossibleFwBanks(NativeEncoding &encoding, const std::string &before,
                                 const FwBankKeys &keys) {
    std::string unused;
    return ForEachKey(keys, [&](const KeyWrite<wchar_t> &write) {
        return EditProfileBytes(encoding, before, write, unused);
    });
}
