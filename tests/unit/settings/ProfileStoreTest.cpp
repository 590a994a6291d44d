#include <gtest/gtest.h>

#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

/// The reader, on both families.
template <class Family> class ProfileReader : public testing::Test {
  protected:
    ReadResult Get(const std::string &file, const std::string &section, const std::string &key) {
        return Family::Get(m_folder.Write("p.ini", file), section, key);
    }
    int GetInt(const std::string &value) {
        return Family::GetInt(m_folder.Write("p.ini", "[S]\nK=" + value + "\n"), "S", "K");
    }
    TempFolder m_folder;
};

using Families = testing::Types<WideFamily, NarrowFamily>;
TYPED_TEST_SUITE(ProfileReader, Families);

TYPED_TEST(ProfileReader, Getter_returns_value_and_length) {
    EXPECT_EQ(this->Get("[S]\nK=value\n", "S", "K"), (ReadResult{5, "value"}));
}

TYPED_TEST(ProfileReader, Key_of_different_section_is_not_found) {
    EXPECT_EQ(this->Get("[A]\nK=1\n[S]\nK=2\n[B]\nK=3\n", "S", "K"), (ReadResult{1, "2"}));
}

TYPED_TEST(ProfileReader, Missing_section_returns_default) {
    EXPECT_EQ(this->Get("[S]\nK=1\n", "T", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("", "S", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Missing_key_at_end_of_file_returns_default) {
    EXPECT_EQ(this->Get("[S]\nK=1\n", "S", "J"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S]", "S", "J"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Line_without_equals_ends_the_section) {
    for (const std::string line : {"", "   ", "[T]", "[S]", "; note", "# note", "\t", "\r"}) {
        SCOPED_TRACE(line);
        EXPECT_EQ(this->Get("[S]\nK=V\n" + line + "\nX=1\n", "S", "X"),
                  (ReadResult{0, kUntouched}));
    }
    EXPECT_EQ(this->Get("[S]\n[S]\nX=1\n", "S", "X"), (ReadResult{0, kUntouched}));
}

TYPED_TEST(ProfileReader, Spaces_around_header_key_and_value_are_trimmed) {
    EXPECT_EQ(this->Get("  [S]  \n  K  =  V  \n", "S", "K"), (ReadResult{1, "V"}));
    EXPECT_EQ(this->Get("[S]\nK y = a b \n", "S", "K y"), (ReadResult{3, "a b"}));
}

TYPED_TEST(ProfileReader, Tab_is_not_trimmed) {
    EXPECT_EQ(this->Get("[S]\n\tK=1\nK=\t2\t\n", "S", "K"), (ReadResult{3, "\t2\t"}));
    EXPECT_EQ(this->Get("\t[S]\nK=1\n", "S", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Names_passed_to_getter_are_not_trimmed) {
    EXPECT_EQ(this->Get("[S]\nK=1\n", "S", " K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S]\nK=1\n", " S", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[ S ]\nK=1\n", " S ", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[ S ]\nK=1\n", "S", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Names_are_case_sensitive) {
    EXPECT_EQ(this->Get("[s]\nK=1\n[S]\nk=2\nK=3\n", "S", "K"), (ReadResult{1, "3"}));
}

TYPED_TEST(ProfileReader, Key_ends_at_first_equals_sign_and_value_follows_last) {
    EXPECT_EQ(this->Get("[S]\nA = x = y\n", "S", "A"), (ReadResult{1, "y"}));
    EXPECT_EQ(this->Get("[S]\nK=a=b\n", "S", "K"), (ReadResult{1, "b"}));
    EXPECT_EQ(this->Get("[S]\nK=a=\n", "S", "K"), (ReadResult{0, ""}));
    EXPECT_EQ(this->Get("[S]\n=v\n", "S", ""), (ReadResult{1, "v"}));
    EXPECT_EQ(this->Get("[S]\nA=x=y\n", "S", "A=x"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Comment_characters_have_no_meaning) {
    EXPECT_EQ(this->Get("[S]\n; x=1\nK=2\n", "S", "; x"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\n; x=1\nK=2 ; two\n", "S", "K"), (ReadResult{7, "2 ; two"}));
}

TYPED_TEST(ProfileReader, First_of_two_equal_keys_wins) {
    EXPECT_EQ(this->Get("[S]\nK=1\nK=2\n", "S", "K"), (ReadResult{1, "1"}));
}

TYPED_TEST(ProfileReader, First_of_two_equal_sections_wins) {
    EXPECT_EQ(this->Get("[S]\nJ=1\n\n[S]\nK=2\n", "S", "K"), (ReadResult{0, kUntouched}));
}

TYPED_TEST(ProfileReader, Header_with_equals_sign_is_both_header_and_key_line) {
    EXPECT_EQ(this->Get("[a=b]\nK=1\n", "a=b", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\n[a=b]\nK=1\n", "S", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\n[a=b]\nK=1\n", "S", "[a"), (ReadResult{2, "b]"}));
}

TYPED_TEST(ProfileReader, Carriage_return_is_part_of_line) {
    EXPECT_EQ(this->Get("[S]\r\nK=1\r\n", "S", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S]\nK=1\r\n", "S", "K"), (ReadResult{2, "1\r"}));
    EXPECT_EQ(this->Get("[S]\r\nK=1\r\n", "S\r", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Byte_order_mark_hides_first_header) {
    EXPECT_EQ(this->Get("\xEF\xBB\xBF[S]\nK=1\n", "S", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileReader, Last_line_is_read_without_newline) {
    EXPECT_EQ(this->Get("[S]\nK=last", "S", "K"), (ReadResult{4, "last"}));
}

TYPED_TEST(ProfileReader, Line_of_1023_characters_is_read) {
    const std::string value(1021, 'v');
    EXPECT_EQ(this->Get("[S]\nK=" + value + "\nL=1\n", "S", "K"), (ReadResult{1021, value}));
    EXPECT_EQ(this->Get("[S]\nK=" + value + "\nL=1\n", "S", "L"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\nK=" + value, "S", "K"), (ReadResult{1021, value}));
}

TYPED_TEST(ProfileReader, Line_of_1024_characters_ends_reading) {
    const std::string value(1022, 'v');
    EXPECT_EQ(this->Get("[S]\nK=" + value + "\nL=1\n", "S", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S]\nK=" + value + "\nL=1\n", "S", "L"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S]\nK=" + value, "S", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get(std::string(1024, ' ') + "\n[S]\nK=1\n", "S", "K"),
              (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get(std::string(1023, ' ') + "\n[S]\nK=1\n", "S", "K"), (ReadResult{1, "1"}));
}

TYPED_TEST(ProfileReader, Line_is_truncated_at_NUL) {
    const std::string nul(1, '\0');
    EXPECT_EQ(this->Get("[S]" + nul + "x\nK=1" + nul + "2\n", "S", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\nJ" + nul + "=1\nK=2\n", "S", "K"), (ReadResult{0, kUntouched}));
    EXPECT_EQ(this->Get("[S]\n" + nul + std::string(1023, 'x') + "\nK=2\n", "S", "K"),
              (ReadResult{0, "dflt"}));
    EXPECT_EQ(this->Get("[S] " + nul + std::string(1018, 'x') + "\nK=2\n", "S", "K"),
              (ReadResult{1, "2"}));
}

TYPED_TEST(ProfileReader, Copied_value_is_truncated_to_capacity) {
    const std::string file = this->m_folder.Write("p.ini", "[S]\nK=value\n");
    EXPECT_EQ(TypeParam::Get(file, "S", "K", "dflt", 6), (ReadResult{5, "value"}));
    EXPECT_EQ(TypeParam::Get(file, "S", "K", "dflt", 5), (ReadResult{4, "valu"}));
    EXPECT_EQ(TypeParam::Get(file, "S", "K", "dflt", 1), (ReadResult{0, ""}));
    EXPECT_EQ(TypeParam::Get(file, "S", "K", "dflt", 0), (ReadResult{0, kUntouched}));
    EXPECT_EQ(TypeParam::Get(file, "S", "X", "dflt", 3), (ReadResult{0, "df"}));
    EXPECT_EQ(TypeParam::Get(file, "S", "X", "dflt", 0), (ReadResult{0, kUntouched}));
}

TYPED_TEST(ProfileReader, Number_is_read_with_base_of_prefix) {
    EXPECT_EQ(this->GetInt("0x10"), 16);
    EXPECT_EQ(this->GetInt("0XfF"), 255);
    EXPECT_EQ(this->GetInt("010"), 8);
    EXPECT_EQ(this->GetInt("12"), 12);
    EXPECT_EQ(this->GetInt("-12"), -12);
    EXPECT_EQ(this->GetInt("+7"), 7);
    EXPECT_EQ(this->GetInt("0b11"), 0);
    EXPECT_EQ(this->GetInt("\t0x10"), 16);
}

TYPED_TEST(ProfileReader, Number_ends_at_first_character_that_is_not_digit) {
    EXPECT_EQ(this->GetInt("12abc"), 12);
    EXPECT_EQ(this->GetInt("09"), 0);
    EXPECT_EQ(this->GetInt("0x1g"), 1);
    EXPECT_EQ(this->GetInt("0x"), 0);
    EXPECT_EQ(this->GetInt("5 6"), 5);
    EXPECT_EQ(this->GetInt("7\r"), 7);
}

TYPED_TEST(ProfileReader, Text_without_a_number_is_zero) {
    EXPECT_EQ(this->GetInt("abc"), 0);
    EXPECT_EQ(this->GetInt("\""), 0);
    EXPECT_EQ(this->GetInt(""), -77);
    EXPECT_EQ(this->GetInt("   "), -77);
}

TYPED_TEST(ProfileReader, Number_is_truncated_to_32_bits) {
    EXPECT_EQ(this->GetInt("4294967295"), -1);
    EXPECT_EQ(this->GetInt("4294967298"), 2);
    EXPECT_EQ(this->GetInt("0x80000000"), -2147483647 - 1);
    EXPECT_EQ(this->GetInt("99999999999999999999"), -1);
    EXPECT_EQ(this->GetInt("-99999999999999999999"), 0);
    EXPECT_EQ(this->GetInt(std::string(1021, '0')), 0);
    EXPECT_EQ(this->GetInt(std::string(1020, ' ') + "9"), 9);
}

TYPED_TEST(ProfileReader, Number_of_long_string_is_read_completely) {
    EXPECT_EQ(this->GetInt(std::string(1000, '0') + "17"), 15);
}

TYPED_TEST(ProfileReader, Number_is_default_if_key_is_missing) {
    const std::string file = this->m_folder.Write("p.ini", "[S]\nK=1\n\nX=2\n");
    EXPECT_EQ(TypeParam::GetInt(file, "S", "X", 5), 5);
    EXPECT_EQ(TypeParam::GetInt(file, "T", "X", 6), 6);
    EXPECT_EQ(TypeParam::GetInt(file, "S", "K", 7), 1);
}

TYPED_TEST(ProfileReader, Directory_is_read_as_empty_file) {
    const std::string folder = this->m_folder.MakeFolder("d");
    EXPECT_EQ(TypeParam::Get(folder, "S", "K"), (ReadResult{0, "dflt"}));
    EXPECT_EQ(TypeParam::GetInt(folder, "S", "K", 4), 4);
}

TYPED_TEST(ProfileReader, Every_call_reads_file_again) {
    EXPECT_EQ(this->Get("[S]\nK=1\n", "S", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Get("[S]\nK=22\n", "S", "K"), (ReadResult{2, "22"}));
}

TYPED_TEST(ProfileReader, Reading_prints_nothing_and_changes_nothing) {
    const std::string bytes = "  [S]  \r\n\n K = 1";
    EXPECT_EQ(OutputOf([&] { this->Get(bytes, "S", "K"); }), "");
    EXPECT_EQ(this->m_folder.Read("p.ini"), bytes);
}

TEST(ProfileStore, Wide_getter_copies_default_for_missing_file) {
    const TempFolder folder;
    const std::string printed = OutputOf([&] {
        EXPECT_EQ(WideFamily::Get(folder.Path("none"), "S", "K"), (ReadResult{0, "dflt"}));
        EXPECT_EQ(WideFamily::GetInt(folder.Path("none"), "S", "K", 3), 3);
    });
    EXPECT_EQ(printed, "");
}

TEST(ProfileStore, Narrow_getter_copies_no_default_for_a_missing_file) {
    const TempFolder folder;
    EXPECT_EQ(
        OutputOf([&] {
            EXPECT_EQ(NarrowFamily::Get(folder.Path("none"), "S", "K"), (ReadResult{0, "~~~"}));
        }),
        "Error \n");
    EXPECT_EQ(
        OutputOf([&] { EXPECT_EQ(NarrowFamily::GetInt(folder.Path("none"), "S", "K", 3), 3); }),
        "Error \n");
}

TEST(ProfileStore, Null_is_treated_as_empty_string) {
    const TempFolder folder;
    const std::string path = folder.Write("p.ini", "[]\n=v\nK=w\n");
    const std::wstring widePath = Wide(path);
    wchar_t wide[8] = L"old";
    EXPECT_EQ(CpNxGetPrivateProfileStringW(nullptr, nullptr, nullptr, wide, 8, widePath.c_str()),
              1U);
    EXPECT_STREQ(wide, L"v");
    EXPECT_EQ(CpNxGetPrivateProfileStringW(L"x", L"K", nullptr, wide, 8, widePath.c_str()), 0U);
    EXPECT_STREQ(wide, L"");
    EXPECT_EQ(CpNxGetPrivateProfileStringW(L"", L"K", L"d", nullptr, 8, widePath.c_str()), 0U);
    char narrow[8] = "old";
    EXPECT_EQ(CpNxGetPrivateProfileStringA(nullptr, "K", nullptr, narrow, 8, path.c_str()), 1U);
    EXPECT_STREQ(narrow, "w");
    EXPECT_EQ(CpNxWritePrivateProfileStringA(nullptr, "K", nullptr, path.c_str()), 1);
    EXPECT_EQ(folder.Read("p.ini"), "[]\n=v\nK=\n");
    EXPECT_EQ(OutputOf([] { CpNxGetPrivateProfileStringA("S", "K", "d", nullptr, 0, nullptr); }),
              "Error \n");
    EXPECT_EQ(CpNxGetPrivateProfileIntW(L"S", L"K", 9, nullptr), 9);
}

} // namespace
