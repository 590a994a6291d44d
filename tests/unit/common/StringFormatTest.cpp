#include "scaler_isp/common/CCpNxString.h"

#include <clocale>

#include <gtest/gtest.h>

namespace {

TEST(StringFormat, Format_replaces_text) {
    CCpNxString text(L"before");
    text.Format(L"%d-%x-%ls|%5.2f", -7, 255U, L"wide", 1.5);
    EXPECT_EQ(std::wstring(text), L"-7-ff-wide| 1.50");
    text.Format(L"");
    EXPECT_EQ(std::wstring(text), L"");
}

TEST(StringFormat, Format_keeps_1023_characters) {
    const std::wstring fitting(1023, L'x');
    CCpNxString text;
    text.Format(L"%ls", fitting.c_str());
    EXPECT_EQ(std::wstring(text), fitting);
}

TEST(StringFormat, Format_truncates_longer_output) {
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

TEST(StringFormat, Text_ends_at_first_NUL) {
    CCpNxString text;
    text.Format(L"ab%lccd", static_cast<std::wint_t>(0));
    EXPECT_EQ(std::wstring(text), L"ab");
}

TEST(StringFormat, Format_accepts_its_own_text_as_argument) {
    CCpNxString text(L"abc");
    text.Format(L"<%ls>", text.GetString());
    EXPECT_EQ(std::wstring(text), L"<abc>");
}

} // namespace
