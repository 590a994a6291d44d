#include "scaler_isp/common/ByteTools.h"

#include <clocale>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TempFolder.h"
#include "support/TestLocale.h"

namespace {

using Bytes = std::vector<unsigned char>;

int ByteSum(Bytes bytes) {
    return CalculateByteChecksum(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

unsigned int WordSum(Bytes bytes) {
    return CalculateWordChecksum(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

TEST(ByteTools, Byte_checksum_returns_sum_of_bytes) {
    EXPECT_EQ(ByteSum({}), 0);
    EXPECT_EQ(ByteSum({1, 2, 255}), 258);
    EXPECT_EQ(ByteSum(Bytes(70000, 255)), 17850000);
    EXPECT_EQ(CalculateByteChecksum(nullptr, 4), 0);
}

TEST(ByteTools, Byte_checksum_wraps_at_32_bits) {
    // 8,421,505 times 255 is 2^31 + 127.
    EXPECT_EQ(ByteSum(Bytes(8421505, 255)), -2147483521);
}

TEST(ByteTools, Word_checksum_reads_words_little_endian) {
    EXPECT_EQ(WordSum({}), 0U);
    EXPECT_EQ(WordSum({0x34, 0x12}), 0x1234U);
    EXPECT_EQ(WordSum({0x34, 0x12, 0x01, 0x02}), 0x1435U);
    EXPECT_EQ(WordSum({0x34, 0x12, 0xFF}), 0x1333U) << "a lone last byte is added as it is";
    EXPECT_EQ(WordSum({0xFF, 0xFF, 0x02, 0x00}), 0x0001U);
    EXPECT_EQ(WordSum({0xFF, 0xFF, 0x02}), 0x0001U);
    EXPECT_EQ(CalculateWordChecksum(nullptr, 4), 0U);
}

TEST(ByteTools, Word_checksum_agrees_with_sum_of_words) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Bytes bytes(random() % 600);
        unsigned long long sum = 0;
        for (unsigned char &byte : bytes) {
            byte = static_cast<unsigned char>(random());
        }
        for (std::size_t i = 0; i < bytes.size(); i += 2) {
            sum += bytes[i] + (i + 1 < bytes.size() ? 256ULL * bytes[i + 1] : 0);
        }
        ASSERT_EQ(WordSum(bytes), sum % 65536) << "round " << round;
    }
}

class SaveAnsiFile : public testing::Test {
  protected:
    CCpNxString PathOf(const std::string &name) {
        CCpNxString path;
        path.assign(L"");
        for (const char c : m_folder.Path(name)) {
            path.push_back(static_cast<wchar_t>(static_cast<unsigned char>(c)));
        }
        return path;
    }
    int Save(const wchar_t *text, unsigned int charCount, int append) {
        return CpNxSaveAnsiFile(PathOf("f"), CCpNxString(text), charCount, append);
    }
    TempFolder m_folder;
};

TEST_F(SaveAnsiFile, Saved_text_ends_in_a_zero_byte) {
    EXPECT_EQ(Save(L"abc\n", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("abc\n\0", 5));
    EXPECT_EQ(Save(L"", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("\0", 1));
}

TEST_F(SaveAnsiFile, Character_count_determines_size_of_file) {
    EXPECT_EQ(Save(L"abc", 3, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), "abc" + std::string(10, '\0'));
    EXPECT_EQ(Save(L"abcdefgh", 1, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), "abcde");
}

TEST_F(SaveAnsiFile, File_is_appended_or_replaced_as_requested) {
    m_folder.Write("f", "old");
    EXPECT_EQ(Save(L"new", 0, 1), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("oldnew\0", 7));
    EXPECT_EQ(Save(L"x", 0, -1), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("oldnew\0x\0", 9));
    EXPECT_EQ(Save(L"y", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("y\0", 2));
}

TEST_F(SaveAnsiFile, Save_to_directory_fails_and_keeps_locale) {
    m_folder.MakeFolder("f");
    ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C") << "the environment's is C.UTF-8";
    EXPECT_EQ(Save(L"abc", 0, 0), 0);
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    EXPECT_EQ(CpNxSaveAnsiFile(CCpNxString(), CCpNxString(L"x"), 0, 0), 0);
}

TEST_F(SaveAnsiFile, Text_is_written_in_encoding_of_environment) {
    EXPECT_EQ(Save(L"\x3042", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("\xE3\x81\x82\0", 4));
    if (!HasTestLocale("ja_JP.EUC-JP")) {
        GTEST_SKIP() << "this machine cannot make ja_JP.EUC-JP";
    }
    const std::string former = std::setlocale(LC_CTYPE, nullptr);
    const EnvironmentLocaleGuard environment("ja_JP.EUC-JP");
    EXPECT_EQ(Save(L"\x3042", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string("\xA4\xA2\0", 3));
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), former.c_str());
}

TEST_F(SaveAnsiFile, Unencodable_text_writes_zero_bytes) {
    const EnvironmentLocaleGuard environment("C");
    EXPECT_EQ(Save(L"a\x3042", 0, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string(1, '\0'));
    EXPECT_EQ(Save(L"a\x3042", 2, 0), 1);
    EXPECT_EQ(m_folder.Read("f"), std::string(9, '\0'));
}

} // namespace
