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
    WriteBytes(std::size_t room, std::size_t count) {
        m_bytes.reserve(room);
        m_places.reserve(count);
    }

    /// RETURNS the fate of the whole write; only one that is kept becomes part of the list.
    template <class Encoding>
    TextFate Add(const Encoding &encoding, const KeyWrite<typename Encoding::Char> &write) {
        Places at{};
        TextFate fate = AppendSection(encoding, write.section, at.section);
        // The order of the enumeration is the order of what decides.
        fate = std::max(fate, Append(encoding, write.key, at.key));
        fate = std::max(fate, Append(encoding, write.value, at.value));
        if (fate == TextFate::Kept) {
            m_places.push_back(at);
        }
        return fate;
    }

    std::size_t Count() const {
        return m_places.size();
    }

    /// REQUIRES: nothing is added any more.
    KeyWrite<char> At(std::size_t index) const {
        const Places &at = m_places[index];
        return {Part(at.section), Part(at.key), Part(at.value)};
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

    /// Most writes name the section of the one before by the same text.
    template <class Encoding>
    TextFate AppendSection(const Encoding &encoding,
                           std::basic_string_view<typename Encoding::Char> text, Place &place) {
        if (m_lastSection != text.data() || m_lastSectionSize != text.size()) {
            m_lastSection = text.data();
            m_lastSectionSize = text.size();
            m_lastFate = Append(encoding, text, m_lastPlace);
        }
        place = m_lastPlace;
        return m_lastFate;
    }

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
    const void *m_lastSection = nullptr;
    std::size_t m_lastSectionSize = 0;
    Place m_lastPlace{};
    TextFate m_lastFate = TextFate::Kept;
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
        room += write.key.size() + write.value.size();
    }
    WriteBytes bytes(room + writes.front().section.size(), writes.size());
    for (const auto &write : writes) {
        if (bytes.Add(encoding, write) == TextFate::Unknown) {
            return false;
        }
    }
    ProfileGroups groups(before);
    // The limit is one of characters, so with longer ones a line may be longer in bytes.
    if (form != FileForm::OneByteEach && groups.StoppedEarly()) {
        return false;
    }
    for (std::size_t i = 0; i < bytes.Count(); ++i) {
        const KeyWrite<char> write = bytes.At(i);
        if (!ProfileGroups::IsPlain(write) || !groups.Apply(write)) {
            return false;
        }
    }
    written = bytes.Count();
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
