#include "scaler_isp/settings/ProfileEdit.h"

#include <algorithm>
#include <utility>

#include "scaler_isp/settings/ProfileGroups.h"
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
    /// KEPT: the line that ends the section is not looked at again, even if it is the same header.
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
                m_text.append(line.substr(0, line.rfind(Char('=')) + 1));
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

template <class Encoding> using WritesOf = std::vector<KeyWrite<typename Encoding::Char>>;

template <class Encoding>
TextFate FateOf(const Encoding &encoding, const KeyWrite<typename Encoding::Char> &write) {
    // The order of the enumeration is the order of what decides.
    const TextFate keys = std::max(encoding.FateOf(write.section), encoding.FateOf(write.key));
    return std::max(keys, encoding.FateOf(write.value));
}

/// All writes in one pass. False where it is not certain that the result is that of single writes.
template <class Encoding>
bool EditAtOnce(Encoding &encoding, const std::string &before, const WritesOf<Encoding> &writes,
                std::string &after, std::size_t &written) {
    using Char = typename Encoding::Char;
    const std::basic_string<Char> text = encoding.Decode(before);
    if (!encoding.KeepsFile(text)) {
        return false;
    }
    ProfileGroups<Char> groups(text);
    written = 0;
    for (const KeyWrite<Char> &write : writes) {
        const TextFate fate = FateOf(encoding, write);
        if (fate == TextFate::Impossible) {
            continue;
        }
        if (fate == TextFate::Unknown || !groups.IsPlain(write) || !groups.Apply(write)) {
            return false;
        }
        ++written;
    }
    if (written == 0) {
        after = before;
        return true;
    }
    return encoding.Encode(groups.Text(), after);
}

template <class Encoding>
std::size_t EditOneByOne(Encoding &encoding, const std::string &before,
                         const WritesOf<Encoding> &writes, std::string &after) {
    std::size_t written = 0;
    after = before;
    std::string bytes;
    for (const auto &write : writes) {
        const auto text = encoding.Decode(after);
        const auto edited = EditProfileText<typename Encoding::Char>(text, write);
        if (encoding.Encode(edited, bytes)) {
            after.swap(bytes);
            ++written;
        }
    }
    return written;
}

} // namespace

template <class Char>
std::basic_string<Char> EditProfileText(std::basic_string_view<Char> text,
                                        const KeyWrite<Char> &write) {
    return Rewrite<Char>(text, write).Run();
}

template <class Encoding>
std::size_t EditProfileBytes(Encoding &encoding, const std::string &before,
                             const WritesOf<Encoding> &writes, std::string &after) {
    std::size_t written = 0;
    if (writes.size() > 1 && EditAtOnce(encoding, before, writes, after, written)) {
        return written;
    }
    return EditOneByOne(encoding, before, writes, after);
}

template std::string EditProfileText(std::string_view, const KeyWrite<char> &);
template std::wstring EditProfileText(std::wstring_view, const KeyWrite<wchar_t> &);
template std::size_t EditProfileBytes(ByteEncoding &, const std::string &,
                                      const WritesOf<ByteEncoding> &, std::string &);
template std::size_t EditProfileBytes(NativeEncoding &, const std::string &,
                                      const WritesOf<NativeEncoding> &, std::string &);
