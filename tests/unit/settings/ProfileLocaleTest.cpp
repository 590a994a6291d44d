#include <clocale>
#include <gtest/gtest.h>
#include <locale.h>

#include "support/CapturedOutput.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

/// What the wide family makes of bytes that are not ASCII.
class ProfileLocale : public testing::Test {
  protected:
    std::wstring Get(const std::string &bytes, const std::wstring &key) {
        wchar_t buffer[1100] = L"~~~";
        const std::wstring path = Wide(m_folder.Write("p.ini", bytes));
        CpNxGetPrivateProfileStringW(L"S", key.c_str(), L"dflt", buffer, 1100, path.c_str());
        return buffer;
    }
    /// The file after one write; m_result and m_printed tell the rest.
    std::string Write(const std::string &before, const std::wstring &key,
                      const std::wstring &value) {
        const std::wstring path = Wide(m_folder.Write("p.ini", before));
        m_printed = OutputOf([&] {
            m_result =
                CpNxWritePrivateProfileStringW(L"S", key.c_str(), value.c_str(), path.c_str());
        });
        return m_folder.Read("p.ini");
    }
    TempFolder m_folder;
    int m_result = -1;
    std::string m_printed;
};

TEST_F(ProfileLocale, UTF8_locale_reads_and_writes_characters) {
    EXPECT_EQ(Get("[S]\n\xC3\xA4=\xE4\xB8\xAD\n", L"\x00E4"), L"\x4E2D");
    EXPECT_EQ(Write("[S]\n\xC3\xA4=1\n", L"\x00E4", L"\x1F600"),
              "[S]\n\xC3\xA4=\xF0\x9F\x98\x80\n");
    EXPECT_EQ(m_result, 1);
}

TEST_F(ProfileLocale, Line_limit_counts_characters_and_not_bytes) {
    std::string bytes;
    std::wstring text;
    for (int i = 0; i < 1021; ++i) {
        bytes += "\xC3\xA4";
        text += L'\x00E4';
    }
    EXPECT_EQ(Get("[S]\nK=" + bytes + "\nL=1\n", L"K"), text);
    EXPECT_EQ(Get("[S]\nK=" + bytes + "\nL=1\n", L"L"), L"1");
    EXPECT_EQ(Get("[S]\nK=" + bytes + "x\nL=1\n", L"L"), L"dflt");
    EXPECT_EQ(Write("[S]\nK=" + bytes + "\nL=1\n", L"L", L"2"), "[S]\nK=" + bytes + "\nL=2\n");
    EXPECT_EQ(Write("[S]\nK=" + bytes + "x\nL=1\n", L"L", L"2"), "[S]\nL=2\n");
}

TEST_F(ProfileLocale, File_that_is_not_UTF8_is_read_byte_for_byte) {
    const std::string bytes = "; \xE4\n[S]\nK=\xC3\xA4\n";
    EXPECT_EQ(Get(bytes, L"K"), L"\x00C3\x00A4");
    EXPECT_EQ(Write(bytes, L"L", L"1"), "; \xE4\n[S]\nK=\xC3\xA4\nL=1\n");
    EXPECT_EQ(Write(bytes, L"L", L"\x00FC"), "; \xE4\n[S]\nK=\xC3\xA4\nL=\xFC\n");
    EXPECT_EQ(Get("[S]\n\xE4=1\n", L"\x00E4"), L"1");
    EXPECT_EQ(Get("[S]\nK=1\n\xE2\x82", L"K"), L"1");
    EXPECT_EQ(Write("[S]\nK=1\n\xE2\x82", L"K", L"2"), "[S]\nK=2\n\xE2\x82\n");
}

TEST_F(ProfileLocale, Unencodable_character_leaves_file_unchanged) {
    EXPECT_EQ(Write("  [S]  \nK=\xE4", L"K", L"\x4E2D"), "  [S]  \nK=\xE4");
    EXPECT_EQ(m_result, 0);
    EXPECT_EQ(m_printed, "");
    EXPECT_EQ(Write("[S] ", L"K", L"\xD800"), "[S] ");
    EXPECT_EQ(m_result, 0);
    const EnvironmentLocaleGuard locale("C");
    EXPECT_EQ(Write(" [S]", L"\x4E2D", L"1"), " [S]");
    EXPECT_EQ(m_result, 0);
    EXPECT_EQ(m_printed, "");
}

TEST_F(ProfileLocale, Unencodable_text_creates_no_file) {
    const std::wstring path = Wide(m_folder.Path("new.ini"));
    EXPECT_EQ(CpNxWritePrivateProfileStringW(L"S", L"K", L"\xD800", path.c_str()), 0);
    EXPECT_FALSE(m_folder.Exists("new.ini"));
}

TEST_F(ProfileLocale, Plain_ASCII_locale_reads_byte_for_byte) {
    for (const char *name : {"C", "POSIX", "xx_YY.nothing"}) {
        SCOPED_TRACE(name);
        const EnvironmentLocaleGuard locale(name);
        EXPECT_EQ(Get("[S]\nK=\xC3\xA4\n", L"K"), L"\x00C3\x00A4");
        EXPECT_EQ(Write("; \xE4\n[S]\nK=\xC3\xA4\n", L"L", L"\x00FF"),
                  "; \xE4\n[S]\nK=\xC3\xA4\nL=\xFF\n");
        EXPECT_EQ(m_result, 1);
        EXPECT_EQ(Write("[S]\n", L"\x0080", L"\x00FF"), "[S]\n\x80=\xFF\n");
        EXPECT_EQ(m_result, 1);
    }
}

