#include <gtest/gtest.h>

#include "Utf8.h"

namespace {

TEST(Utf8, Every_character_converts_to_UTF8_and_back) {
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        if (value >= 0xD800 && value <= 0xDFFF) {
            continue;
        }
        const std::wstring wide(1, static_cast<wchar_t>(value));
        const ispctl::EscapedText narrow = ispctl::EscapeWide(wide);
        ASSERT_FALSE(narrow.escaped);
        const std::size_t length = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        ASSERT_EQ(narrow.text.size(), length);
        ASSERT_EQ(ispctl::WideFromUtf8(narrow.text), wide) << static_cast<unsigned>(value);
    }
}

TEST(Utf8, WideFromUtf8_and_EscapeWide_convert_euro_sign) {
    EXPECT_EQ(ispctl::WideFromUtf8("\xE2\x82\xAC"), L"\u20AC");
    EXPECT_EQ(ispctl::EscapeWide(L"\u20AC").text, "\xE2\x82\xAC");
    EXPECT_EQ(ispctl::WideFromUtf8(""), L"");
}

TEST(Utf8, WideFromUtf8_rejects_invalid_bytes) {
    for (const char *bytes :
         {"\x80", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x80\x80", "\xE0\x9F\xBF",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xE2\x82", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF",
          "a\xFF"
          "b"}) {
        EXPECT_FALSE(ispctl::WideFromUtf8(bytes)) << ispctl::EscapeBytes(bytes).text;
    }
}

TEST(Utf8, Valid_bytes_are_not_escaped) {
    const ispctl::EscapedText text = ispctl::EscapeBytes("a\\b\xC3\xBC");
    EXPECT_EQ(text.text, "a\\b\xC3\xBC");
    EXPECT_FALSE(text.escaped);
}

TEST(Utf8, Escaped_bytes_differ_from_literal_text) {
    const ispctl::EscapedText text = ispctl::EscapeBytes("\\xFF \xFF\xC3\xBC\xC3");
    EXPECT_EQ(text.text, "\\\\xFF \\xFF\xC3\xBC\\xC3");
    EXPECT_TRUE(text.escaped);
}

TEST(Utf8, Numbers_outside_Unicode_are_escaped) {
    const wchar_t text[] = {L'a', L'\\', static_cast<wchar_t>(0xD800),
                            static_cast<wchar_t>(0x110000), 0};
    EXPECT_EQ(ispctl::EscapeWide(text).text, "a\\\\\\x{D800}\\x{110000}");
    EXPECT_TRUE(ispctl::EscapeWide(text).escaped);
}

TEST(Utf8, Incomplete_character_at_end_is_counted) {
    EXPECT_EQ(ispctl::UnfinishedTail(""), 0U);
    EXPECT_EQ(ispctl::UnfinishedTail("ab"), 0U);
    EXPECT_EQ(ispctl::UnfinishedTail("a\xC3"), 1U);
    EXPECT_EQ(ispctl::UnfinishedTail("a\xE2\x82"), 2U);
    EXPECT_EQ(ispctl::UnfinishedTail("a\xF0\x9F\x94"), 3U);
    EXPECT_EQ(ispctl::UnfinishedTail("\xE2\x82\xAC"), 0U);
    EXPECT_EQ(ispctl::UnfinishedTail("a\x80\x80\x80"), 0U);
    EXPECT_EQ(ispctl::UnfinishedTail("\xFF"), 0U);
}

} // namespace
