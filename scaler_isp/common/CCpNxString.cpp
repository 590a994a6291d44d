#include "scaler_isp/common/CCpNxString.h"

#include <cstdarg>
#include <cwchar>
#include <string_view>
#include <utility>

#include "scaler_isp/common/CCpTransform.h"

namespace {

constexpr std::size_t kFormatCapacity = 1024;
constexpr std::size_t kWordCapacity = 1024;

const wchar_t *OrEmpty(const wchar_t *text) {
    return text != nullptr ? text : L"";
}

std::wstring_view View(const CCpNxString &text) {
    return text;
}

std::wstring_view View(const wchar_t *text) {
    return OrEmpty(text);
}

template <class Left, class Right> CCpNxString Join(Left left, Right right) {
    CCpNxString joined;
    joined.append(left).append(right);
    return joined;
}

} // namespace

CCpNxString::CCpNxString() = default;

CCpNxString::CCpNxString(const CCpNxString &other) : std::wstring(other) {}

CCpNxString::CCpNxString(CCpNxString &&other) noexcept
    : std::wstring(std::move(static_cast<std::wstring &>(other))) {}

CCpNxString::CCpNxString(const CCpNxString &other, size_type position, size_type count)
    : std::wstring(other, position, count) {}

CCpNxString::CCpNxString(const wchar_t *text) : std::wstring(OrEmpty(text)) {}

CCpNxString::CCpNxString(const wchar_t *text, size_type count)
    : std::wstring(OrEmpty(text), text != nullptr ? count : 0) {}

CCpNxString::CCpNxString(size_type count, wchar_t character) : std::wstring(count, character) {}

CCpNxString::~CCpNxString() = default;

CCpNxString &CCpNxString::operator=(const CCpNxString &other) {
    assign(other);
    return *this;
}

CCpNxString &CCpNxString::operator=(CCpNxString &&other) noexcept {
    std::wstring::operator=(std::move(static_cast<std::wstring &>(other)));
    return *this;
}

CCpNxString &CCpNxString::operator=(const wchar_t *text) {
    assign(OrEmpty(text));
    return *this;
}

CCpNxString &CCpNxString::operator=(wchar_t *text) {
    return *this = static_cast<const wchar_t *>(text);
}

CCpNxString &CCpNxString::operator=(wchar_t character) {
    assign(1, character);
    return *this;
}

CCpNxString &CCpNxString::operator=(const std::wstring &text) {
    assign(text);
    return *this;
}

CCpNxString &CCpNxString::operator=(const std::string &utf8) {
    clear();
    assign(CCpTransform().ConvertUTF8StringToUnicode(utf8));
    return *this;
}

void CCpNxString::Format(const wchar_t *format, ...) {
    wchar_t buffer[kFormatCapacity] = {};
    std::va_list arguments;
    va_start(arguments, format);
    // The result is ignored: output that does not fit leaves some prefix, which is all that Format
    // promises.
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): does not see the va_start
    static_cast<void>(std::vswprintf(buffer, kFormatCapacity, OrEmpty(format), arguments));
    va_end(arguments);
    buffer[kFormatCapacity - 1] = L'\0';
    assign(buffer);
}

CCpNxString CCpNxString::Left(int n) const {
    // A negative n becomes a huge size_type, which the substring constructor clamps to the length.
    return {*this, 0, static_cast<size_type>(n)};
}

CCpNxString CCpNxString::Right(int n) const {
    const auto count = static_cast<size_type>(n);
    return size() > count ? CCpNxString(*this, size() - count, count) : CCpNxString();
}

int CCpNxString::GetLength() const {
    return static_cast<int>(size());
}

bool CCpNxString::IsEmpty() const {
    return empty();
}

wchar_t *CCpNxString::GetBuffer() const {
    return const_cast<wchar_t *>(c_str()); // for interfaces that only read
}

const wchar_t *CCpNxString::GetString() const {
    return c_str();
}

void CCpNxString::ConverToUtf8String() {
    m_strNarrow = CCpTransform().ConvertUnicodeStringToUTF8(*this);
}

std::string CCpNxString::GetUtf8String() {
    ConverToUtf8String();
    return m_strNarrow;
}

const char *CCpNxString::GetUtf8StringBuffer() {
    ConverToUtf8String();
    return m_strNarrow.c_str();
}

int CCpNxString::GetUtf8StringLength() {
    ConverToUtf8String();
    return static_cast<int>(m_strNarrow.size());
}

const char *CCpNxString::GetAnsiString() {
    m_strNarrow = CCpTransform().ConvertUnicodeStringToANSI(*this);
    return m_strNarrow.c_str();
}

const char *CCpNxString::GetStringBufferBaseOnOS() {
    return GetUtf8StringBuffer();
}

// Three forms of each comparison: two strings, and a plain wide string on either side.
#define SCALER_ISP_COMPARISON(OPERATOR)                                                            \
    bool operator OPERATOR(const CCpNxString &left, const CCpNxString &right) {                    \
        return View(left) OPERATOR View(right);                                                    \
    }                                                                                              \
    bool operator OPERATOR(const wchar_t *left, const CCpNxString &right) {                        \
        return View(left) OPERATOR View(right);                                                    \
    }                                                                                              \
    bool operator OPERATOR(const CCpNxString &left, const wchar_t *right) {                        \
        return View(left) OPERATOR View(right);                                                    \
    }

SCALER_ISP_COMPARISON(==)
SCALER_ISP_COMPARISON(!=)
SCALER_ISP_COMPARISON(<)
SCALER_ISP_COMPARISON(<=)
SCALER_ISP_COMPARISON(>)
SCALER_ISP_COMPARISON(>=)

#undef SCALER_ISP_COMPARISON

CCpNxString operator+(const CCpNxString &left, const CCpNxString &right) {
    return Join(View(left), View(right));
}

CCpNxString operator+(const CCpNxString &left, const wchar_t *right) {
    return Join(View(left), View(right));
}

CCpNxString operator+(const wchar_t *left, const CCpNxString &right) {
    return Join(View(left), View(right));
}

CCpNxString operator+(const CCpNxString &left, wchar_t right) {
    return Join(View(left), std::wstring_view(&right, 1));
}

CCpNxString operator+(wchar_t left, const CCpNxString &right) {
    return Join(std::wstring_view(&left, 1), View(right));
}

std::istream &operator>>(std::istream &stream, CCpNxString &text) {
    char buffer[kWordCapacity] = {}; // extraction is bounded by the array
    stream >> buffer;
    text = std::string(buffer);
    return stream;
}

std::ostream &operator<<(std::ostream &stream, const CCpNxString &text) {
    return stream << static_cast<const void *>(text.c_str());
}
