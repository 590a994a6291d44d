#include "scaler_isp/common/CCpTransform.h"

#include <clocale>
#include <cwchar>
#include <functional>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"
#include "support/EnvGuard.h"
#include "support/TestLocale.h"

namespace {

const CCpTransform kTransform;

#define NEED_LOCALE(NAME)                                                                          \
    if (!HasTestLocale(NAME)) {                                                                    \
        GTEST_SKIP() << "the locale " NAME " was not made";                                        \
    }

/// The locale of the process while it lives; "C" afterwards.
class ProcessLocale {
  public:
    explicit ProcessLocale(int category, const char *name) {
        EXPECT_NE(std::setlocale(category, name), nullptr) << name;
    }
    ~ProcessLocale() {
        std::setlocale(LC_ALL, "C");
    }
    ProcessLocale(const ProcessLocale &) = delete;
    ProcessLocale &operator=(const ProcessLocale &) = delete;
};

std::string CurrentLocale() {
    return std::setlocale(LC_ALL, nullptr);
}

/// The three operations towards narrow must agree.
std::string Narrow(const std::wstring &wide) {
    const std::string result = kTransform.ConvertUnicodeStringToANSI(wide);
    EXPECT_EQ(kTransform.ConvertWCHARToCHAR(wide.c_str()), result);
    EXPECT_EQ(kTransform.ConvertWCHARToANSIString(wide.c_str()), result);
    return result;
}

/// The two operations towards wide must agree where the room measured first is enough.
std::wstring Wide(const std::string &narrow) {
    const std::wstring result = kTransform.ConvertCHARToUnicodeString(narrow.c_str());
    EXPECT_EQ(kTransform.ConvertANSIStringToUnicode(narrow), result);
    return result;
}

TEST(TransformLocale, Conversions_use_UTF8_in_UTF8_environment) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    EXPECT_EQ(Narrow(L"gr\u00FC\u00DF \u20AC \U0001F4BE"),
              "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x92\xBE");
    EXPECT_EQ(Wide("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x92\xBE"),
              L"gr\u00FC\u00DF \u20AC \U0001F4BE");
    EXPECT_EQ(Wide("gr\xFC"), L"");
    EXPECT_EQ(Narrow(std::wstring(1, static_cast<wchar_t>(0xD800))), "");
}

TEST(TransformLocale, Conversions_use_ISO_8859_1_in_Latin_environment) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    const EnvironmentLocaleGuard environment("de_DE.ISO-8859-1");
    EXPECT_EQ(Narrow(L"gr\u00FC\u00DF"), "gr\xFC\xDF");
    EXPECT_EQ(Wide("gr\xFC\xDF"), L"gr\u00FC\u00DF");
    EXPECT_EQ(Wide("\xC3\xA9"), L"\u00C3\u00A9");
    EXPECT_EQ(Narrow(L"ab\u20AC"), "");
}

TEST(TransformLocale, Conversions_use_EUC_JP_in_Japanese_environment) {
    NEED_LOCALE("ja_JP.EUC-JP");
    const EnvironmentLocaleGuard environment("ja_JP.EUC-JP");
    EXPECT_EQ(Narrow(L"\u3042a"), "\xA4\xA2"
                                  "a");
    EXPECT_EQ(Wide("\xA4\xA2"
                   "a"),
              L"\u3042a");
    EXPECT_EQ(Wide("\xA4"), L"");
}

TEST(TransformLocale, Conversions_accept_ASCII_only_in_C_environment) {
    const EnvironmentLocaleGuard environment("C");
    EXPECT_EQ(Narrow(L"plain"), "plain");
    EXPECT_EQ(Wide("plain"), L"plain");
#ifdef __linux__
    EXPECT_EQ(Narrow(L"gr\u00FC\u00DF"), "");
    EXPECT_EQ(Wide("gr\xFC"), L"");
#endif
}

