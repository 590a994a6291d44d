#include "scaler_isp/common/EnvironmentLocale.h"

#include <atomic>
#include <clocale>
#include <cwchar>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "scaler_isp/common/CCpTransform.h"
#include "support/TestLocale.h"

namespace {

const CCpTransform kTransform;
constexpr int kRounds = 2000;

#define NEED_LOCALE(NAME)                                                                          \
    if (!HasTestLocale(NAME)) {                                                                    \
        GTEST_SKIP() << "the locale " NAME " was not made";                                        \
    }

/// A locale that the host has chosen for its own thread.
class HostLocale {
  public:
    explicit HostLocale(const char *name)
        : m_locale(newlocale(LC_ALL_MASK, name, locale_t{})), m_previous(uselocale(m_locale)) {}
    ~HostLocale() {
        uselocale(m_previous);
        freelocale(m_locale);
    }
    HostLocale(const HostLocale &) = delete;
    HostLocale &operator=(const HostLocale &) = delete;

    locale_t Get() const {
        return m_locale;
    }

  private:
    locale_t m_locale;
    locale_t m_previous;
};

/// The character that the thread's locale makes of one byte; WEOF for none.
std::wint_t CharacterOf(char byte) {
    std::mbstate_t state{};
    wchar_t character = 0;
    return std::mbrtowc(&character, &byte, 1, &state) == 1 ? static_cast<std::wint_t>(character)
                                                           : WEOF;
}

void ConvertOnce() {
    EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(L"a\u00E9"), "a\xC3\xA9");
    EXPECT_EQ(kTransform.ConvertWCHARToCHAR(L"a\u00E9"), "a\xC3\xA9");
    EXPECT_EQ(kTransform.ConvertWCHARToANSIString(L"a\u00E9"), "a\xC3\xA9");
    EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("a\xC3\xA9"), L"a\u00E9");
    EXPECT_EQ(kTransform.ConvertCHARToUnicodeString("a\xC3\xA9"), L"a\u00E9");
}

TEST(EnvironmentLocale, Conversion_and_locale_of_host_thread_are_independent) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    const EnvironmentLocaleGuard latin("de_DE.ISO-8859-1"); // where newlocale finds it
    const HostLocale host("de_DE.ISO-8859-1");
    ASSERT_EQ(CharacterOf('\xE9'), 0xE9U);
    const EnvironmentLocaleGuard environment("C.UTF-8");
    for (int round = 0; round < 3; ++round) {
        ConvertOnce();
        EXPECT_EQ(uselocale(locale_t{}), host.Get());
        EXPECT_EQ(CharacterOf('\xE9'), 0xE9U);
    }
}

TEST(EnvironmentLocale, Conversion_keeps_process_locale) {
    NEED_LOCALE("de_DE.UTF-8");
    const EnvironmentLocaleGuard environment("de_DE.UTF-8");
    for (const char *name : {"C", "C.UTF-8", "de_DE.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << name;
        const std::string before = std::setlocale(LC_ALL, nullptr);
        const std::string point = std::localeconv()->decimal_point;
        ConvertOnce();
        EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
        EXPECT_EQ(std::localeconv()->decimal_point, point) << name;
        EXPECT_EQ(uselocale(locale_t{}), LC_GLOBAL_LOCALE) << name;
    }
    std::setlocale(LC_ALL, "C");
}

TEST(EnvironmentLocale, Missing_locale_keeps_locale_of_thread) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    const EnvironmentLocaleGuard latin("de_DE.ISO-8859-1");
    const HostLocale host("de_DE.ISO-8859-1");
    for (const char *name : {"nowhere.UTF-8", "no/where", "nowhere.UTF-8"}) {
        const EnvironmentLocaleGuard environment(name);
        const EnvironmentLocale locale;
        EXPECT_FALSE(locale.Exists()) << name;
        const EnvironmentLocale::InUse use(locale);
        EXPECT_EQ(uselocale(locale_t{}), host.Get()) << name;
        EXPECT_EQ(kTransform.ConvertCHARToUnicodeString("\xE9"), L"\u00E9") << name;
    }
}

TEST(EnvironmentLocale, Only_category_LC_CTYPE_is_used) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard type("LC_CTYPE", "C.UTF-8");
    const EnvGuard time("LC_TIME", "nowhere");
    ConvertOnce();
}

/// Converts in this thread for a while; another one does something else all the time.
template <class Other> void ConvertWhile(Other &&other) {
    std::atomic<bool> done = false;
    std::thread thread([&] {
        while (!done && !testing::Test::HasFailure()) {
            other();
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        ConvertOnce();
    }
    done = true;
    thread.join();
}

TEST(EnvironmentLocale, Conversion_does_not_change_locale_of_second_thread) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_EQ(before, "C");
    ConvertWhile([&] {
        std::mbstate_t state{};
        wchar_t character = 0;
        // In UTF-8 the two bytes are one character.
        EXPECT_NE(std::mbrtowc(&character, "\xC3\xA9", 2, &state), 2U);
        EXPECT_STREQ(std::localeconv()->decimal_point, ".");
        EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
        EXPECT_EQ(uselocale(locale_t{}), LC_GLOBAL_LOCALE);
    });
}

TEST(EnvironmentLocale, Conversion_ignores_setlocale_in_second_thread) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    ConvertWhile([] {
        EXPECT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
        EXPECT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    });
}

} // namespace
