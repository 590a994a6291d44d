#include "scaler_isp/common/CommandText.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Converted {
    int result;
    Bytes bytes; ///< the first `result` bytes of the buffer
    bool operator==(const Converted &other) const {
        return result == other.result && bytes == other.bytes;
    }
};

std::ostream &operator<<(std::ostream &stream, const Converted &converted) {
    return stream << converted.result << ' ' << ::testing::PrintToString(converted.bytes);
}

using Converter = int (*)(wchar_t *, unsigned int, unsigned char *, unsigned int);

Converted Convert(Converter converter, std::wstring text, unsigned int capacity) {
    Bytes bytes(capacity, 0xEE);
    const int result =
        converter(text.data(), static_cast<unsigned int>(text.size()), bytes.data(), capacity);
    bytes.resize(result > 0 ? static_cast<std::size_t>(result) : 0);
    return {result, bytes};
}

Converted Commands(const std::wstring &text, unsigned int capacity = 16) {
    return Convert(CmdToBin, text, capacity);
}

Converted Edid(const std::wstring &text, unsigned int capacity = 16) {
    return Convert(EDIDToBin, text, capacity);
}

TEST(CommandText, Commands_are_converted_to_bytes) {
    EXPECT_EQ(Commands(L"0x01, 0x02\n0x03"), (Converted{3, {1, 2, 3}}));
    EXPECT_EQ(Commands(L"/* c */ 0xAA,"), (Converted{1, {0xAA}}));
    EXPECT_EQ(Commands(L"0x12 // one\r\n{ 0X34, 5 }"), (Converted{3, {0x12, 0x34, 5}}));
    EXPECT_EQ(Commands(L""), (Converted{0, {}}));
    EXPECT_EQ(Commands(L"255, 0"), (Converted{2, {255, 0}}));
}

TEST(CommandText, Second_token_before_comma_is_ignored) {
    EXPECT_EQ(Commands(L"0x12 0x34, 0x56"), (Converted{2, {0x12, 0x56}}));
}

TEST(CommandText, Value_above_255_rejects_commands) {
    EXPECT_EQ(Commands(L"0x100"), (Converted{0, {}}));
    EXPECT_EQ(Commands(L"1, 256, 2"), (Converted{0, {}}));
}

TEST(CommandText, Names_and_unknown_characters_are_skipped) {
    EXPECT_EQ(Commands(L"NAME, 1"), (Converted{1, {1}}));
    EXPECT_EQ(Commands(L"-1, 2"), (Converted{2, {1, 2}}));
    EXPECT_EQ(Commands(L"}}; 1,"), (Converted{1, {1}}));
    EXPECT_EQ(Commands(L"0xZZ, 1"), (Converted{1, {1}}));
}

TEST(CommandText, Leading_zero_is_octal) {
    EXPECT_EQ(Commands(L"010, 09, 7"), (Converted{2, {8, 7}}));
}

TEST(CommandText, Word_counts_up_to_its_256th_character) {
    const std::wstring zeros(254, L'0');
    EXPECT_EQ(Commands(zeros + L"7x, 1"), (Converted{1, {1}}));
    EXPECT_EQ(Commands(zeros + L"07x, 1"), (Converted{2, {7, 1}}));
    EXPECT_EQ(Commands(L"0x" + zeros + L"x, 1"), (Converted{2, {0, 1}}));

    const std::wstring name(256, L'N');
    std::wstring defines = name + L"A 3";
    std::wstring text = name + L"B,";
    unsigned int pos = 0;
    unsigned int value = 0;
    EXPECT_EQ(FindNextBytes(text.data(), pos, static_cast<unsigned int>(text.size()),
                            defines.data(), &value),
              1U);
    EXPECT_EQ(value, 3U);
    EXPECT_EQ(pos, text.size());
}

TEST(CommandText, Conversion_stops_at_capacity) {
    EXPECT_EQ(Commands(L"1, 2, 3", 2), (Converted{2, {1, 2}}));
    EXPECT_EQ(Commands(L"1, 2, 0x100", 2), (Converted{2, {1, 2}}));
    EXPECT_EQ(Commands(L"1, 2", 0), (Converted{0, {}}));
}

TEST(CommandText, Value_before_a_trailing_comment_is_not_delivered) {
    EXPECT_EQ(Commands(L"0x03"), (Converted{1, {3}}));
    EXPECT_EQ(Commands(L"0x03 // end"), (Converted{0, {}}));
    EXPECT_EQ(Commands(L"0x03 /* end */"), (Converted{0, {}}));
    EXPECT_EQ(Commands(L"0x03 "), (Converted{0, {}}));
    EXPECT_EQ(Commands(L"0x03 // end\n"), (Converted{1, {3}}));
}