TEST(TransformLocale, Null_and_empty_input_return_empty_string) {
    EXPECT_EQ(kTransform.ConvertWCHARToCHAR(nullptr), "");
    EXPECT_EQ(kTransform.ConvertWCHARToANSIString(nullptr), "");
    EXPECT_EQ(kTransform.ConvertCHARToUnicodeString(nullptr), L"");
    EXPECT_EQ(Narrow(L""), "");
    EXPECT_EQ(Wide(""), L"");
}

TEST(TransformLocale, Text_ends_at_first_NUL) {
    EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(std::wstring(L"ab\0cd", 5)), "ab");
    EXPECT_EQ(kTransform.ConvertANSIStringToUnicode(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(kTransform.ConvertCHARToUnicodeString("ab\0cd"), L"ab");
    // Nothing after it is looked at, either.
    EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(
                  std::wstring{L'a', L'\0', static_cast<wchar_t>(0xD800)}),
              "a");
    EXPECT_EQ(kTransform.ConvertANSIStringToUnicode(std::string("a\0\xFF", 3)), L"a");
}

TEST(TransformLocale, Locale_conversions_have_no_length_limit) {
    std::string narrow;
    for (int i = 0; i < 50000; ++i) {
        narrow += "\xE2\x82\xAC";
    }
    const std::wstring wide(50000, L'\u20AC');
    EXPECT_EQ(Narrow(wide), narrow);
    EXPECT_EQ(Wide(narrow), wide);
}

/// What the C library says in a locale, character by character.
std::string SlowNarrow(const std::wstring &wide) {
    std::string result;
    std::mbstate_t state{};
    for (const wchar_t character : wide) {
        char bytes[64];
        const std::size_t size = std::wcrtomb(bytes, character, &state);
        if (size == static_cast<std::size_t>(-1)) {
            return "";
        }
        result.append(bytes, size);
    }
    return result;
}

std::wstring SlowWide(const std::string &narrow) {
    std::wstring result;
    std::mbstate_t state{};
    std::size_t at = 0;
    while (at < narrow.size()) {
        wchar_t character = 0;
        const std::size_t size =
            std::mbrtowc(&character, narrow.data() + at, narrow.size() - at, &state);
        if (size == static_cast<std::size_t>(-1) || size == static_cast<std::size_t>(-2)) {
            return L"";
        }
        result += character;
        at += size;
    }
    return result;
}

TEST(TransformLocale, Random_texts_convert_as_character_by_character) {
    for (const char *name : {"C", "C.UTF-8", "de_DE.ISO-8859-1", "de_DE.UTF-8", "ja_JP.EUC-JP"}) {
        if (name[0] != 'C' && !HasTestLocale(name)) {
            continue;
        }
        const EnvironmentLocaleGuard environment(name);
        std::mt19937 random(63);
        for (int round = 0; round < 500; ++round) {
            std::string narrow;
            std::wstring wide;
            for (std::size_t length = random() % 8; length > 0; --length) {
                narrow += static_cast<char>(random() % 255 + 1);
                wide += static_cast<wchar_t>(random() % (random() % 2 == 0 ? 0x7F : 0x120) + 1);
            }
            std::string expectedNarrow;
            std::wstring expectedWide;
            {
                const ProcessLocale process(LC_ALL, "");
                expectedNarrow = SlowNarrow(wide);
                expectedWide = SlowWide(narrow);
            }
            ASSERT_EQ(Narrow(wide), expectedNarrow) << name << " " << round;
            ASSERT_EQ(Wide(narrow), expectedWide) << name << " " << round;
        }
    }
}

TEST(TransformLocale, ANSI_to_wide_is_measured_before_the_locale_switch) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    {
        // In the host's UTF-8 the two bytes are one character: so much room there is, and one place
        // more. The environment reads three characters from the three bytes.
        const EnvironmentLocaleGuard environment("de_DE.ISO-8859-1");
        const ProcessLocale host(LC_CTYPE, "C.UTF-8");
        EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("\xE2\x82\xAC"), L"\u00E2\u0082");
        EXPECT_EQ(kTransform.ConvertCHARToUnicodeString("\xE2\x82\xAC"), L"\u00E2\u0082\u00AC");
    }
    {
        // The host's locale cannot read the text: there is room for every byte.
        const EnvironmentLocaleGuard environment("C.UTF-8");
        EXPECT_EQ(CurrentLocale(), "C");
        EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("\xE2\x82\xAC\xC3\xA9"), L"\u20AC\u00E9");
    }
    {
        // The host's locale measures more than the environment needs.
        const EnvironmentLocaleGuard environment("C.UTF-8");
        const EnvGuard folder("LOCPATH", std::nullopt);
        EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("abc"), L"abc");
    }
}