TEST_F(ProfileLocale, Unset_environment_is_treated_as_ASCII_locale) {
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard type("LC_CTYPE", std::nullopt);
    const EnvGuard lang("LANG", std::nullopt);
    EXPECT_EQ(Get("[S]\nK=\xC3\xA4\n", L"K"), L"\x00C3\x00A4");
}

TEST_F(ProfileLocale, Invalid_LC_TIME_does_not_change_encoding) {
    const EnvGuard all("LC_ALL", std::nullopt);
    const EnvGuard time("LC_TIME", "bogus");
    {
        const EnvGuard type("LC_CTYPE", "C.UTF-8");
        const EnvGuard lang("LANG", "C");
        EXPECT_EQ(Get("[S]\nK=\xC3\xA4\n", L"K"), L"\x00E4");
    }
    const EnvGuard type("LC_CTYPE", std::nullopt);
    const EnvGuard lang("LANG", "C.UTF-8");
    EXPECT_EQ(Get("[S]\nK=\xC3\xA4\n", L"K"), L"\x00E4");
}

TEST_F(ProfileLocale, Latin_1_locale_reads_and_writes_Latin_1) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard locale("de_DE.ISO-8859-1");
    EXPECT_EQ(Get("[S]\nK=\xE4\n", L"K"), L"\x00E4");
    EXPECT_EQ(Write("[S]\n", L"K", L"\x00E4"), "[S]\nK=\xE4\n");
    EXPECT_EQ(Write("[S]\n", L"K", L"\x20AC"), "[S]\n");
    EXPECT_EQ(m_result, 0);
}

TEST_F(ProfileLocale, EUC_JP_locale_reads_and_writes_EUC_JP) {
    if (!HasTestLocale("ja_JP.EUC-JP")) {
        GTEST_SKIP() << "the locale ja_JP.EUC-JP was not made";
    }
    const EnvironmentLocaleGuard locale("ja_JP.EUC-JP");
    EXPECT_EQ(Get("[S]\n\xA4\xA2=\xA4\xA4\n", L"\x3042"), L"\x3044");
    EXPECT_EQ(Write("[S]\n\xA4\xA2=1\n", L"\x3042", L"\x3044"), "[S]\n\xA4\xA2=\xA4\xA4\n");
    EXPECT_EQ(Write("[S]\n", L"K", L"\x1F600"), "[S]\n");
    EXPECT_EQ(m_result, 0);
    EXPECT_EQ(Get("[S]\nK=\xA4\n", L"K"), L"\x00A4");
}

TEST_F(ProfileLocale, Names_are_compared_as_characters_and_not_as_bytes) {
    if (!HasTestLocale("ja_JP.EUC-JP")) {
        GTEST_SKIP() << "the locale ja_JP.EUC-JP was not made";
    }
    // The encoding writes a yen sign as the byte of the backslash.
    const EnvironmentLocaleGuard locale("ja_JP.EUC-JP");
    EXPECT_EQ(Get("[S]\n\\b=1\n", L"\\b"), L"1");
    EXPECT_EQ(Get("[S]\n\\b=1\n", L"\x00A5"
                                  L"b"),
              L"dflt");
    EXPECT_EQ(Get("[S]\n\xA4\xA2=2\n\\b=1\n", L"\x00A5"
                                              L"b"),
              L"dflt");
    EXPECT_EQ(Write("[S]\n\\b=1\n",
                    L"\x00A5"
                    L"b",
                    L"2"),
              "[S]\n\\b=1\n\\b=2\n");
    EXPECT_EQ(m_result, 1);
}

TEST_F(ProfileLocale, Narrow_family_never_converts) {
    const std::string path = m_folder.Write("p.ini", "[\xE4]\nK=\xC3\xA4\n");
    EXPECT_EQ(NarrowFamily::Get(path, "\xE4", "K"), (ReadResult{2, "\xC3\xA4"}));
    EXPECT_EQ(NarrowFamily::Write(path, "\xE4", "\xFF", "\xFE"), 1);
    EXPECT_EQ(m_folder.Read("p.ini"), "[\xE4]\nK=\xC3\xA4\n\xFF=\xFE\n");
}

TEST_F(ProfileLocale, Wide_file_name_is_UTF8_in_every_locale) {
    const EnvironmentLocaleGuard locale("C");
    const std::wstring path = Wide(m_folder.Path()) + L"\x00E4.ini";
    EXPECT_EQ(CpNxWritePrivateProfileStringW(L"S", L"K", L"1", path.c_str()), 1);
    EXPECT_EQ(m_folder.Read("\xC3\xA4.ini"), "[S]\nK=1\n");
}

TEST_F(ProfileLocale, Reading_and_writing_keep_process_locale) {
    const std::string before = setlocale(LC_ALL, nullptr);
    Write("[S]\nK=\xC3\xA4\n", L"K", L"\x00E4");
    EXPECT_EQ(std::string(setlocale(LC_ALL, nullptr)), before);
    EXPECT_EQ(uselocale(locale_t{}), LC_GLOBAL_LOCALE);
}

} // namespace
