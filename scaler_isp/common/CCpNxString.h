#ifndef SCALER_ISP_COMMON_CCP_NX_STRING_H
#define SCALER_ISP_COMMON_CCP_NX_STRING_H

#include <istream>
#include <ostream>
#include <string>

#include "scaler_isp/abi/Export.h"

/// The wide string of the library: a standard wide string (UTF-32, host order) that converts itself
/// to narrow encodings.
///
/// A narrow pointer from GetUtf8StringBuffer, GetStringBufferBaseOnOS or GetAnsiString points into
/// a cache of the object. It stays valid until the next conversion on the same object or its
/// destruction; assigning, copying or moving never touches the cache. So never take it from a
/// temporary that you need beyond the statement.
///
/// A null pointer counts as the empty text everywhere.
class SCALER_ISP_API CCpNxString : public std::wstring {
  public:
    CCpNxString();
    CCpNxString(const CCpNxString &other);
    CCpNxString(CCpNxString &&other) noexcept;
    /// The standard substring of other; throws std::out_of_range for a position past the end.
    CCpNxString(const CCpNxString &other, size_type position, size_type count);
    CCpNxString(const wchar_t *text); // NOLINT(*-explicit-*): host code passes plain wide text
    CCpNxString(const wchar_t *text, size_type count);
    CCpNxString(size_type count, wchar_t character);
    virtual ~CCpNxString();

    CCpNxString &operator=(const CCpNxString &other);
    CCpNxString &operator=(CCpNxString &&other) noexcept;
    CCpNxString &operator=(const wchar_t *text);
    CCpNxString &operator=(wchar_t *text);
    CCpNxString &operator=(wchar_t character);
    CCpNxString &operator=(const std::wstring &text);
    /// Takes UTF-8; invalid UTF-8 leaves the string empty.
    CCpNxString &operator=(const std::string &utf8);

    /// Formats like vswprintf. UNITS: at most 1,023 characters are kept; of longer output some
    /// prefix.
    void Format(const wchar_t *format, ...);

    /// The first n characters. A negative n or one beyond the length gives the whole text.
    CCpNxString Left(int n) const;

    /// The last n characters, but only of a longer text.
    // QUIRK Right_of_the_full_length_is_empty: Right of the full length, of more, or of a negative
    // count is empty, unlike Left.
    CCpNxString Right(int n) const;

    int GetLength() const; ///< UNITS: wide characters
    bool IsEmpty() const;

    /// The NUL-terminated text, valid until the string changes. GetBuffer is for interfaces that
    /// take a wchar_t * and only read; do not write through it.
    wchar_t *GetBuffer() const;
    const wchar_t *GetString() const;

    void ConverToUtf8String();         ///< converts the text to UTF-8 into the cache
    std::string GetUtf8String();       ///< the UTF-8 form, a copy
    const char *GetUtf8StringBuffer(); ///< the UTF-8 form in the cache
    int GetUtf8StringLength();         ///< UNITS: bytes of the UTF-8 form
    const char *GetAnsiString();       ///< the form in the environment's locale, in the cache

    /// The form that the operating system takes for file names: UTF-8, in the cache.
    const char *GetStringBufferBaseOnOS();

  private:
    std::string m_strNarrow;
};

/// Comparison by character value, case-sensitive, without a locale; null counts as empty.
SCALER_ISP_API bool operator==(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator==(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator==(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API bool operator!=(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator!=(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator!=(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API bool operator<(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator<(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator<(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API bool operator<=(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator<=(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator<=(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API bool operator>(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator>(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator>(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API bool operator>=(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API bool operator>=(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API bool operator>=(const CCpNxString &left, const wchar_t *right);

/// The concatenation as a new string.
SCALER_ISP_API CCpNxString operator+(const CCpNxString &left, const CCpNxString &right);
SCALER_ISP_API CCpNxString operator+(const CCpNxString &left, const wchar_t *right);
SCALER_ISP_API CCpNxString operator+(const wchar_t *left, const CCpNxString &right);
SCALER_ISP_API CCpNxString operator+(const CCpNxString &left, wchar_t right);
SCALER_ISP_API CCpNxString operator+(wchar_t left, const CCpNxString &right);

/// Reads one word of UTF-8, ended by white space. UNITS: at most 1,023 bytes; the rest of a longer
/// word stays in the stream. Where nothing can be read the text becomes empty.
SCALER_ISP_API std::istream &operator>>(std::istream &stream, CCpNxString &text);

// QUIRK Stream_output_writes_the_address: writing a string to a narrow stream writes the address of
// its characters; print GetUtf8String instead.
SCALER_ISP_API std::ostream &operator<<(std::ostream &stream, const CCpNxString &text);

#endif