/// Every conversion that switches the locale, once.
const std::vector<std::function<void()>> kConversions = {
    [] { kTransform.ConvertUnicodeStringToANSI(L"a\u00E9"); },
    [] { kTransform.ConvertWCHARToCHAR(L"a\u00E9"); },
    [] { kTransform.ConvertWCHARToANSIString(L"a\u00E9"); },
    [] { kTransform.ConvertANSIStringToUnicode("a\xE9"); },
    [] { kTransform.ConvertCHARToUnicodeString("a\xE9"); },
};

void ExpectLocaleKept() {
    for (std::size_t i = 0; i < kConversions.size(); ++i) {
        const std::string before = CurrentLocale();
        const std::string decimals = std::localeconv()->decimal_point;
        kConversions[i]();
        EXPECT_EQ(CurrentLocale(), before) << "conversion " << i;
        EXPECT_EQ(std::localeconv()->decimal_point, decimals) << "conversion " << i;
    }
}

TEST(TransformLocale, Conversion_restores_locale_of_host) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    const EnvironmentLocaleGuard environment("de_DE.ISO-8859-1");
    ExpectLocaleKept();
    const ProcessLocale host(LC_ALL, "C.UTF-8");
    ExpectLocaleKept();
    EXPECT_EQ(CurrentLocale(), "C.UTF-8");
}

TEST(TransformLocale, Conversion_restores_mixed_locale_of_host) {
    NEED_LOCALE("de_DE.UTF-8");
    const EnvironmentLocaleGuard environment("de_DE.UTF-8");
    const ProcessLocale host(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_NE(CurrentLocale().find("LC_NUMERIC=de_DE.UTF-8"), std::string::npos);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    ExpectLocaleKept();
    const ProcessLocale characters(LC_CTYPE, "C.UTF-8");
    ExpectLocaleKept();
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");
}

TEST(TransformLocale, Mixed_environment_uses_encoding_of_LC_CTYPE) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    const EnvironmentLocaleGuard folder("de_DE.ISO-8859-1");
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard language("LANG", "C.UTF-8");
    const EnvGuard characters("LC_CTYPE", "de_DE.ISO-8859-1");
    EXPECT_EQ(Narrow(L"\u00FC"), "\xFC");
    EXPECT_EQ(Wide("\xFC"), L"\u00FC");
    ExpectLocaleKept();
}

TEST(TransformLocale, Missing_category_does_not_change_encoding) {
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard language("LANG", "C.UTF-8");
    const EnvGuard time("LC_TIME", "no_SUCH.locale");
    EXPECT_EQ(Narrow(L"\u00FC"), "\xC3\xBC");
    EXPECT_EQ(Wide("\xC3\xBC"), L"\u00FC");
    ExpectLocaleKept();
}

TEST(TransformLocale, Invalid_environment_keeps_locale_of_host) {
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard language("LANG", "no_SUCH.locale");
    EXPECT_EQ(Narrow(L"plain"), "plain");
    EXPECT_EQ(Wide("plain"), L"plain");
    ExpectLocaleKept();
    const ProcessLocale host(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(Narrow(L"\u00FC"), "\xC3\xBC");
    EXPECT_EQ(Wide("\xC3\xBC"), L"\u00FC");
    ExpectLocaleKept();
}

TEST(TransformLocale, Failures_print_nothing) {
    const EnvironmentLocaleGuard environment("C");
    EXPECT_EQ(OutputOf([] {
                  EXPECT_EQ(ErrorOutputOf([] {
                                for (const auto &conversion : kConversions) {
                                    conversion();
                                }
                            }),
                            "");
              }),
              "");
}

} // namespace
