#include "scaler_isp/settings/ProfileEncoding.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "scaler_isp/common/Platform.h"

namespace {

constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
constexpr wchar_t kLastAscii = 0x7F;
constexpr wchar_t kLastByte = 0xFF;

/// While it lives, the multibyte functions of this thread use the locale.
class ThreadLocale {
  public:
    explicit ThreadLocale(locale_t locale) : m_former(::uselocale(locale)) {}
    ~ThreadLocale() {
        ::uselocale(m_former);
    }
    ThreadLocale(const ThreadLocale &) = delete;
    ThreadLocale &operator=(const ThreadLocale &) = delete;

  private:
    locale_t m_former;
};

wchar_t Widened(char byte) {
    return static_cast<wchar_t>(static_cast<unsigned char>(byte));
}

bool IsAsciiByte(char byte) {
    return static_cast<unsigned char>(byte) <= kLastAscii;
}

/// The length of the ASCII text at the beginning. Whole blocks first: nearly every file is nothing
/// else, and this is most of what deciding costs.
std::size_t AsciiPrefix(std::string_view bytes) {
    std::array<std::uint64_t, 8> block{};
    std::size_t size = 0;
    while (bytes.size() - size >= sizeof block) {
        std::memcpy(block.data(), bytes.data() + size, sizeof block);
        std::uint64_t bits = 0;
        for (const std::uint64_t word : block) {
            bits |= word;
        }
        if ((bits & 0x8080808080808080U) != 0) {
            break;
        }
        size += sizeof block;
    }
    while (size < bytes.size() && IsAsciiByte(bytes[size])) {
        ++size;
    }
    return size;
}

std::size_t AsciiPrefix(std::wstring_view text) {
    const auto isAscii = [](wchar_t character) {
        return character >= 0 && character <= kLastAscii;
    };
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isAscii) -
                                    text.begin());
}

bool IsUnicode(wchar_t character) {
    return (character >= 0 && character <= 0xD7FF) ||
           (character >= 0xE000 && character <= 0x10FFFF);
}

std::wstring BytesToWide(std::string_view bytes) {
    std::wstring text(bytes.size(), L'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), Widened);
    return text;
}

/// Appends every character as a byte. False, and the bytes as they were, where one is above `last`,
/// which is a power of two less one.
bool AppendUpTo(wchar_t last, std::wstring_view text, std::string &bytes) {
    const std::size_t before = bytes.size();
    bytes.resize(before + text.size());
    char *to = bytes.data() + before;
    std::uint32_t bits = 0; // without a way out of the loop it runs on several characters at a time
    for (const wchar_t character : text) {
        bits |= static_cast<std::uint32_t>(character);
        *to++ = static_cast<char>(character);
    }
    if (bits > static_cast<std::uint32_t>(last)) {
        bytes.resize(before);
        return false;
    }
    return true;
}

/// One byte as a character of its own in the current locale; false where it is none.
bool ByteToCharacter(int value, wchar_t &character) {
    const char byte = static_cast<char>(value);
    std::mbstate_t state{};
    return std::mbrtowc(&character, &byte, 1, &state) == 1 && std::mbsinit(&state) != 0;
}

bool WritesAs(wchar_t character, std::string_view bytes) {
    std::array<char, MB_LEN_MAX> buffer{};
    std::mbstate_t state{};
    const std::size_t size = std::wcrtomb(buffer.data(), character, &state);
    return size != kFailed && std::string_view(buffer.data(), size) == bytes;
}

bool CanWrite(wchar_t character) {
    std::array<char, MB_LEN_MAX> buffer{};
    std::mbstate_t state{};
    return std::wcrtomb(buffer.data(), character, &state) != kFailed;
}

} // namespace

NativeCtypeLocale::NativeCtypeLocale() {
    m_locale = ::newlocale(LC_CTYPE_MASK, "", locale_t{});
}

NativeCtypeLocale::~NativeCtypeLocale() {
    if (m_locale != locale_t{}) {
        ::freelocale(m_locale);
    }
}

// The locale is asked what it does with characters, never for its name: names differ by system.
NativeEncoding::NativeEncoding() {
    if (m_locale.Get() == locale_t{}) {
        return;
    }
    const ThreadLocale use(m_locale.Get());
    m_ascii = AsciiIsItself();
    m_bytes = BytesAreCharacters();
    m_utf8 = IsUtf8();
}

bool NativeEncoding::AsciiIsItself() const {
    for (int byte = 1; byte <= kLastAscii; ++byte) {
        wchar_t character = L'\0';
        if (!ByteToCharacter(byte, character) || character != byte) {
            return false;
        }
    }
    return true;
}

