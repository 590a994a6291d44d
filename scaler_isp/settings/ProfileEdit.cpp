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

template <class Encoding> using WritesOf = std::vector<KeyWrite<typename Encoding::Char>>;

/// Writes as bytes, in one piece of memory.
class WriteBytes {
  public:
    /// Nothing is copied again when `room` is enough.
    explicit WriteBytes(std::size_t room) {
        m_bytes.reserve(room);
    }

    /// RETURNS the fate of the whole write; only one that is kept becomes part of the list.
    template <class Encoding>
    TextFate Add(const Encoding &encoding, const KeyWrite<typename Encoding::Char> &write) {
        Places at{};
        TextFate fate = TextFate::Kept; // the order of the enumeration is the order of what decides
        fate = std::max(fate, Append(encoding, write.section, at.section));
        fate = std::max(fate, Append(encoding, write.key, at.key));
        fate = std::max(fate, Append(encoding, write.value, at.value));
        if (fate == TextFate::Kept) {
            m_places.push_back(at);
        }
        return fate;
    }

    std::vector<KeyWrite<char>> List() const {
        std::vector<KeyWrite<char>> list;
        list.reserve(m_places.size());
        for (const Places &at : m_places) {
            list.push_back({Part(at.section), Part(at.key), Part(at.value)});
        }
        return list;
    }

  private:
    struct Place {
        std::size_t begin;
        std::size_t size;
    };
    struct Places {
        Place section;
        Place key;
        Place value;
    };

    template <class Encoding>
    TextFate Append(const Encoding &encoding, std::basic_string_view<typename Encoding::Char> text,
                    Place &place) {
        place.begin = m_bytes.size();
        const TextFate fate = encoding.AppendKept(text, m_bytes);
        place.size = m_bytes.size() - place.begin;
        return fate;
    }

    std::string_view Part(const Place &place) const {
        return std::string_view(m_bytes).substr(place.begin, place.size);
    }

    std::string m_bytes;
    std::vector<Places> m_places;
};

/// All writes in one pass over the bytes. False where it is not certain that the result is that of
/// single writes.
template <class Encoding>
bool EditAtOnce(Encoding &encoding, const std::string &before, const WritesOf<Encoding> &writes,
                std::string &after, std::size_t &written) {
    const FileForm form = encoding.Take(before);
    if (!encoding.KeepsFile()) {
        return false;
    }
    std::size_t room = 0;
    for (const auto &write : writes) {
        room += write.section.size() + write.key.size() + write.value.size();
    }
    WriteBytes bytes(room);
    for (const auto &write : writes) {
        if (bytes.Add(encoding, write) == TextFate::Unknown) {
            return false;
        }
    }
    const std::vector<KeyWrite<char>> list = bytes.List();
    ProfileGroups groups(before);
    // The limit is one of characters, so with longer ones a line may be longer in bytes.
    if (form != FileForm::OneByteEach && groups.StoppedEarly()) {
        return false;
    }
    for (const KeyWrite<char> &write : list) {
        if (!ProfileGroups::IsPlain(write) || !groups.Apply(write)) {
            return false;
        }
    }
    written = list.size();
    after = written != 0 ? groups.Text() : before;
    return true;
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
