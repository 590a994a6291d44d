#include "scaler_isp/settings/ProfileEncoding.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
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

bool IsUpTo(wchar_t last, wchar_t character) {
    return character >= 0 && character <= last;
}

bool AllUpTo(wchar_t last, std::wstring_view text) {
    return std::all_of(text.begin(), text.end(),
                       [last](wchar_t character) { return IsUpTo(last, character); });
}

bool AllUnicode(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), [](wchar_t character) {
        return IsUpTo(0xD7FF, character) || (character >= 0xE000 && character <= 0x10FFFF);
    });
}

std::wstring BytesToWide(const std::string &bytes) {
    std::wstring text(bytes.size(), L'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), Widened);
    return text;
}

std::string WideToBytes(std::wstring_view text) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](wchar_t character) { return static_cast<char>(character); });
    return bytes;
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

std::wstring NativeEncoding::Decode(const std::string &bytes) {
    const bool plain = m_bytes || (m_ascii && std::all_of(bytes.begin(), bytes.end(), IsAsciiByte));
    m_bytesOfFile = m_bytes;
    std::wstring text;
    if (plain) {
        return BytesToWide(bytes);
    }
    if (DecodeNative(bytes, text)) {
        return text;
    }
    m_bytesOfFile = true;
    return BytesToWide(bytes);
}

bool NativeEncoding::DecodeNative(const std::string &bytes, std::wstring &text) const {
    const ThreadLocale use(m_locale.Get());
    text.reserve(bytes.size());
    std::mbstate_t state{};
    const char *const end = bytes.data() + bytes.size();
    for (const char *at = bytes.data(); at != end;) {
        if (m_ascii && IsAsciiByte(*at) && std::mbsinit(&state) != 0) {
            text += Widened(*at++);
            continue;
        }
        wchar_t character = L'\0';
        const std::size_t used =
            std::mbrtowc(&character, at, static_cast<std::size_t>(end - at), &state);
        if (used > static_cast<std::size_t>(end - at)) {
            return false;
        }
        text += character;
        at += used == 0 ? 1 : used; // 0 is a NUL
    }
    return std::mbsinit(&state) != 0;
}

bool NativeEncoding::Encode(std::wstring_view text, std::string &bytes) const {
    if (m_bytesOfFile && !AllUpTo(kLastByte, text)) {
        return false;
    }
    if (m_bytesOfFile || (m_ascii && AllUpTo(kLastAscii, text))) {
        bytes = WideToBytes(text);
        return true;
    }
    return EncodeNative(text, bytes);
}

bool NativeEncoding::EncodeNative(std::wstring_view text, std::string &bytes) const {
    const ThreadLocale use(m_locale.Get());
    bytes.clear();
    bytes.reserve(text.size());
    std::array<char, MB_LEN_MAX> buffer{};
    std::mbstate_t state{};
    for (const wchar_t character : text) {
        if (m_ascii && IsUpTo(kLastAscii, character) && std::mbsinit(&state) != 0) {
            bytes += static_cast<char>(character);
            continue;
        }
        const std::size_t size = std::wcrtomb(buffer.data(), character, &state);
        if (size == kFailed) {
            return false;
        }
        bytes.append(buffer.data(), size);
    }
    return std::mbsinit(&state) != 0;
}

bool NativeEncoding::KeepsFile(std::wstring_view text) const {
    if (m_bytes) {
        return true;
    }
    // A file taken byte for byte can turn into valid UTF-8 by a rewrite. That changes nothing for
    // what is searched and written as long as it is ASCII, and FateOf holds for nothing else then.
    if (m_utf8) {
        return m_bytesOfFile || AllUnicode(text);
    }
    return m_ascii && AllUpTo(kLastAscii, text);
}

TextFate NativeEncoding::FateOf(std::wstring_view text) const {
    if (m_bytes) {
        return AllUpTo(kLastByte, text) ? TextFate::Kept : TextFate::Impossible;
    }
    const bool kept =
        m_utf8 && !m_bytesOfFile ? AllUnicode(text) : m_ascii && AllUpTo(kLastAscii, text);
    return kept ? TextFate::Kept : TextFate::Unknown;
}
