#include "scaler_isp/common/Numbers.h"

#include <cctype>
#include <cstdlib>
#include <cwchar>
#include <cwctype>

namespace {

bool IsSpace(char character) {
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool IsSpace(wchar_t character) {
    return std::iswspace(static_cast<std::wint_t>(character)) != 0;
}

template <class Char> int BaseOf(const Char *text) {
    while (IsSpace(*text)) {
        ++text;
    }
    if (*text == '+' || *text == '-') {
        ++text;
    }
    if (*text != '0') {
        return 10;
    }
    return text[1] == 'x' || text[1] == 'X' ? 16 : 8;
}

} // namespace

long ParseLong(const char *text, const char **end) {
    char *stop = nullptr;
    const long value = std::strtol(text, &stop, BaseOf(text));
    *end = stop;
    return value;
}

long long ParseLongLong(const char *text, const char **end) {
    char *stop = nullptr;
    const long long value = std::strtoll(text, &stop, BaseOf(text));
    *end = stop;
    return value;
}

long long ParseLongLong(const wchar_t *text, const wchar_t **end) {
    wchar_t *stop = nullptr;
    const long long value = std::wcstoll(text, &stop, BaseOf(text));
    *end = stop;
    return value;
}
