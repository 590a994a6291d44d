#include <gtest/gtest.h>
#include <random>

#include "scaler_isp/settings/ProfileEdit.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"
#include "unit/settings/OwnedWrites.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

class ProfileBatch : public testing::Test {
  protected:
    std::string Written(const std::string &before, const std::vector<ProfileWrite> &writes) {
        const std::string path = m_folder.Write("p.ini", before);
        m_result = WriteOwnedBatch(writes, Wide(path).c_str());
        return m_folder.Read("p.ini");
    }
    TempFolder m_folder;
    int m_result = -1;
};

TEST_F(ProfileBatch, Keys_are_written_in_order) {
    EXPECT_EQ(
        Written("[S]\nB=0\n[T]\n", {{L"S", L"A", L"1"}, {L"S", L"B", L"2"}, {L"U", L"C", L"3"}}),
        "[S]\nB=2\nA=1\n[T]\n[U]\nC=3\n");
    EXPECT_EQ(m_result, 1);
}

TEST_F(ProfileBatch, Later_write_of_the_same_key_replaces_the_first) {
    EXPECT_EQ(Written("", {{L"S", L"A", L"1"}, {L"S", L"B", L"2"}, {L"S", L"A", L"3"}}),
              "[S]\nA=3\nB=2\n");
}

TEST_F(ProfileBatch, Value_with_equals_is_replaced_behind_its_last_one) {
    EXPECT_EQ(Written("", {{L"S", L"A", L"x=y"}, {L"S", L"A", L"z"}}), "[S]\nA=x=z\n");
}

TEST_F(ProfileBatch, Only_the_last_value_keeps_its_blanks) {
    EXPECT_EQ(Written("", {{L"S", L"A", L" 1 "}, {L"S", L"B", L" 2 "}}), "[S]\nA= 1\nB= 2 \n");
}

TEST_F(ProfileBatch, Key_with_a_leading_blank_is_added_again) {
    EXPECT_EQ(Written("", {{L"S", L" A", L"1"}, {L"S", L" A", L"2"}}), "[S]\nA=1\n A=2\n");
}

TEST_F(ProfileBatch, Overlong_line_ends_the_file_for_the_next_key) {
    const std::wstring value(1022, L'v');
    EXPECT_EQ(Written("", {{L"S", L"A", L"1"}, {L"S", L"B", value}, {L"S", L"C", L"2"}}),
              "[S]\nA=1\nC=2\n");
    EXPECT_EQ(Written("", {{L"S", L"A", L"1"}, {L"S", L"B", value}}),
              "[S]\nA=1\nB=" + std::string(1022, 'v') + "\n");
}

TEST_F(ProfileBatch, Empty_list_touches_nothing) {
    EXPECT_EQ(WriteOwnedBatch({}, Wide(m_folder.Path("new.ini")).c_str()), 1);
    EXPECT_FALSE(m_folder.Exists("new.ini"));
    EXPECT_EQ(Written(" [S] ", {}), " [S] ");
}

TEST_F(ProfileBatch, File_that_cannot_be_opened_is_reported_once_per_key) {
    const std::wstring path = Wide(m_folder.MakeFolder("d"));
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(
                      WriteOwnedBatch({{L"S", L"A", L"1"}, {L"S", L"B", L"2"}, {L"S", L"C", L"3"}},
                                      path.c_str()),
                      0);
              }),
              "Open file error \nOpen file error \nOpen file error \n");
}

TEST_F(ProfileBatch, Key_that_cannot_be_expressed_is_left_out_alone) {
    const EnvironmentLocaleGuard locale("C");
    EXPECT_EQ(Written("", {{L"S", L"A", L"1"}, {L"S", L"B", L"\x4E2D"}, {L"S", L"C", L"3"}}),
              "[S]\nA=1\nC=3\n");
    EXPECT_EQ(m_result, 0);
    EXPECT_EQ(Written(" [S] ", {{L"S", L"A", L"\x4E2D"}, {L"S", L"B", L"\x4E2D"}}), " [S] ");
    EXPECT_EQ(m_result, 0);
    const std::wstring path = Wide(m_folder.MakeFolder("d"));
    EXPECT_EQ(OutputOf([&] {
                  WriteOwnedBatch({{L"S", L"A", L"1"}, {L"S", L"B", L"\x4E2D"}}, path.c_str());
              }),
              "Open file error \n");
}

