#include "scaler_isp/settings/ProfileEdit.h"

#include <cstddef>
#include <utility>

#include "scaler_isp/settings/ProfileLines.h"

namespace {

/// One write over the lines of a text.
template <class Char> class Rewrite {
  public:
    using View = std::basic_string_view<Char>;
    using String = std::basic_string<Char>;

    Rewrite(View text, const KeyWrite<Char> &write)
        : m_lines(text), m_write(write), m_header(ProfileHeader(write.section)) {
        m_text.reserve(text.size() + m_header.size() + write.key.size() + write.value.size() + 4);
    }

    String Run() {
        View line;
        while (m_lines.Next(line)) {
            Put(line);
            if (line == m_header) {
                m_sectionFound = true;
                CopySection();
            }
        }
        if (!m_sectionFound) {
            Put(m_header);
        }
        if (!m_keyWritten) {
            PutKey();
        }
        return std::move(m_text);
    }

  private:
    // KEPT Header_that_ends_a_section_is_passed_over: the line that ends the section is not looked
    // at again, even if it is the same header.
    void CopySection() {
        View line;
        while (m_lines.Next(line)) {
            const std::size_t equals = line.find(Char('='));
            if (equals == View::npos) {
                if (!m_keyWritten) {
                    PutKey();
                }
                Put(line);
                return;
            }
            if (line.substr(0, equals) == m_write.key) {
                m_text.append(line.substr(0, FindLastEquals(line) + 1));
                Put(m_write.value);
                m_keyWritten = true;
                return;
            }
            Put(line);
        }
    }

    void PutKey() {
        m_text.append(m_write.key) += Char('=');
        Put(m_write.value);
        m_keyWritten = true;
    }

    void Put(View line) {
        m_text.append(line) += Char('\n');
    }

    ProfileLineReader<Char> m_lines;
    const KeyWrite<Char> &m_write;
    String m_header;
    String m_text;
    bool m_sectionFound = false;
    bool m_keyWritten = false;
};

} // namespace

template <class Encoding>
bool EditProfileBytes(Encoding &encoding, const std::string &before,
                      const KeyWrite<typename Encoding::Char> &write, std::string &after) {
    const auto text = encoding.Decode(before);
    return encoding.Encode(Rewrite<typename Encoding::Char>(text, write).Run(), after);
}

template bool EditProfileBytes(ByteEncoding &, const std::string &, const KeyWrite<char> &,
                               std::string &);
template bool EditProfileBytes(NativeEncoding &, const std::string &, const KeyWrite<wchar_t> &,
                               std::string &);
