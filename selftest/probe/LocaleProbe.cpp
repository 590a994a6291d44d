#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <langinfo.h>

#include "probe/Groups.h"
#include "probe/Platform.h"
#include "probe/Scratch.h"

namespace {

constexpr std::size_t kInvalid = static_cast<std::size_t>(-1);
constexpr int kFirstVersionWithPlainUtf8 = 15;

std::string TextOr(const char *text, const char *otherwise) {
    return text != nullptr ? text : otherwise;
}

std::string WideOf(const char *bytes) {
    std::mbstate_t state{};
    wchar_t wide = 0;
    errno = 0;
    const std::size_t used = std::mbrtowc(&wide, bytes, std::strlen(bytes), &state);
    char shown[32];
    std::snprintf(shown, sizeof shown, "U+%04X", static_cast<unsigned>(wide));
    return used == kInvalid ? ErrorName(errno) : used > 4 ? "incomplete" : shown;
}

std::string BytesOf(wchar_t wide) {
    std::mbstate_t state{};
    char bytes[64];
    errno = 0;
    const std::size_t count = std::wcrtomb(bytes, wide, &state);
    return count == kInvalid ? ErrorName(errno) : std::string(bytes, count);
}

/// Wide formatting of a character that the locale may lack.
std::string Formatted() {
    wchar_t text[16] = L"";
    return std::swprintf(text, 16, L"%ls", L"a\u20AC") == 2 ? "2 characters" : "fails";
}

void ProbeCLocale(Results &results) {
    results.Assume("encoding_of_C", PlatformAssumption("ANSI_X3.4-1968", "US-ASCII"),
                   TextOr(::nl_langinfo(CODESET), "none"));
    results.Assume("byte_E9_in_C", PlatformAssumption("EILSEQ", "U+00E9"), WideOf("\xE9"));
    results.Assume("character_E9_in_C", PlatformAssumption("EILSEQ", "\xE9"), BytesOf(L'\u00E9'));
    results.Assume("character_20AC_in_C", "EILSEQ", BytesOf(L'\u20AC'));
    results.Assume("formatting_of_20AC_in_C", PlatformAssumption("2 characters", "fails"),
                   Formatted());
}

void ProbeUtf8Locale(Results &results) {
    results.Assume("encoding_of_UTF-8", "UTF-8", TextOr(::nl_langinfo(CODESET), "none"));
    results.Assume("bytes_C3_A9_in_UTF-8", "U+00E9", WideOf("\xC3\xA9"));
    results.Assume("byte_E9_in_UTF-8", "EILSEQ", WideOf("\xE9|x"));
    results.Assume("character_20AC_in_UTF-8", "\xE2\x82\xAC", BytesOf(L'\u20AC'));
    results.Note("surrogate_in_UTF-8", BytesOf(wchar_t{0xD800}));
    results.Note("value_above_unicode_in_UTF-8", BytesOf(wchar_t{0x110000}));
    results.Assume("formatting_of_20AC_in_UTF-8", "2 characters", Formatted());
}

/// Which locales the system has.
void ProbeNames(Results &results) {
    const bool hasEnglish = std::setlocale(LC_ALL, "en_US.UTF-8") != nullptr;
    results.Assume("locale_C.UTF-8",
                   PlatformAssumptionSince(kFirstVersionWithPlainUtf8, "missing", "exists"),
                   std::setlocale(LC_ALL, "C.UTF-8") != nullptr ? "exists" : "missing");
    results.Assume("locale_en_US.UTF-8", PlatformAssumption("", "exists"),
                   hasEnglish ? "exists" : "missing");
    std::setlocale(LC_ALL, "C");
    const std::string name = hasEnglish ? "en_US.UTF-8" : "C.UTF-8";
    if (std::setlocale(LC_CTYPE, name.c_str()) != nullptr) {
        results.Assume("composite_name",
                       PlatformAssumption(("LC_CTYPE=" + name +
                                           ";LC_NUMERIC=C;LC_TIME=C;LC_COLLATE=C;LC_MONETARY=C;"
                                           "LC_MESSAGES=C;LC_PAPER=C;LC_NAME=C;LC_ADDRESS=C;"
                                           "LC_TELEPHONE=C;LC_MEASUREMENT=C;LC_IDENTIFICATION=C")
                                              .c_str(),
                                          ("C/" + name + "/C/C/C/C").c_str()),
                       TextOr(std::setlocale(LC_ALL, nullptr), "none"));
    }
}

} // namespace

void ProbeLocale(const Surroundings &surroundings) {
    const char *name = std::setlocale(LC_ALL, "");
    surroundings.results.Note("locale_of_environment", TextOr(name, "does not exist"));
    if (name == nullptr) {
        return;
    }
    const bool isUtf8 = std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0;
    if (std::strcmp(name, "C") == 0) {
        ProbeCLocale(surroundings.results);
        ProbeNames(surroundings.results);
    } else if (isUtf8) {
        ProbeUtf8Locale(surroundings.results);
    } else {
        surroundings.results.Note("encoding_of_environment", ::nl_langinfo(CODESET));
    }
}
