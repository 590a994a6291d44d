#include "scaler_isp/common/EnvironmentLocale.h"

#include <atomic>
#include <cerrno>
#include <clocale>
#include <cwchar>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "scaler_isp/common/CCpTransform.h"
#include "support/SystemFault.h"
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

TEST(EnvironmentLocale, Locale_of_same_environment_is_made_once) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    ConvertOnce();
    const SystemFault fault("newlocale", ENOMEM);
    ConvertOnce();
    EXPECT_FALSE(fault.HasStruck());
}

TEST(EnvironmentLocale, Locale_is_made_anew_if_environment_changes) {
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard type("LC_CTYPE", std::nullopt);
    const EnvGuard language("LANG", "C.UTF-8");
    const struct {
        const char *variable;
        const char *value;
    } rows[] = {{"LC_ALL", "C"}, {"LC_CTYPE", "C"}, {"LANG", "C"}, {"LOCPATH", "/nowhere"}};
    for (const auto &row : rows) {
        ConvertOnce();
        const EnvGuard changed(row.variable, row.value);
        const SystemFault fault("newlocale", ENOMEM);
        EXPECT_EQ(kTransform.ConvertWCHARToCHAR(L"a"), "") << row.variable;
        EXPECT_TRUE(fault.HasStruck()) << row.variable;
    }
    ConvertOnce();
}

TEST(EnvironmentLocale, Conversion_uses_charset_of_environment_at_its_moment) {
    NEED_LOCALE("de_DE.ISO-8859-1");
    for (int round = 0; round < 3; ++round) {
        {
            const EnvironmentLocaleGuard latin("de_DE.ISO-8859-1");
            EXPECT_EQ(kTransform.ConvertWCHARToCHAR(L"\u00E9"), "\xE9");
        }
        ConvertOnce();
    }
}

TEST(EnvironmentLocale, Locale_that_cannot_be_made_is_tried_again) {
    NEED_LOCALE("de_DE.UTF-8");
    ConvertOnce();
    const EnvironmentLocaleGuard environment("de_DE.UTF-8");
    {
        const SystemFault fault("newlocale", ENOMEM);
        EXPECT_EQ(kTransform.ConvertWCHARToCHAR(L"a"), "");
    }
    ConvertOnce();
}

TEST(EnvironmentLocale, Locale_in_use_outlives_its_replacement) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    const EnvironmentLocale first;
    {
        const EnvironmentLocaleGuard other("tr_TR.UTF-8");
        const EnvironmentLocale second;
        EXPECT_STREQ(first.Charset(), "UTF-8");
    }
    const EnvironmentLocale::InUse use(first);
    EXPECT_EQ(CharacterOf('a'), static_cast<std::wint_t>(L'a'));
}

} // namespace
