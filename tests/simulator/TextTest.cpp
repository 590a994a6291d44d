// Text of the virtual scaler: between wide and UTF-8, quoted, trimmed, and numbers in it.

#include "common/Text.h"

#include <gmock/gmock.h>

namespace {

using namespace virtual_scaler;

const std::string kReplacement = "\xEF\xBF\xBD";

std::string Utf8Of(unsigned int character) {
    const wchar_t text[] = {static_cast<wchar_t>(character), 0};
    return FromWide(text, 2);
}

TEST(VirtualText, FromWide_encodes_each_length_from_its_first_character) {
    struct Row {
        unsigned int character;
        std::string utf8;
    };
    for (const Row &row : {
             Row{0x41, "A"},
             Row{0x7F, "\x7F"},
             Row{0x80, "\xC2\x80"},
             Row{0x7FF, "\xDF\xBF"},
             Row{0x800, "\xE0\xA0\x80"},
             Row{0xD7FF, "\xED\x9F\xBF"},
             Row{0xD800, kReplacement},
             Row{0xDFFF, kReplacement},
             Row{0xE000, "\xEE\x80\x80"},
             Row{0xFFFF, "\xEF\xBF\xBF"},
             Row{0x10000, "\xF0\x90\x80\x80"},
             Row{0x2F81A, "\xF0\xAF\xA0\x9A"},
             Row{0x10FFFF, "\xF4\x8F\xBF\xBF"},
             Row{0x110000, kReplacement},
             Row{0xFFFFFFFF, kReplacement},
         }) {
        EXPECT_EQ(Utf8Of(row.character), row.utf8) << std::hex << row.character;
    }
}

TEST(VirtualText, FromWide_and_FromNarrow_end_at_bound_or_zero) {
    EXPECT_EQ(FromWide(L"abc", 2), "ab");
    EXPECT_EQ(FromWide(L"abc", 9), "abc");
    EXPECT_EQ(FromWide(L"", 1), "");
    EXPECT_EQ(FromNarrow("abc", 2), "ab");
    EXPECT_EQ(FromNarrow("abc", 9), "abc");
    EXPECT_EQ(FromNarrow("abc", 0), "");
}

TEST(VirtualText, ToWide_reverses_FromWide) {
    for (const unsigned int character :
         {0x41U, 0x7FU, 0x80U, 0x7FFU, 0x800U, 0xD7FFU, 0xE000U, 0xFFFFU, 0x10000U, 0x10FFFFU}) {
        const std::wstring wide = ToWide(Utf8Of(character) + "z");
        ASSERT_EQ(wide.size(), 2U) << std::hex << character;
        EXPECT_EQ(wide[0], static_cast<wchar_t>(character));
        EXPECT_EQ(wide[1], L'z');
    }
}

TEST(VirtualText, ToWide_replaces_each_wrong_byte) {
    struct Row {
        const char *name;
        std::string bytes;
        std::size_t replaced; ///< how many of the first characters
    };
    for (const Row &row : {
             Row{"a lone tail", "\x80", 1},
             Row{"the last lone tail", "\xBF", 1},
             Row{"an overlong pair", "\xC1\xBF", 2},
             Row{"an overlong triple", "\xE0\x9F\xBF", 3},
             Row{"an overlong quadruple", "\xF0\x8F\xBF\xBF", 4},
             Row{"the first surrogate", "\xED\xA0\x80", 3},
             Row{"the last surrogate", "\xED\xBF\xBF", 3},
             Row{"a value above the last", "\xF4\x90\x80\x80", 4},
             Row{"a lead above the last", "\xF5\x80\x80\x80", 4},
             Row{"a pair without its tail", "\xC3", 1},
             Row{"a triple without its last tail", "\xE2\x82", 2},
             Row{"a quadruple without its last tail", "\xF0\x90\x80", 3},
         }) {
        EXPECT_EQ(ToWide(row.bytes), std::wstring(row.replaced, L'\xFFFD')) << row.name;
    }
    EXPECT_EQ(ToWide("\xC3z"), L"\xFFFDz") << "what follows is not lost";
    EXPECT_EQ(ToWide("\xC2\x80"), L"\x80");
}

TEST(VirtualText, Quoted_escapes_quotes_and_control_characters) {
    EXPECT_EQ(Quoted("a b"), "\"a b\"");
    EXPECT_EQ(Quoted("\"\\"), "\"\\\"\\\\\"");
    EXPECT_EQ(Quoted("\x01\x1F\x20\x7E\x7F"), "\"\\x01\\x1F ~\\x7F\"");
    EXPECT_EQ(Quoted("\n\xC3\xA9"), "\"\\x0A\xC3\xA9\"");
    EXPECT_EQ(Quoted(""), "\"\"");
}

TEST(VirtualText, HexBytes_separates_with_spaces) {
    const std::uint8_t bytes[] = {0x00, 0x0A, 0xFF};
    EXPECT_EQ(HexBytes(bytes, 3), "00 0A FF");
    EXPECT_EQ(HexBytes(bytes, 1), "00");
    EXPECT_EQ(HexBytes(bytes, 0), "");
}

TEST(VirtualText, Trimmed_removes_blanks_at_both_ends) {
    EXPECT_EQ(Trimmed(" \t\r\n a b \t\r\n"), "a b");
    EXPECT_EQ(Trimmed("a"), "a");
    EXPECT_EQ(Trimmed(" \n"), "");
    EXPECT_EQ(Trimmed(""), "");
}

TEST(VirtualText, ParseNumber_reads_decimal_and_hexadecimal_up_to_maximum) {
    struct Row {
        const char *text;
        std::uint32_t maximum, value;
    };
    for (const Row &row : {
             Row{"0", 0, 0},
             Row{"09", 9, 9},
             Row{"255", 255, 255},
             Row{"4294967295", 0xFFFFFFFF, 0xFFFFFFFF},
             Row{"0x0", 0, 0},
             Row{"0xfF", 255, 255},
             Row{"0Xa", 10, 10},
             Row{"0xA9", 0xA9, 0xA9},
             Row{"0xFFFFFFFF", 0xFFFFFFFF, 0xFFFFFFFF},
         }) {
        std::uint32_t value = 77;
        EXPECT_TRUE(ParseNumber(row.text, row.maximum, value)) << row.text;
        EXPECT_EQ(value, row.value) << row.text;
    }
}

TEST(VirtualText, ParseNumber_rejects_other_text_and_keeps_number) {
    for (const char *text : {"", "0x", "256", "0x100", "-1", "+1", " 1", "1 ", "a", "1a", "0xg",
                             "0x:", "0x@", "0x`", "/", ":", "99999999999999999999999"}) {
        std::uint32_t value = 77;
        EXPECT_FALSE(ParseNumber(text, 255, value)) << text;
        EXPECT_EQ(value, 77U) << text;
    }
}

} // namespace
