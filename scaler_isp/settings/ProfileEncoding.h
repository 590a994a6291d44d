#ifndef SCALER_ISP_SETTINGS_PROFILE_ENCODING_H
#define SCALER_ISP_SETTINGS_PROFILE_ENCODING_H

#include <locale.h> // NOLINT(*-deprecated-headers): locale_t is not in <clocale>
#include <string>
#include <string_view>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

/// What becomes of a text that is written and read again.
enum class TextFate {
    Kept,       ///< it comes back as it was, whatever else the file holds
    Impossible, ///< it can never be written
    Unknown     ///< only trying tells
};

/// The narrow family: bytes are characters.
class ByteEncoding {
  public:
    using Char = char;
    std::string Decode(const std::string &bytes) {
        return bytes;
    }
    bool Encode(std::string_view text, std::string &bytes) const {
        bytes = text;
        return true;
    }
    bool KeepsFile(std::string_view /*text*/) const {
        return true;
    }
    TextFate FateOf(std::string_view /*text*/) const {
        return TextFate::Kept;
    }
};

/// The character type locale of the environment (LC_ALL, LC_CTYPE, LANG). The other categories are
/// left alone: an unknown LC_TIME must not cost us the encoding. Null where the locale does not
/// exist.
class NativeCtypeLocale {
  public:
    NativeCtypeLocale() : m_locale(::newlocale(LC_CTYPE_MASK, "", locale_t{})) {}
    ~NativeCtypeLocale() {
        if (m_locale != locale_t{}) {
            ::freelocale(m_locale);
        }
    }
    NativeCtypeLocale(const NativeCtypeLocale &) = delete;
    NativeCtypeLocale &operator=(const NativeCtypeLocale &) = delete;
    locale_t Get() const {
        return m_locale;
    }

  private:
    locale_t m_locale;
};

/// The wide family: the encoding of the environment's locale. Byte for byte (byte n is U+00n) in a
/// plain ASCII locale, without a valid locale, and for a file that the locale's encoding cannot
/// read as a whole, so that a rewrite never loses what it could not read.
class NativeEncoding {
  public:
    using Char = wchar_t;
    NativeEncoding();

    /// Always succeeds, and decides for Encode, KeepsFile and FateOf how this file is taken.
    std::wstring Decode(const std::string &bytes);

    /// False where a character cannot be expressed.
    bool Encode(std::wstring_view text, std::string &bytes) const;

    /// Whether the decoded text of the file, and every part of it, comes back as it was.
    bool KeepsFile(std::wstring_view text) const;

    /// The fate of a text that is written into the file.
    TextFate FateOf(std::wstring_view text) const;

  private:
    bool AsciiIsItself() const;
    bool BytesAreCharacters() const;
    bool IsUtf8() const;
    bool DecodeNative(const std::string &bytes, std::wstring &text) const;
    bool EncodeNative(std::wstring_view text, std::string &bytes) const;

    NativeCtypeLocale m_locale;
    bool m_ascii = false;      ///< ASCII is itself in the locale's encoding
    bool m_utf8 = false;       ///< the locale's encoding is UTF-8
    bool m_bytes = true;       ///< every file is taken byte for byte
    bool m_bytesOfFile = true; ///< the file decoded last is
};

#endif
