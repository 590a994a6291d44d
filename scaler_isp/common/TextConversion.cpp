#include "scaler_isp/common/TextConversion.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cwchar>
#include <iconv.h>
#include <string_view>

#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/EnvironmentLocale.h"
#include "scaler_isp/common/Platform.h"

namespace {

constexpr std::size_t kUtf8Capacity = 10240;
constexpr std::size_t kWideCapacity = 10240;
constexpr const char *kUtf8 = "UTF-8";
constexpr const char *kWide = "UTF-32LE";
constexpr wchar_t kLastUnicodeCharacter = 0x10FFFF;
constexpr wchar_t kFirstSurrogate = 0xD800;
constexpr wchar_t kLastSurrogate = 0xDFFF;
constexpr std::size_t kFailed = static_cast<std::size_t>(-1);

/// A descriptor that converts between UTF-8 and wide characters.
class Iconv {
  public:
    /// Tries the platform's other name for wide characters if "UTF-32LE" is unknown.
    Iconv(const char *to, const char *from) : m_descriptor(::iconv_open(to, from)) {
        if (!IsOpen() && errno == EINVAL && PlatformWideCharsetFallback() != nullptr) {
            const auto name = [](const char *charset) {
                return charset == kWide ? PlatformWideCharsetFallback() : charset;
            };
            m_descriptor = ::iconv_open(name(to), name(from));
        }
        if (!IsOpen()) {
            throw CallFailure(errno);
        }
    }
    ~Iconv() {
        ::iconv_close(m_descriptor);
    }
    Iconv(const Iconv &) = delete;
    Iconv &operator=(const Iconv &) = delete;

    /// Converts the complete input in one call. RETURNS the bytes written; `capacity` if the input
    /// is invalid, or if the output leaves no space for a terminator.
    std::size_t Convert(const char *input, std::size_t size, char *output,
                        std::size_t capacity) const {
        char *in = const_cast<char *>(input); // iconv only reads it
        char *out = output;
        std::size_t left = capacity;
        if (::iconv(m_descriptor, &in, &size, &out, &left) != kFailed) {
            return capacity - left;
        }
        if (errno != EILSEQ && errno != EINVAL && errno != E2BIG) {
            throw CallFailure(errno);
        }
        return capacity;
    }

  private:
    bool IsOpen() const {
        return m_descriptor != reinterpret_cast<iconv_t>(-1);
    }

    iconv_t m_descriptor;
};

bool IsUnicode(wchar_t character) {
    return character >= 0 && character <= kLastUnicodeCharacter &&
           (character < kFirstSurrogate || character > kLastSurrogate);
}

/// Checked here because the system decides whether iconv rejects other values: glibc's "UTF-32LE"
/// does, its "WCHAR_T" and the iconv of newer macOS do not.
bool AllUnicode(std::wstring_view text) {
    return std::all_of(text.begin(), text.end(), IsUnicode);
}

/// The result of a conversion function, with EILSEQ as 0 characters; throws for any other failure.
std::size_t CountOrThrow(std::size_t converted) {
    if (converted != kFailed) {
        return converted;
    }
    if (errno != EILSEQ) {
        throw CallFailure(errno);
    }
    return 0;
}

std::wstring WideFrom(const Iconv &iconv, const std::string &text) {
    wchar_t buffer[kWideCapacity]; // NOLINT(*-member-init): filled up to `size`
    const std::size_t size =
        iconv.Convert(text.data(), text.size(), reinterpret_cast<char *>(buffer), sizeof buffer);
    const std::wstring_view wide(buffer, size / sizeof(wchar_t));
    if (size == sizeof buffer || !AllUnicode(wide)) {
        return {};
    }
    return std::wstring(wide.substr(0, wide.find(L'\0')));
}

} // namespace

std::string Utf8FromWide(const std::wstring &text) {
    const Iconv iconv(kUtf8, kWide);
    if (!AllUnicode(text)) {
        return {};
    }
    char buffer[kUtf8Capacity]; // NOLINT(*-member-init): filled up to `size`
    const std::size_t size = iconv.Convert(reinterpret_cast<const char *>(text.data()),
                                           text.size() * sizeof(wchar_t), buffer, sizeof buffer);
    if (size == sizeof buffer) {
        return {};
    }
    return {buffer, std::find(buffer, buffer + size, '\0')};
}

std::wstring WideFromUtf8(const std::string &text) {
    return WideFrom(Iconv(kWide, kUtf8), text);
}

std::string EnvironmentTextFromWide(const wchar_t *text) {
    const EnvironmentLocale locale;
    const EnvironmentLocale::InUse use(locale);
    std::mbstate_t state{};
    const wchar_t *source = text;
    const std::size_t length = CountOrThrow(std::wcsrtombs(nullptr, &source, 0, &state));
    if (length == 0) {
        return {};
    }
    std::string result(length + 1, '\0');
    state = {};
    source = text;
    result.resize(CountOrThrow(std::wcsrtombs(result.data(), &source, result.size(), &state)));
    return result;
}

std::wstring WideFromEnvironmentText(const char *text, std::size_t capacity) {
    const EnvironmentLocale locale;
    const EnvironmentLocale::InUse use(locale);
    std::wstring result(capacity + 1, L'\0'); // the limit equals the allocated size
    std::mbstate_t state{};
    const char *source = text;
    result.resize(CountOrThrow(std::mbsrtowcs(result.data(), &source, result.size(), &state)));
    return result;
}

std::wstring WideFromEnvironmentCharset(const std::string &text) {
    const EnvironmentLocale locale;
    if (!locale.Exists()) {
        return {};
    }
    try {
        return WideFrom(Iconv(kWide, locale.Charset()), text);
    } catch (const CallFailure &failure) {
        if (failure.Error() != EINVAL) {
            throw;
        }
        return {}; // iconv does not know the character set
    }
}