bool NativeEncoding::BytesAreCharacters() const {
    if (!m_ascii || MB_CUR_MAX != 1 || CanWrite(kLastByte + 1)) {
        return false;
    }
    int themselves = 0;
    int none = 0;
    for (int byte = kLastAscii + 1; byte <= kLastByte; ++byte) {
        wchar_t character = L'\0';
        if (!ByteToCharacter(byte, character)) {
            ++none;
        } else if (character == byte) {
            ++themselves;
        }
    }
    return themselves == 128 || (none == 128 && PlatformAsciiLocaleNeedsByteConversion());
}

bool NativeEncoding::IsUtf8() const {
    return m_ascii && WritesAs(0xE9, "\xC3\xA9") && WritesAs(0x20AC, "\xE2\x82\xAC") &&
           WritesAs(0x1F600, "\xF0\x9F\x98\x80");
}

FileForm NativeEncoding::Take(const std::string &bytes) {
    m_asciiFile = AsciiPrefix(bytes) == bytes.size();
    const bool readable = !m_bytes && ((m_ascii && m_asciiFile) || DecodeNative(bytes, nullptr));
    m_bytesOfFile = !readable;
    if (m_bytesOfFile || (m_ascii && m_asciiFile)) {
        return FileForm::OneByteEach;
    }
    return m_utf8 ? FileForm::Utf8 : FileForm::Other;
}

std::wstring NativeEncoding::Decode(const std::string &bytes) {
    Take(bytes);
    return DecodePart(bytes);
}

std::wstring NativeEncoding::DecodePart(std::string_view bytes) const {
    std::wstring text;
    if (m_bytesOfFile || (m_ascii && m_asciiFile) || !DecodeNative(bytes, &text)) {
        return BytesToWide(bytes);
    }
    return text;
}

/// \param text  null where only the question is whether the bytes can be read.
bool NativeEncoding::DecodeNative(std::string_view bytes, std::wstring *text) const {
    const ThreadLocale use(m_locale.Get());
    std::mbstate_t state{};
    while (!bytes.empty()) {
        std::size_t used = m_ascii && std::mbsinit(&state) != 0 ? AsciiPrefix(bytes) : 0;
        if (used != 0) {
            if (text != nullptr) {
                text->append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(used));
            }
            bytes.remove_prefix(used);
            continue;
        }
        wchar_t character = L'\0';
        used = std::mbrtowc(&character, bytes.data(), bytes.size(), &state);
        if (used > bytes.size() || (m_utf8 && !IsUnicode(character))) {
            return false;
        }
        if (text != nullptr) {
            *text += character;
        }
        bytes.remove_prefix(used == 0 ? 1 : used); // 0 is a NUL
    }
    return std::mbsinit(&state) != 0;
}

bool NativeEncoding::Encode(std::wstring_view text, std::string &bytes) const {
    bytes.clear();
    if (m_bytesOfFile) {
        return AppendUpTo(kLastByte, text, bytes);
    }
    return (m_ascii && AppendUpTo(kLastAscii, text, bytes)) || EncodeNative(text, bytes);
}

bool NativeEncoding::EncodeNative(std::wstring_view text, std::string &bytes) const {
    const ThreadLocale use(m_locale.Get());
    std::array<char, MB_LEN_MAX> buffer{};
    std::mbstate_t state{};
    while (!text.empty()) {
        const std::size_t ascii = m_ascii && std::mbsinit(&state) != 0 ? AsciiPrefix(text) : 0;
        if (ascii != 0) {
            AppendUpTo(kLastAscii, text.substr(0, ascii), bytes);
            text.remove_prefix(ascii);
            continue;
        }
        const std::size_t size = std::wcrtomb(buffer.data(), text.front(), &state);
        if (size == kFailed || (m_utf8 && !IsUnicode(text.front()))) {
            return false;
        }
        bytes.append(buffer.data(), size);
        text.remove_prefix(1);
    }
    return std::mbsinit(&state) != 0;
}

// A file that is no valid UTF-8 can become valid when a value is replaced, and is then taken
// otherwise. For lines it makes no difference, nor for texts in ASCII; AppendKept lets no other in.
bool NativeEncoding::KeepsFile() const {
    return m_bytes || m_utf8 || (m_ascii && m_asciiFile);
}

TextFate NativeEncoding::AppendKept(std::wstring_view text, std::string &bytes) const {
    if (m_bytes) {
        return AppendUpTo(kLastByte, text, bytes) ? TextFate::Kept : TextFate::Impossible;
    }
    if (!m_ascii) {
        return TextFate::Unknown;
    }
    const bool kept = AppendUpTo(kLastAscii, text, bytes) ||
                      (m_utf8 && !m_bytesOfFile && EncodeNative(text, bytes));
    return kept ? TextFate::Kept : TextFate::Unknown;
}
