#include "scaler_isp/common/CCpNxString.h"

#include <clocale>

#include <gtest/gtest.h>

namespace {

TEST(StringFormat, Replaces_the_text_with_the_formatted_one) {
    CCpNxString text(L"before");
    text.Format(L"%d-%x-%ls|%5.2f", -7, 255U, L"wide", 1.5);
    EXPECT_EQ(std::wstring(text), L"-7-ff-wide| 1.50");
    text.Format(L"");
    EXPECT_EQ(std::wstring(text), L"");
}

TEST(StringFormat, Keeps_1023_characters) {
    const std::wstring fitting(1023, L'x');
    CCpNxString text;
    text.Format(L"%ls", fitting.c_str());
    EXPECT_EQ(std::wstring(text), fitting);
}

TEST(StringFormat, Longer_output_is_not_carried_over_whole) {
    for (const std::size_t length : {1024U, 1025U, 5000U}) {
        std::wstring longer;
        for (std::size_t i = 0; i < length; ++i) {
            longer += static_cast<wchar_t>(L'a' + i % 26);
        }
        CCpNxString text(L"before");
        text.Format(L"%ls", longer.c_str());
        EXPECT_LE(text.size(), 1023U) << length;
        EXPECT_EQ(std::wstring(text), longer.substr(0, text.size())) << length;
    }
}

TEST(StringFormat, Text_ends_at_the_first_nul) {
    CCpNxString text;
    text.Format(L"ab%lccd", static_cast<std::wint_t>(0));
    EXPECT_EQ(std::wstring(text), L"ab");
}

TEST(StringFormat, May_format_its_own_text) {
    CCpNxString text(L"abc");
    text.Format(L"<%ls>", text.GetString());
    EXPECT_EQ(std::wstring(text), L"<abc>");
}

} // namespace