/// A list of writes, and the same writes each as a list of one, in any locale.
void CompareWithSingleWrites(unsigned int seed) {
    std::mt19937 random(seed);
    const std::vector<std::string> lines = {
        "[S]", "[T]", "K=1", "L = 2", "", "K=\xA4\xA2", "\xA4\xA2=1", "K=\xC3\xA4", "K=\xE4", "x"};
    const std::vector<std::wstring> texts = {L"K", L"L", L"\x3042", L"\x00E4", L"a=b", L"", L"1 "};
    const auto text = [&] { return texts[random() % texts.size()]; };
    for (int round = 0; round < 10000; ++round) {
        std::string before;
        for (auto count = random() % 6; count > 0; --count) {
            before += lines[random() % lines.size()] + "\n";
        }
        std::vector<ProfileWrite> writes;
        for (auto count = 1 + random() % 5; count > 0; --count) {
            writes.push_back({random() % 2 == 0 ? L"S" : L"T", text(), text()});
        }
        NativeEncoding encoding;
        std::vector<KeyWrite<wchar_t>> list;
        std::string expected = before;
        std::string after;
        std::size_t written = 0;
        for (const ProfileWrite &write : writes) {
            list.push_back({write.section, write.key, write.value});
            written += EditProfileBytes(encoding, expected, {list.back()}, after);
            expected = after;
        }
        ASSERT_EQ(EditProfileBytes(encoding, before, list, after), written) << "round " << round;
        ASSERT_EQ(after, expected) << "round " << round;
    }
}

class ProfileBatchInLocale : public testing::TestWithParam<const char *> {};

TEST_P(ProfileBatchInLocale, List_gives_the_bytes_of_single_writes) {
    if (!HasTestLocale(GetParam())) {
        GTEST_SKIP() << "the locale was not made";
    }
    const EnvironmentLocaleGuard locale(GetParam());
    CompareWithSingleWrites(7);
}

INSTANTIATE_TEST_SUITE_P(Locales, ProfileBatchInLocale,
                         testing::Values("de_DE.ISO-8859-1", "de_DE.UTF-8", "ja_JP.EUC-JP"));

/// 1 + 3 * 512 keys, and the file they make.
TEST_F(ProfileBatch, Large_list_is_written_to_the_last_byte) {
    std::vector<ProfileWrite> writes = {{L"ISP_Fw", L"fwFileCount", L"512"}};
    std::string expected = "[ISP_Fw]\nfwFileCount=512\n";
    for (int i = 0; i < 512; ++i) {
        const std::wstring prefix = L"fw" + std::to_wstring(i) + L"_";
        const std::wstring number = std::to_wstring(i);
        writes.push_back({L"ISP_Fw", prefix + L"TargetBank", number});
        writes.push_back({L"ISP_Fw", prefix + L"FileBank", number});
        writes.push_back({L"ISP_Fw", prefix + L"Path", L"/\x00E4/" + number});
        const std::string narrow = "fw" + std::to_string(i) + "_";
        expected += narrow + "TargetBank=" + std::to_string(i) + "\n" + narrow +
                    "FileBank=" + std::to_string(i) + "\n" + narrow + "Path=/\xC3\xA4/" +
                    std::to_string(i) + "\n";
    }
    EXPECT_EQ(Written("", writes), expected);
    EXPECT_EQ(Written(expected + "\n[X]\nY=1\n", writes), expected + "\n[X]\nY=1\n");
}

} // namespace
