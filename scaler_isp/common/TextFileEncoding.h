#ifndef SCALER_ISP_COMMON_TEXT_FILE_ENCODING_H
#define SCALER_ISP_COMMON_TEXT_FILE_ENCODING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "scaler_isp/common/EnvironmentLocale.h"

/// Converts a text file to one form of text and back, so that its lines can be compared and edited
/// as `char` whatever the encoding is. Equal bytes of a text are equal characters.
///
/// A text is UTF-8, or one byte per character (byte n is U+00n). It is one byte per character if
/// the encoding is a plain ASCII one or none at all, and for every file that the encoding cannot
/// read as a whole: so a rewrite never loses what it could not read. The other members refer to the
/// file that was decoded last.
///
/// All members throw CallFailure if a conversion fails for another reason than the text.
class TextFileEncoding {
  public:
    enum class Charset {
        Bytes,      ///< one byte per character, always
        Environment ///< that of the environment's locale (LC_ALL, LC_CTYPE, LANG)
    };
    explicit TextFileEncoding(Charset charset);

    /// The text of a file. It always succeeds.
    std::string Decode(std::string bytes);

    /// The bytes of a text. False if the encoding cannot express it.
    bool Encode(std::string text, std::string &bytes) const;
    bool CanEncode(const std::string &text) const;

    /// A wide string as text; false if no text of this file can hold it. Whether the encoding can
    /// express it is seen when the text is encoded.
    bool ToText(std::wstring_view wide, std::string &text) const;
    std::wstring FromText(std::string_view text) const;

    /// UNITS: characters.
    std::size_t CountCharacters(std::string_view text) const;

    /// Whether the text, once written, is decoded to the same text again. That holds for most
    /// encodings; a few write two characters as the same bytes.
    bool IsKept(std::string_view text) const;

    /// Whether the file is taken as bytes because the encoding cannot read it. It can again once
    /// all its lines are readable.
    bool IsUnreadable() const {
        return m_kind != Kind::Bytes && m_fileIsBytes;
    }
    bool IsReadable(std::string_view bytes) const;

    /// Whether ASCII characters are bytes of the same value in the file.
    bool KeepsAscii() const {
        return m_ascii;
    }

  private:
    enum class Kind { Bytes, Utf8, Other };

    Kind DetectKind();
    /// Whether a text of the file is not its bytes.
    bool IsConverted() const {
        return m_kind == Kind::Other && !m_fileIsBytes;
    }
    bool ReadNative(std::string_view bytes, std::wstring &wide) const;
    bool WriteNative(std::wstring_view wide, std::string &bytes) const;

    std::optional<EnvironmentLocale> m_locale;
    bool m_ascii = true;
    Kind m_kind = Kind::Bytes;
    bool m_fileIsBytes = true;
};

#endif
