#include "WrapText.h"

#include <gtest/gtest.h>

namespace {

using ispctl::TextLayout;
using ispctl::WrapText;

struct Row {
    const char *text;
    TextLayout layout;
    const char *prefix;
    const char *lines;
};

TEST(WrappedText, Lines_end_before_width_and_later_ones_are_indented) {
    const Row rows[] = {
        {"", {10, 2}, "", "\n"},
        {"one", {10, 2}, "", "one\n"},
        {"one two333", {10, 2}, "", "one two333\n"},
        {"one two3334", {10, 2}, "", "one\n  two3334\n"},
        {"one two three four", {10, 2}, "", "one two\n  three\n  four\n"},
        {"one two three", {12, 5}, "error: ", "error: one\n     two\n     three\n"},
        {"one  two", {10, 2}, "", "one  two\n"},
        {"\xC3\xA4\xC3\xA4\xC3\xA4 bbbbbb", {10, 2}, "", "\xC3\xA4\xC3\xA4\xC3\xA4 bbbbbb\n"},
        {"\xE6\xBC\xA2\xE5\xAD\x97 bbbbbb", {10, 2}, "", "\xE6\xBC\xA2\xE5\xAD\x97\n  bbbbbb\n"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(WrapText(row.text, row.layout, row.prefix), row.lines) << row.text;
    }
}

TEST(WrappedText, Word_wider_than_line_stays_whole) {
    EXPECT_EQ(WrapText("see /a/very/long/path now", {10, 2}), "see\n  /a/very/long/path\n  now\n");
    EXPECT_EQ(WrapText("/a/very/long/path", {10, 2}), "/a/very/long/path\n");
    EXPECT_EQ(WrapText("a b", {0, 0}), "a\nb\n");
}

} // namespace