TEST(CommandText, Asterisk_that_opens_comment_does_not_close_it) {
    EXPECT_EQ(Commands(L"/*/ 0x01 */ 0x02,"), (Converted{1, {2}}));
    EXPECT_EQ(Commands(L"/* 0x01,"), (Converted{0, {}}));
}

TEST(CommandText, EDID_is_rejected_unless_sum_of_bytes_is_0) {
    EXPECT_EQ(Edid(L"0x01, 0xFF"), (Converted{2, {1, 255}}));
    EXPECT_EQ(Edid(L"0x01, 0x02"), (Converted{0, {}}));
    EXPECT_EQ(Edid(L""), (Converted{0, {}}));
    EXPECT_EQ(Edid(L"0"), (Converted{1, {0}}));
    EXPECT_EQ(Edid(L"1"), (Converted{0, {}}));
    EXPECT_EQ(Edid(L"0x100, 0"), (Converted{0, {}}));
}

TEST(CommandText, EDID_larger_than_capacity_is_rejected) {
    EXPECT_EQ(Edid(L"1, 255", 2), (Converted{2, {1, 255}}));
    EXPECT_EQ(Edid(L"1, 255, 0", 2), (Converted{0, {}}));
    EXPECT_EQ(Edid(L"0", 0), (Converted{0, {}}));
}

TEST(CommandText, Edid_checksum_covers_the_whole_buffer) {
    std::wstring two; // neither block's own sum is 0
    for (int i = 0; i < 256; ++i) {
        two += i == 0 ? L"1, " : i == 255 ? L"255" : L"0, ";
    }
    std::vector<unsigned char> bytes(256);
    EXPECT_EQ(EDIDToBin(two.data(), static_cast<unsigned int>(two.size()), bytes.data(), 256), 256);
}

TEST(CommandText, Converters_print_nothing) {
    std::wstring text = L"0x100, NAME 09 /* open";
    const auto length = static_cast<unsigned int>(text.size());
    CCpNxString bad = L"G";
    unsigned char bytes[4] = {};
    wchar_t word[256] = {};
    unsigned int pos = 0;
    unsigned int value = 0;
    CapturedOutput error(CapturedOutput::Stream::Error);
    EXPECT_EQ(OutputOf([&] {
                  CmdToBin(text.data(), length, bytes, 4);
                  EDIDToBin(text.data(), length, bytes, 4);
                  FindNextBytes(text.data(), pos, length, text.data(), &value);
                  GetNextWord(text.data(), pos, length, word, 256);
                  GetDefineValue(word, text.data(), &value);
                  HexStrToInt(text.data(), 9);
                  HexStrToInt(bad, 1);
                  ConvetStringToByteArry("1,256,x", bytes, 4);
              }),
              "");
    EXPECT_EQ(error.Take(), "");
}

TEST(CommandText, Null_buffer_returns_0_bytes) {
    std::wstring text = L"1, 2";
    EXPECT_EQ(CmdToBin(text.data(), 4, nullptr, 9), 0);
    EXPECT_EQ(EDIDToBin(text.data(), 4, nullptr, 9), 0);
    EXPECT_EQ(CmdToBin(nullptr, 0, nullptr, 0), 0);
}

struct TokenRow {
    const wchar_t *text;
    int result;
    unsigned int next;
    const wchar_t *word;
};

TEST(CommandText, GetNextWord_returns_kind_of_every_token) {
    const TokenRow rows[] = {
        {L"", 0, 0, L""},        {L" \t", 0, 2, L""},    {L" aZ_09-", 1, 6, L"aZ_09"},
        {L"\rA", 3, 1, L""},     {L"\nA", 3, 1, L""},    {L", ", 4, 1, L""},
        {L"{a", 5, 1, L""},      {L"}a", 6, 1, L""},     {L"/* x */y", 2, 7, L""},
        {L"/* x *", 0, 6, L""},  {L"/*/", 0, 3, L""},    {L"/**/", 2, 4, L""},
        {L"// x\ry", 2, 4, L""}, {L"//", 2, 2, L""},     {L"/x", 0, 1, L""},
        {L"#x", 0, 1, L""},      {L"\xE4x", 0, 1, L""},  {L"\vx", 0, 1, L""},
        {L"\x661 1", 0, 1, L""}, {L"\t a,", 1, 3, L"a"},
    };
    for (const TokenRow &row : rows) {
        std::wstring text = row.text;
        unsigned int pos = 0;
        wchar_t word[256] = {};
        EXPECT_EQ(GetNextWord(text.data(), pos, static_cast<unsigned int>(text.size()), word, 256),
                  row.result)
            << ::testing::PrintToString(text);
        EXPECT_EQ(pos, row.next) << ::testing::PrintToString(text);
        EXPECT_STREQ(word, row.word) << ::testing::PrintToString(text);
    }
}

