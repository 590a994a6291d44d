#include <gtest/gtest.h>

#include "Utf8.h"
#include "VisibleText.h"

namespace {

using ispctl::Charset;
using ispctl::Layout;
using ispctl::Visible;

struct Row {
    const char *text;
    const char *utf8;
    const char *ascii;
};

const Row kRows[] = {
    {"plain ~", "plain ~", "plain ~"},
    {"\033[31m", "\\x1B[31m", "\\x1B[31m"},
    {"\x01\x1F\x7F\r\b", "\\x01\\x1F\\x7F\\x0D\\x08", "\\x01\\x1F\\x7F\\x0D\\x08"},
    {"C:\\x41", "C:\\x41", "C:\\x41"},
    {"\xC3\xBC", "\xC3\xBC", "\\u{FC}"},
    {"\xC2\x80\xC2\x9B\xC2\x9F\xC2\xA0", "\\u{80}\\u{9B}\\u{9F}\xC2\xA0",
     "\\u{80}\\u{9B}\\u{9F}\\u{A0}"},
    {"\xD8\x9C", "\\u{61C}", "\\u{61C}"},
    {"\xE2\x80\x8D\xE2\x80\x8E\xE2\x80\x8F", "\xE2\x80\x8D\\u{200E}\\u{200F}",
     "\\u{200D}\\u{200E}\\u{200F}"},
    {"\xE2\x80\xA7\xE2\x80\xA8\xE2\x80\xAE\xE2\x80\xAF",
     "\xE2\x80\xA7\\u{2028}\\u{202E}\xE2\x80\xAF", "\\u{2027}\\u{2028}\\u{202E}\\u{202F}"},
    {"\xE2\x81\xA6\xE2\x81\xA9", "\\u{2066}\\u{2069}", "\\u{2066}\\u{2069}"},
    {"\xF3\xA0\x80\x80\xF3\xA0\x81\xBF\xF3\xA0\x82\x80", "\\u{E0000}\\u{E007F}\xF3\xA0\x82\x80",
     "\\u{E0000}\\u{E007F}\\u{E0080}"},
    {"\xFF\xC3(\xE2\x82", "\\xFF\\xC3(\\xE2\\x82", "\\xFF\\xC3(\\xE2\\x82"},
    {"\x9B"
     "31m",
     "\\x9B31m", "\\x9B31m"},
};

TEST(VisibleText, Terminal_control_characters_are_escaped) {
    for (const Row &row : kRows) {
        EXPECT_EQ(Visible(row.text, Layout::Lines, Charset::Utf8), row.utf8);
        EXPECT_EQ(Visible(row.text, Layout::Lines, Charset::Ascii), row.ascii);
        EXPECT_EQ(Visible(row.text, Layout::OneLine, Charset::Utf8), row.utf8);
    }
}

TEST(VisibleText, Newlines_and_tabs_stay_in_text_of_several_lines) {
    EXPECT_EQ(Visible("a\tb\n", Layout::Lines, Charset::Utf8), "a\tb\n");
    EXPECT_EQ(Visible("a\tb\n", Layout::OneLine, Charset::Utf8), "a\\x09b\\x0A");
}

TEST(VisibleText, Random_text_never_yields_control_character) {
    std::wstring all;
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        all += static_cast<wchar_t>(value);
    }
    const std::string text = Visible(ispctl::EscapeWide(all).text, Layout::OneLine, Charset::Utf8);
    const auto wide = ispctl::WideFromUtf8(text);
    ASSERT_TRUE(wide);
    for (const wchar_t character : *wide) {
        ASSERT_FALSE(ispctl::IsControl(static_cast<char32_t>(character)));
    }
    for (const char byte : Visible(text, Layout::OneLine, Charset::Ascii)) {
        ASSERT_TRUE(byte >= ' ' && byte <= '~');
    }
}

// The same text in pieces of every length.
std::string InPieces(const std::string &text, std::size_t length) {
    ispctl::VisibleStream stream(Charset::Utf8);
    std::string shown;
    for (std::size_t i = 0; i < text.size(); i += length) {
        shown += stream.Add(std::string_view(text).substr(i, length));
    }
    return shown + stream.Finish();
}

TEST(VisibleStream, Stream_passes_colour_sequences_of_library_only) {
    const std::string text = "\033[31mFail\n\033[m\033[32mSuccess\n\033[m\033[33m\033[1;31m\033[2J"
                             "\033]0;title\007\033\033[m\xE2\x82\xAC\xFF\033";
    for (std::size_t length = 1; length <= text.size(); ++length) {
        EXPECT_EQ(InPieces(text, length),
                  "\033[31mFail\n\033[m\033[32mSuccess\n\033[m\\x1B[33m\\x1B[1;31m\\x1B[2J"
                  "\\x1B]0;title\\x07\\x1B\033[m\xE2\x82\xAC\\xFF\\x1B")
            << length;
    }
}

TEST(VisibleStream, Text_is_passed_on_as_soon_as_it_is_complete) {
    ispctl::VisibleStream stream(Charset::Utf8);
    EXPECT_EQ(stream.Add("wait... \033"), "wait... ");
    EXPECT_EQ(stream.Add("[3"), "");
    EXPECT_EQ(stream.Add("3"), "\\x1B[33");
    EXPECT_EQ(stream.Add("\xE2\x82"), "");
    EXPECT_EQ(stream.Finish(), "\\xE2\\x82");
    EXPECT_EQ(stream.Finish(), "");
}

TEST(VisibleStream, Nul_is_visible_or_kept_as_demanded) {
    const std::string text("a\0\033[31m\0b\x01", 10);
    ispctl::VisibleStream shown(Charset::Utf8, ispctl::Colours::Keep, ispctl::Nul::Show);
    EXPECT_EQ(shown.Add(text), "a\\x00\033[31m\\x00b\\x01");
    ispctl::VisibleStream kept(Charset::Utf8, ispctl::Colours::Keep, ispctl::Nul::Keep);
    EXPECT_EQ(kept.Add(text), std::string("a\0\033[31m\0b\\x01", 13));
}

} // namespace
