#include "scaler_isp/common/Utf8.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Utf8, Every_character_survives_encoding_and_decoding) {
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code == 0xD800) {
            code = 0xE000;
        }
        const std::wstring text(1, static_cast<wchar_t>(code));
        std::string bytes;
        ASSERT_TRUE(AppendUtf8(text, bytes)) << code;
        ASSERT_TRUE(IsUtf8(bytes)) << code;
        ASSERT_EQ(WideFromValidUtf8(bytes), text) << code;
        ASSERT_EQ(CountUtf8Characters(bytes), 1U) << code;
        for (std::size_t size = 1; size < bytes.size(); ++size) {
            ASSERT_FALSE(IsUtf8(bytes.substr(0, size))) << code;
        }
    }
}

TEST(Utf8, Numbers_outside_Unicode_cannot_be_encoded) {
    for (const std::uint32_t code : {0xD800U, 0xDFFFU, 0x110000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        std::string bytes;
        EXPECT_FALSE(AppendUtf8(L"a" + std::wstring(1, static_cast<wchar_t>(code)), bytes)) << code;
    }
}

TEST(Utf8, Overlong_forms_surrogates_and_stray_bytes_are_invalid) {
    for (const char *bytes :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82",
          "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE",
          "\xFF", "\xC3\xA4\xA4"}) {
        EXPECT_FALSE(IsUtf8(bytes)) << testing::PrintToString(bytes);
        EXPECT_FALSE(IsUtf8(std::string(70, 'a') + bytes + "a")) << testing::PrintToString(bytes);
    }
}

TEST(Utf8, Text_of_all_lengths_survives_encoding_and_decoding) {
    const std::wstring text = std::wstring(130, L'a') + L"\x00E4\x3042"
                                                        L"b\x1F600"
                                                        L"c";
    std::string bytes = "before";
    ASSERT_TRUE(AppendUtf8(text, bytes));
    EXPECT_EQ(bytes, "before" + std::string(130, 'a') +
                         "\xC3\xA4\xE3\x81\x82"
                         "b"
                         "\xF0\x9F\x98\x80"
                         "c");
    EXPECT_EQ(WideFromValidUtf8(bytes.substr(6)), text);
    EXPECT_EQ(CountUtf8Characters(bytes), 6 + text.size());
}

TEST(Utf8, Encoding_stops_at_byte_limit) {
    std::string bytes = "x";
    EXPECT_TRUE(AppendAsBytes(kLastByte, L"a\x00FF", bytes));
    EXPECT_EQ(bytes, "xa\xFF");
    EXPECT_FALSE(AppendAsBytes(kLastByte, L"a\x0100", bytes));
    EXPECT_FALSE(AppendAsBytes(kLastAscii, L"\x0080", bytes));
    EXPECT_EQ(bytes, "xa\xFF");
}

} // namespace