TEST(CommandText, GetNextWord_fills_buffer_without_terminator) {
    std::wstring text = L"abcdef,";
    wchar_t word[5] = {L'~', L'~', L'~', L'~', L'~'};
    unsigned int pos = 0;
    EXPECT_EQ(GetNextWord(text.data(), pos, 7, word, 4), 1);
    EXPECT_EQ(pos, 6U);
    EXPECT_EQ(std::wstring(word, 5), L"abcd~");
    pos = 4;
    EXPECT_EQ(GetNextWord(text.data(), pos, 7, word, 4), 1);
    EXPECT_EQ(std::wstring(word, 5), std::wstring(L"ef\0\0~", 5));
    pos = 6;
    EXPECT_EQ(GetNextWord(text.data(), pos, 7, word, 4), 4);
    EXPECT_EQ(std::wstring(word, 5), std::wstring(L"ef\0\0~", 5)) << "only a word clears it";
    pos = 0;
    EXPECT_EQ(GetNextWord(text.data(), pos, 7, nullptr, 4), 1);
    EXPECT_EQ(pos, 6U);
}

TEST(CommandText, Long_token_is_truncated_to_256_characters) {
    EXPECT_EQ(Commands(std::wstring(300, L'0') + L"1"), (Converted{1, {0}}));
    EXPECT_EQ(Commands(std::wstring(255, L'0') + L"1"), (Converted{1, {1}}));
}

struct ValueRow {
    const wchar_t *text;
    unsigned int result;
    unsigned int next;
    unsigned int value; ///< 77: none was stored
};

TEST(CommandText, FindNextBytes_reads_value_up_to_separator) {
    const ValueRow rows[] = {
        {L"", 0, 0, 77},         {L"1, 2", 1, 2, 1},
        {L"1\n2", 1, 2, 1},      {L"1}", 1, 2, 1},
        {L"1 {2,", 1, 5, 1},     {L"1 x /*,*/ y,", 1, 12, 1},
        {L"1;,", 0, 2, 1},       {L"1 /*c*/", 2, 7, 1},
        {L"1 ", 0, 2, 1},        {L"1 x", 1, 3, 1},
        {L"}1", 6, 1, 77},       {L";1", 0, 1, 77},
        {L"\n,{", 6, 3, 77},     {L"\n ", 0, 2, 77},
        {L"/*c*/", 6, 5, 77},    {L"0xFFFFFFFF,", 1, 11, 0xFFFFFFFF},
        {L"0x1FF", 1, 5, 511},   {L"NAME, 1", 1, 5, 31},
        {L"OTHER, 1", 0, 5, 77}, {L"0xNAME, 1", 0, 6, 77},
        {L"09, 1", 1, 3, 5},
    };
    std::wstring defines = L"#define NAME 0x1F\n09 5";
    for (const ValueRow &row : rows) {
        std::wstring text = row.text;
        unsigned int pos = 0;
        unsigned int value = 77;
        EXPECT_EQ(FindNextBytes(text.data(), pos, static_cast<unsigned int>(text.size()),
                                defines.data(), &value),
                  row.result)
            << ::testing::PrintToString(text);
        EXPECT_EQ(pos, row.next) << ::testing::PrintToString(text);
        EXPECT_EQ(value, row.value) << ::testing::PrintToString(text);
    }
}

TEST(CommandText, FindNextBytes_returns_0_past_end) {
    std::wstring text = L"0x12,";
    for (const unsigned int start : {4U, 5U, 4294967295U}) {
        unsigned int pos = start;
        unsigned int value = 77;
        EXPECT_EQ(FindNextBytes(text.data(), pos, 4, nullptr, &value), 0U);
        EXPECT_EQ(pos, start);
        EXPECT_EQ(value, 77U);
    }
}

TEST(CommandText, FindNextBytes_ignores_names_without_definitions) {
    std::wstring text = L"NAME, 1";
    unsigned int pos = 0;
    unsigned int value = 77;
    EXPECT_EQ(FindNextBytes(text.data(), pos, 7, nullptr, &value), 0U);
    EXPECT_EQ(pos, 4U);
    EXPECT_EQ(FindNextBytes(text.data(), pos, 7, nullptr, nullptr), 1U) << "the 1 after the comma";
}

