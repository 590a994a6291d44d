#ifndef SCALER_ISP_COMMON_CCP_NX_STRING_H
#define SCALER_ISP_COMMON_CCP_NX_STRING_H

#include <istream>
#include <ostream>
#include <string>

#include "scaler_isp/abi/Export.h"

/// The wide string of the library: a standard wide string (UTF-32, host byte order) that also
/// converts itself to narrow encodings.
///
/// A narrow pointer from GetUtf8StringBuffer, GetStringBufferBaseOnOS or GetAnsiString points into
/// a cache of the object. It is valid until the next conversion on the same object or its
/// destruction; assigning, copying or moving does not change the cache. Do not keep such a pointer
/// from a temporary.
///
/// A null pointer counts as the empty string everywhere.
class SCALER_ISP_API CCpNxString : public std::wstring {
  public:
    CCpNxString();
    CCpNxString(const CCpNxString &other);
    CCpNxString(CCpNxString &&other) noexcept;
    /// The standard substring of other; throws std::out_of_range for a position past the end.
    CCpNxString(const CCpNxString &other, size_type position, size_type count);
    CCpNxString(const wchar_t *text); // NOLINT(*-explicit-*): host code passes plain wide strings
    CCpNxString(const wchar_t *text, size_type count);
    CCpNxString(size_type count, wchar_t character);
    virtual ~CCpNxString();

    CCpNxString &operator=(const CCpNxString &other);
    CCpNxString &operator=(CCpNxString &&other) noexcept;
    CCpNxString &operator=(const wchar_t *text);
    CCpNxString &operator=(wchar_t *text);
    CCpNxString &operator=(wchar_t character);
    CCpNxString &operator=(const std::wstring &text);
    /// Converts from UTF-8; invalid UTF-8 leaves the string empty.
    CCpNxString &operator=(const std::string &utf8);

    /// Formats like vswprintf. UNITS: at most 1,023 characters; longer output is truncated to an
    /// unspecified prefix.
    void Format(const wchar_t *format, ...);

    /// The first n characters. A negative n, or one beyond the length, gives the complete string.
    CCpNxString Left(int n) const;

    /// The last n characters, but only of a longer string.
    // QUIRK Right_of_the_full_length_is_empty: unlike Left, Right returns the empty string for the
    // full length, for more, and for a negative count.
    CCpNxString Right(int n) const;

    int GetLength() const; ///< UNITS: wide characters
    bool IsEmpty() const;

    /// The NUL-terminated characters, valid until the string changes. GetBuffer is for interfaces
    /// that only read but expect a wchar_t *; do not write through it.
    wchar_t *GetBuffer() const;
    const wchar_t *GetString() const;

    void ConverToUtf8String();         ///< stores the UTF-8 form in the cache
    std::string GetUtf8String();       ///< the UTF-8 form, a copy
    const char *GetUtf8StringBuffer(); ///< the UTF-8 form in the cache
    int GetUtf8StringLength();         ///< UNITS: bytes of the UTF-8 form
    const char *GetAnsiString();       ///< the form in the environment's locale, in the cache

    /// The form in which the operating system expects file names: UTF-8, in the cache.
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

/// Reads one UTF-8 token up to white space. UNITS: at most 1,023 bytes; the rest of a longer token
/// stays in the stream. If nothing can be read, the string becomes empty.
SCALER_ISP_API std::istream &operator>>(std::istream &stream, CCpNxString &text);

// QUIRK Stream_output_writes_the_address: operator<< on a narrow stream writes the address of the
// characters; write GetUtf8String instead.
SCALER_ISP_API std::ostream &operator<<(std::ostream &stream, const CCpNxString &text);

#endif
