#include "scaler_isp/common/BoundedCopy.h"

#include <gtest/gtest.h>

namespace {

TEST(BoundedCopy, CopyBounded_pads_short_string_with_zeros) {
    char field[6] = {'#', '#', '#', '#', '#', '#'};
    CopyBounded(field, std::string_view("ab"));
    EXPECT_EQ(std::string(field, 6), std::string("ab\0\0\0\0", 6));
    CopyBounded(field, std::string_view());
    EXPECT_EQ(std::string(field, 6), std::string(6, '\0'));
}

TEST(BoundedCopy, CopyBounded_fills_field_without_terminator) {
    struct {
        wchar_t field[4] = {L'#', L'#', L'#', L'#'};
        wchar_t after[2] = {L'!', L'!'};
    } record;
    CopyBounded(record.field, std::wstring_view(L"abcd"));
    EXPECT_EQ(std::wstring(record.field, 4), L"abcd");
    CopyBounded(record.field, std::wstring_view(L"wxyz and more"));
    EXPECT_EQ(std::wstring(record.field, 4), L"wxyz");
    EXPECT_EQ(std::wstring(record.after, 2), L"!!");
}

TEST(BoundedCopy, CopyBounded_to_pointer_writes_exactly_given_size) {
    char field[6] = {'#', '#', '#', '#', '#', '#'};
    CopyBounded(field + 1, 3, std::string_view("x"));
    EXPECT_EQ(std::string(field, 6), std::string("#x\0\0##", 6));
    CopyBounded(field + 1, 3, std::string_view("abcd"));
    EXPECT_EQ(std::string(field, 6), "#abc##");
}

TEST(BoundedCopy, ReadBounded_stops_at_terminator_or_end_of_field) {
    const char terminated[5] = {'a', 'b', '\0', 'c', '\0'};
    const wchar_t full[3] = {L'a', L'b', L'c'};
    EXPECT_EQ(ReadBounded(terminated), "ab");
    EXPECT_EQ(ReadBounded(full), L"abc");
    EXPECT_EQ(ReadBounded(full, 2), L"ab");
    EXPECT_EQ(ReadBounded(full, 0), L"");
}

} // namespace