struct DefineRow {
    const wchar_t *name;
    int result;
    unsigned int value;
};

TEST(CommandText, GetDefineValue_returns_token_after_name) {
    std::wstring defines = L"#define NAME 0x1F\n// OFF 1\nNAM 2\nEQ = 5\nDEC 42\nOCT 010\n"
                           L"BAD 09\nEMPTY 0x\nLONG 0x123456789\nODD 0xG LINE\n6 /*c*/ 7 LAST";
    const DefineRow rows[] = {
        {L"NAME", 1, 31},  {L"NAM", 1, 2},     {L"OFF", 0, 77},  {L"EQ", 0, 77},  {L"DEC", 1, 42},
        {L"OCT", 1, 8},    {L"BAD", 0, 77},    {L"EMPTY", 1, 0}, {L"LONG", 1, 0}, {L"ODD", 1, 0},
        {L"LINE", 0, 77},  {L"6", 0, 77},      {L"LAST", 0, 77}, {L"", 0, 77},    {L"name", 0, 77},
        {L"NAMES", 0, 77}, {L"define", 0, 77},
    };
    for (const DefineRow &row : rows) {
        std::wstring name = row.name;
        unsigned int value = 77;
        EXPECT_EQ(GetDefineValue(name.data(), defines.data(), &value), row.result)
            << ::testing::PrintToString(name);
        EXPECT_EQ(value, row.value) << ::testing::PrintToString(name);
    }
    EXPECT_EQ(GetDefineValue(nullptr, defines.data(), nullptr), 0);
    std::wstring name = L"DEC";
    EXPECT_EQ(GetDefineValue(name.data(), nullptr, nullptr), 0);
    EXPECT_EQ(GetDefineValue(name.data(), defines.data(), nullptr), 1);
}

TEST(CommandText, Hexadecimal_digits_are_read_most_significant_first) {
    std::wstring digits = L"1fFgFFFFFFFFF";
    EXPECT_EQ(HexStrToInt(digits.data(), 3), 0x1FFU);
    EXPECT_EQ(HexStrToInt(digits.data(), 4), 0U);
    EXPECT_EQ(HexStrToInt(digits.data() + 4, 8), 4294967295U);
    EXPECT_EQ(HexStrToInt(digits.data() + 4, 9), 0U);
    EXPECT_EQ(HexStrToInt(digits.data(), 0), 0U);
    EXPECT_EQ(HexStrToInt(nullptr, 3), 0U);
    EXPECT_EQ(HexStrToInt(digits.data() + 12, 2), 0U) << "the terminator is no digit";
}

TEST(CommandText, Hexadecimal_conversion_of_string_reads_leading_digits) {
    CCpNxString digits(L"12AB");
    EXPECT_EQ(HexStrToInt(digits, 4), 0x12ABU);
    EXPECT_EQ(HexStrToInt(digits, 2), 0x12U);
    EXPECT_EQ(HexStrToInt(digits, 5), 0U);
    EXPECT_EQ(HexStrToInt(digits, 0), 0U);
    CCpNxString empty;
    EXPECT_EQ(HexStrToInt(empty, 1), 0U);
}

Converted ByteArray(const std::string &text, unsigned int capacity = 16) {
    Bytes bytes(16, 0xEE);
    const int result = ConvetStringToByteArry(text, bytes.data(), capacity);
    bytes.resize(result > 0 ? static_cast<std::size_t>(result) : 0);
    return {result, bytes};
}

TEST(CommandText, List_of_numbers_is_converted_to_bytes) {
    EXPECT_EQ(ByteArray("1,0xFF, 010,255"), (Converted{4, {1, 255, 8, 255}}));
    EXPECT_EQ(ByteArray(",,1,,2,"), (Converted{2, {1, 2}}));
    EXPECT_EQ(ByteArray(""), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1,256"), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1,-1"), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1,2x"), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1,2 "), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1, "), (Converted{0, {}}));
    EXPECT_EQ(ByteArray("1,2,300", 2), (Converted{2, {1, 2}}));
}

TEST(CommandText, Capacity_0_means_no_limit) {
    EXPECT_EQ(ByteArray("1,2,3,4,5,6,7,8,9", 0), (Converted{9, {1, 2, 3, 4, 5, 6, 7, 8, 9}}));
}

} // namespace
