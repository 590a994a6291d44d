#include "scaler_isp/common/CCpTransform.h"

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <iconv.h>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/EnvironmentLocale.h"
#include "scaler_isp/common/Platform.h"

namespace {

constexpr std::size_t kUtf8RoomBytes = 10240;
constexpr std::size_t kWideRoomChars = 10240;
constexpr const char *kUtf8 = "UTF-8";
constexpr const char *kWide = "UTF-32LE";
constexpr wchar_t kLastUnicodeCharacter = 0x10FFFF;

class Iconv {
  public:
    Iconv(const char *to, const char *from) : m_descriptor(::iconv_open(to, from)) {}
    ~Iconv() {
        if (IsOpen()) {
            ::iconv_close(m_descriptor);
        }
    }
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;

    /// Another pair of charsets after a failed open; a null name is a failure.
    bool Reopen(const char *to, const char *from) {
        if (to != nullptr && from != nullptr) {
            m_descriptor = ::iconv_open(to, from);
        }
        return IsOpen();
    }

    bool IsOpen() const {
        return m_descriptor != reinterpret_cast<iconv_t>(-1);
    }

    /// One call over the whole input. RETURNS the bytes written; `room` where it failed or where
    /// the output leaves no place for a terminator, which counts as a failure too.
    std::size_t Convert(const char *input, std::size_t size, char *output, std::size_t room) const {
        char *in = const_cast<char *>(input); // iconv only reads it
        char *out = output;
        std::size_t left = room;
        if (::iconv(m_descriptor, &in, &size, &out, &left) == static_cast<std::size_t>(-1)) {
            return room;
        }
        return room - left;
    }

  private:
    iconv_t m_descriptor;
};

bool IsUnicode(wchar_t character) {
    return character >= 0 && character <= kLastUnicodeCharacter;
}

/// Whether text in the fallback charset needs the check that "UTF-32LE" makes itself.
bool AllUnicode(const std::wstring &text) {
    return std::all_of(text.begin(), text.end(), IsUnicode);
}

std::string ToUtf8(const std::wstring &text) {
    Iconv iconv(kUtf8, kWide);
    if (!iconv.IsOpen() &&
        (!iconv.Reopen(kUtf8, PlatformWideCharsetFallback()) || !AllUnicode(text))) {
        return {};
    }
    char buffer[kUtf8RoomBytes]; // NOLINT(*-member-init): filled up to `size`
    const std::size_t size = iconv.Convert(reinterpret_cast<const char *>(text.data()),
                                           text.size() * sizeof(wchar_t), buffer, sizeof buffer);
    if (size == sizeof buffer) {
        return {};
    }
    return {buffer, std::find(buffer, buffer + size, '\0')};
}

std::wstring FromUtf8(const std::string &text) {
    Iconv iconv(kWide, kUtf8);
    const bool fallback = !iconv.IsOpen();
    if (fallback && !iconv.Reopen(PlatformWideCharsetFallback(), kUtf8)) {
        return {};
    }
    wchar_t buffer[kWideRoomChars]; // NOLINT(*-member-init): filled up to `size`
    const std::size_t size =
        iconv.Convert(text.data(), text.size(), reinterpret_cast<char *>(buffer), sizeof buffer);
    if (size == sizeof buffer) {
        return {};
    }
    std::wstring wide(buffer, std::find(buffer, buffer + size / sizeof(wchar_t), L'\0'));
    return fallback && !AllUnicode(wide) ? std::wstring() : wide;
}

/// Wide text to the multibyte encoding of the current locale, up to its first NUL.
std::string ToMultibyte(const wchar_t *text) {
    std::mbstate_t state{};
    const wchar_t *source = text;
    const std::size_t length = std::wcsrtombs(nullptr, &source, 0, &state);
    if (length == static_cast<std::size_t>(-1)) {
        return {};
    }
    std::string result(length + 1, '\0');
    state = {};
    source = text;
    const std::size_t converted = std::wcsrtombs(result.data(), &source, result.size(), &state);
    result.resize(converted == static_cast<std::size_t>(-1) ? 0 : converted);
    return result;
}

/// Multibyte text of the current locale to wide, into room for `room` characters and a terminator.
std::wstring FromMultibyte(const char *text, std::size_t room) {
    std::wstring result(room + 1, L'\0');
    std::mbstate_t state{};
    const char *source = text;
    const std::size_t converted = std::mbsrtowcs(result.data(), &source, result.size(), &state);
    result.resize(converted == static_cast<std::size_t>(-1) ? 0 : converted);
    return result;
}

std::string ToEnvironmentEncoding(const wchar_t *text) {
    return ResultOrOnThrow(std::string(), [&] {
        const EnvironmentLocale locale;
        return ToMultibyte(text);
    });
}

} // namespace

CCpTransform::~CCpTransform() = default;

std::string CCpTransform::ConvertUnicodeStringToUTF8(const std::wstring &text) const {
    return ResultOrOnThrow(std::string(), [&] { return ToUtf8(text); });
}

std::wstring CCpTransform::ConvertUTF8StringToUnicode(const std::string &text) const {
    return ResultOrOnThrow(std::wstring(), [&] { return FromUtf8(text); });
}

std::wstring CCpTransform::ConvertStringToWString(const std::string &text) const {
    return ConvertUTF8StringToUnicode(text);
}

std::string CCpTransform::ConvertUnicodeStringToANSI(const std::wstring &text) const {
    return ToEnvironmentEncoding(text.c_str());
}

std::string CCpTransform::ConvertWCHARToCHAR(const wchar_t *text) const {
    return ToEnvironmentEncoding(text != nullptr ? text : L"");
}

std::string CCpTransform::ConvertWCHARToANSIString(const wchar_t *text) const {
    return ToEnvironmentEncoding(text != nullptr ? text : L"");
}

// KEPT ANSI_to_wide_is_measured_before_the_locale_switch: the room is measured in the host's locale
// and the text converted in the environment's; a text the host's locale cannot read gets a wide
// character of room for every byte.
std::wstring CCpTransform::ConvertANSIStringToUnicode(const std::string &text) const {
    return ResultOrOnThrow(std::wstring(), [&] {
        std::mbstate_t state{};
        const char *source = text.c_str();
        std::size_t room = std::mbsrtowcs(nullptr, &source, 0, &state);
        if (room == static_cast<std::size_t>(-1)) {
            room = text.size();
        }
        const EnvironmentLocale locale;
        return FromMultibyte(text.c_str(), room);
    });
}

std::wstring CCpTransform::ConvertCHARToUnicodeString(const char *text) const {
    return ResultOrOnThrow(std::wstring(), [&] {
        const std::string bytes = text != nullptr ? text : "";
        const EnvironmentLocale locale;
        return FromMultibyte(bytes.c_str(), 4 * bytes.size());
    });
}
