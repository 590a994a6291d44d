#include "scaler_isp/common/Numbers.h"

#include <string>

#include <gtest/gtest.h>

namespace {

struct Row {
    const char *text;
    long long value;
    std::size_t used; ///< characters before the first that was not used
};

const Row kRows[] = {
    {"", 0, 0},
    {"12", 12, 2},
    {"12abc", 12, 2},
    {" \t-12 ", -12, 5},
    {"0x1F", 31, 4},
    {"0X1fg", 31, 4},
    {"+0x10", 16, 5},
    {"0x", 0, 1},
    {"0xg", 0, 1},
    {"010", 8, 3},
    {"09", 0, 1},
    {"0b11", 0, 1},
    {"0B1", 0, 1},
    {"abc", 0, 0},
    {" ", 0, 0},
    {"-", 0, 0},
    {"0xFFFFFFFFFF", 1099511627775, 12},
    {"9223372036854775807", 9223372036854775807LL, 19},
    {"9223372036854775808", 9223372036854775807LL, 19},
    {"-9223372036854775809", -9223372036854775807LL - 1, 20},
};

TEST(Numbers, Parse_functions_choose_base_by_prefix) {
    for (const Row &row : kRows) {
        const std::string text = row.text;
        const std::wstring wide(text.begin(), text.end());
        const char *end = nullptr;
        const wchar_t *wideEnd = nullptr;
        EXPECT_EQ(ParseLongLong(text.c_str(), &end), row.value) << text;
        EXPECT_EQ(end - text.c_str(), static_cast<std::ptrdiff_t>(row.used)) << text;
        EXPECT_EQ(ParseLongLong(wide.c_str(), &wideEnd), row.value) << text;
        EXPECT_EQ(wideEnd - wide.c_str(), static_cast<std::ptrdiff_t>(row.used)) << text;
        end = nullptr;
        EXPECT_EQ(ParseLong(text.c_str(), &end), row.value) << text;
        EXPECT_EQ(end - text.c_str(), static_cast<std::ptrdiff_t>(row.used)) << text;
    }
}

} // namespace
