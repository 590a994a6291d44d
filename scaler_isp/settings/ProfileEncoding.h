#ifndef SCALER_ISP_SETTINGS_PROFILE_ENCODING_H
#define SCALER_ISP_SETTINGS_PROFILE_ENCODING_H

#include <locale.h> // NOLINT(*-deprecated-headers): locale_t is not in <clocale>
#include <string>
#include <string_view>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

/// How the bytes of a file stand for characters.
enum class FileForm {
    OneByteEach, ///< every character is one byte, in the bytes that are there
    Utf8,        ///< valid UTF-8
    Other        ///< bytes tell nothing before they are decoded
};

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
    FileForm Take(const std::string & /*bytes*/) {
        return FileForm::OneByteEach;
    }
    std::string Decode(const std::string &bytes) {
        return bytes;
    }
    bool Encode(std::string_view text, std::string &bytes) const {
        bytes = text;
        return true;
    }
    bool KeepsFile() const {
        return true;
    }
    TextFate AppendKept(std::string_view text, std::string &bytes) const {
        bytes += text;
        return TextFate::Kept;
    }
};

/// The character type locale of the environment (LC_ALL, LC_CTYPE, LANG). The other categories are
/// left alone: an unknown LC_TIME must not cost us the encoding. Null where the locale does not
/// exist.
class NativeCtypeLocale {
  public:
    NativeCtypeLocale();
    ~NativeCtypeLocale();
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

    /// Looks at the bytes of a file and decides for the other members how it is taken.
    FileForm Take(const std::string &bytes);

    /// Take and convert in one; it always succeeds.
    std::wstring Decode(const std::string &bytes);

    /// Converts a part of the file that was taken last.
    std::wstring DecodePart(std::string_view bytes) const;

    /// False where a character cannot be expressed.
    bool Encode(std::wstring_view text, std::string &bytes) const;

    /// Whether the file taken last, and every part of it, is read again as it was.
    bool KeepsFile() const;

    /// Appends the bytes of a text that is written into the file, where they are certain.
    TextFate AppendKept(std::wstring_view text, std::string &bytes) const;

  private:
    bool AsciiIsItself() const;
    bool BytesAreCharacters() const;
    bool IsUtf8() const;
    bool DecodeNative(std::string_view bytes, std::wstring *text) const;
    bool EncodeNative(std::wstring_view text, std::string &bytes) const;

    NativeCtypeLocale m_locale;
    bool m_ascii = false;      ///< ASCII is itself in the locale's encoding
    bool m_utf8 = false;       ///< the locale's encoding is UTF-8
    bool m_bytes = true;       ///< every file is taken byte for byte
    bool m_bytesOfFile = true; ///< the file taken last is
    bool m_asciiFile = false;  ///< the file taken last holds ASCII only
};

#endif
