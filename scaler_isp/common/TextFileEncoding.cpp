#include "scaler_isp/common/TextFileEncoding.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cwchar>
#include <utility>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/Platform.h"
#include "scaler_isp/common/Utf8.h"

namespace {

constexpr std::size_t kFailed = static_cast<std::size_t>(-1);

/// Decodes the first character in the current locale. RETURNS its number of bytes; 0 if there is
/// none.
std::size_t ReadCharacter(std::string_view bytes, std::mbstate_t &state, wchar_t &character) {
    const std::size_t used = std::mbrtowc(&character, bytes.data(), bytes.size(), &state);
    if (used == kFailed && errno != EILSEQ) {
        throw CallFailure(errno);
    }
    if (used > bytes.size()) {
        return 0;
    }
    return used == 0 ? 1 : used; // mbrtowc returns 0 for a NUL
}

/// Appends a character in the current locale's encoding. False if the encoding cannot express it.
bool WriteCharacter(wchar_t character, std::mbstate_t &state, std::string &bytes) {
    std::array<char, MB_LEN_MAX> buffer{};
    const std::size_t size = std::wcrtomb(buffer.data(), character, &state);
    if (size == kFailed && errno != EILSEQ) {
        throw CallFailure(errno);
    }
    if (size == kFailed) {
        return false;
    }
    bytes.append(buffer.data(), size);
    return true;
}

/// Decodes a single byte in the current locale; false if it is not a complete character.
bool ByteToCharacter(int value, wchar_t &character) {
    const char byte = static_cast<char>(value);
    std::mbstate_t state{};
    return ReadCharacter({&byte, 1}, state, character) == 1 && std::mbsinit(&state) != 0;
}

bool WritesAs(wchar_t character, std::string_view expected) {
    std::mbstate_t state{};
    std::string bytes;
    return WriteCharacter(character, state, bytes) && bytes == expected;
}

bool LocaleIsAsciiCompatible() {
    for (int byte = 1; byte <= kLastAscii; ++byte) {
        wchar_t character = L'\0';
        if (!ByteToCharacter(byte, character) || character != byte) {
            return false;
        }
    }
    return true;
}

/// Whether the current locale has only the characters U+0001 to U+00FF. Plain C locales differ:
/// bytes 128 to 255 decode to themselves (macOS) or not at all (glibc). Both are read byte for
/// byte; a locale that can encode U+0100 has a real character set.
bool LocaleDecodesByteForByte() {
    std::mbstate_t state{};
    std::string unused;
    if (MB_CUR_MAX != 1 || WriteCharacter(kLastByte + 1, state, unused)) {
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

} // namespace

TextFileEncoding::TextFileEncoding(Charset charset) {
    if (charset == Charset::Environment && m_locale.emplace().Exists()) {
        m_kind = DetectKind();
    }
}

// Tests what the locale does with characters, because names of locales differ between systems.
TextFileEncoding::Kind TextFileEncoding::DetectKind() {
    const EnvironmentLocale::InUse use(*m_locale);
    const bool utf8 = WritesAs(0xE9, "\xC3\xA9") && WritesAs(0x20AC, "\xE2\x82\xAC") &&
                      WritesAs(0x1F600, "\xF0\x9F\x98\x80");
    if (utf8) {
        return Kind::Utf8;
    }
    m_isAsciiCompatible = LocaleIsAsciiCompatible();
    return m_isAsciiCompatible && LocaleDecodesByteForByte() ? Kind::Bytes : Kind::Other;
}

std::string TextFileEncoding::Decode(std::string bytes) {
    std::wstring wide;
    std::string text;
    switch (m_kind) {
    case Kind::Bytes:
        return bytes;
    case Kind::Utf8:
        m_fileIsByteForByte = !IsUtf8(bytes);
        return bytes;
    case Kind::Other:
        m_fileIsByteForByte = !DecodeNative(bytes, wide) || !AppendUtf8(wide, text);
        break;
    }
    return m_fileIsByteForByte ? bytes : text;
}

bool TextFileEncoding::Encode(std::string text, std::string &bytes) const {
    if (!IsConverted()) {
        bytes = std::move(text);
        return true;
    }
    bytes.clear();
    return EncodeNative(WideFromValidUtf8(text), bytes);
}

bool TextFileEncoding::ToText(std::wstring_view wide, std::string &text) const {
    text.clear();
    return m_fileIsByteForByte ? AppendAsBytes(kLastByte, wide, text) : AppendUtf8(wide, text);
}

std::wstring TextFileEncoding::FromText(std::string_view text) const {
    if (!m_fileIsByteForByte) {
        return WideFromValidUtf8(text);
    }
    std::wstring wide(text.size(), L'\0');
    std::transform(text.begin(), text.end(), wide.begin(), [](char byte) {
        return static_cast<wchar_t>(static_cast<unsigned char>(byte));
    });
    return wide;
}

std::size_t TextFileEncoding::CountCharacters(std::string_view text) const {
    return m_fileIsByteForByte ? text.size() : CountUtf8Characters(text);
}

bool TextFileEncoding::CanEncode(const std::string &text) const {
    std::string bytes;
    return !IsConverted() || Encode(text, bytes);
}

bool TextFileEncoding::RoundTrips(std::string_view text) const {
    if (!IsConverted()) {
        return true;
    }
    const std::wstring wide = WideFromValidUtf8(text);
    std::string bytes;
    std::wstring again;
    return EncodeNative(wide, bytes) && DecodeNative(bytes, again) && again == wide;
}

bool TextFileEncoding::CanDecode(std::string_view bytes) const {
    std::wstring wide;
    return m_kind == Kind::Bytes || (m_kind == Kind::Utf8 && IsUtf8(bytes)) ||
           (m_kind == Kind::Other && DecodeNative(bytes, wide));
}

bool TextFileEncoding::DecodeNative(std::string_view bytes, std::wstring &wide) const {
    const EnvironmentLocale::InUse use(*m_locale);
    std::mbstate_t state{};
    while (!bytes.empty()) {
        std::size_t used =
            m_isAsciiCompatible && std::mbsinit(&state) != 0 ? AsciiPrefix(bytes) : 0;
        if (used != 0) {
            wide.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(used));
        } else {
            wchar_t character = L'\0';
            used = ReadCharacter(bytes, state, character);
            if (used == 0) {
                return false;
            }
            wide += character;
        }
        bytes.remove_prefix(used);
    }
    return std::mbsinit(&state) != 0;
}

bool TextFileEncoding::EncodeNative(std::wstring_view wide, std::string &bytes) const {
    const EnvironmentLocale::InUse use(*m_locale);
    std::mbstate_t state{};
    for (const wchar_t character : wide) {
        if (m_isAsciiCompatible && character <= kLastAscii && std::mbsinit(&state) != 0) {
            bytes += static_cast<char>(character);
        } else if (!WriteCharacter(character, state, bytes)) {
            return false;
        }
    }
    return std::mbsinit(&state) != 0;
}
