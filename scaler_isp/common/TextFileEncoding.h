#ifndef SCALER_ISP_COMMON_TEXT_FILE_ENCODING_H
#define SCALER_ISP_COMMON_TEXT_FILE_ENCODING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "scaler_isp/common/EnvironmentLocale.h"

/// Decodes a text file to one common form and encodes it again, so that its lines can be compared
/// and edited as `char` whatever the file's encoding is. In that form equal bytes are equal
/// characters.
///
/// The form is UTF-8, or one byte per character (byte n is U+00n). It is one byte per character if
/// the encoding is plain ASCII or none at all, and for every file that the encoding cannot decode
/// completely, so that rewriting a file never loses what cannot be decoded. Decode detects the form
/// that the other members then use.
///
/// All members throw CallFailure if a conversion fails for a reason other than its input.
class TextFileEncoding {
  public:
    enum class Charset {
        Bytes,      ///< one byte per character, always
        Environment ///< that of the environment's locale (LC_ALL, LC_CTYPE, LANG)
    };
    explicit TextFileEncoding(Charset charset);

    /// Decodes a file. Always succeeds.
    std::string Decode(std::string bytes);

    /// Encodes a text. False if the encoding cannot express it.
    bool Encode(std::string text, std::string &bytes) const;
    bool CanEncode(const std::string &text) const;

    /// Converts a wide string to text; false if the form of this file cannot hold it. Whether the
    /// encoding can express it is known only when the text is encoded.
    bool ToText(std::wstring_view wide, std::string &text) const;
    std::wstring FromText(std::string_view text) const;

    /// UNITS: characters.
    std::size_t CountCharacters(std::string_view text) const;

    /// Whether the text survives encoding and decoding unchanged. A few encodings write two
    /// characters as the same bytes.
    bool RoundTrips(std::string_view text) const;

    /// Whether the file is treated as bytes because the encoding cannot decode it. That ends as
    /// soon as all its lines can be decoded.
    bool IsUndecodable() const {
        return m_kind != Kind::Bytes && m_fileIsByteForByte;
    }
    bool CanDecode(std::string_view bytes) const;

    /// Whether ASCII characters are bytes of the same value in the file.
    bool IsAsciiCompatible() const {
        return m_isAsciiCompatible;
    }

  private:
    enum class Kind {
        Bytes, ///< every byte is a character
        Utf8,
        Other ///< the locale's conversion functions decode and encode it
    };

    Kind DetectKind();
    /// Whether the text of the file differs from its bytes.
    bool IsConverted() const {
        return m_kind == Kind::Other && !m_fileIsByteForByte;
    }
    bool DecodeNative(std::string_view bytes, std::wstring &wide) const;
    bool EncodeNative(std::wstring_view wide, std::string &bytes) const;

    std::optional<EnvironmentLocale> m_locale;
    bool m_isAsciiCompatible = true;
    Kind m_kind = Kind::Bytes;
    bool m_fileIsByteForByte = true;
};

#endif
