#include "scaler_isp/common/CCpNxString.h"

#include <utility>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"
#include "support/TestLocale.h"

namespace {

TEST(StringConversion, Every_getter_returns_text_as_UTF8) {
    CCpNxString text(L"\u00FC\U0001F4BE");
    text.ConverToUtf8String();
    EXPECT_EQ(text.GetUtf8String(), "\xC3\xBC\xF0\x9F\x92\xBE");
    EXPECT_STREQ(text.GetUtf8StringBuffer(), "\xC3\xBC\xF0\x9F\x92\xBE");
    EXPECT_EQ(text.GetUtf8StringLength(), 6);
    EXPECT_STREQ(text.GetStringBufferBaseOnOS(), "\xC3\xBC\xF0\x9F\x92\xBE");
}

TEST(StringConversion, Getters_follow_assigned_text) {
    CCpNxString text(L"one");
    EXPECT_EQ(text.GetUtf8String(), "one");
    text = L"three";
    EXPECT_EQ(text.GetUtf8String(), "three");
    EXPECT_EQ(text.GetUtf8StringLength(), 5);
    text = L"eleven";
    EXPECT_EQ(text.GetUtf8StringLength(), 6);
    text = L"two";
    EXPECT_STREQ(text.GetUtf8StringBuffer(), "two");
    text = L"four";
    EXPECT_STREQ(text.GetStringBufferBaseOnOS(), "four");
    text = L"five!";
    EXPECT_STREQ(text.GetAnsiString(), "five!");
}

TEST(StringConversion, Unconvertible_text_returns_empty_string_silently) {
    CCpNxString text(std::size_t{1}, static_cast<wchar_t>(0xD800));
    const std::string printed = OutputOf([&] {
        EXPECT_EQ(ErrorOutputOf([&] {
                      EXPECT_EQ(text.GetUtf8String(), "");
                      EXPECT_STREQ(text.GetUtf8StringBuffer(), "");
                      EXPECT_EQ(text.GetUtf8StringLength(), 0);
                      EXPECT_STREQ(text.GetAnsiString(), "");
                      text = std::string("\x80");
                      EXPECT_TRUE(text.IsEmpty());
                  }),
                  "");
    });
    EXPECT_EQ(printed, "");
}

TEST(StringConversion, Ansi_getter_uses_encoding_of_environment) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard environment("de_DE.ISO-8859-1");
    CCpNxString text(L"gr\u00FC\u00DFe");
    EXPECT_STREQ(text.GetAnsiString(), "gr\xFC\xDF"
                                       "e");
    EXPECT_STREQ(text.GetStringBufferBaseOnOS(), "gr\xC3\xBC\xC3\x9F"
                                                 "e");
    text = L"\u20AC";
    EXPECT_STREQ(text.GetAnsiString(), "");
}

/// A narrow pointer into the cache stays valid, whatever happens to the wide text.
TEST(StringConversion, Returned_pointer_stays_valid_after_assignment_copy_and_move) {
    const std::string expected(100, 'x');
    CCpNxString text(std::size_t{100}, L'x');
    CCpNxString other(std::size_t{200}, L'y');
    const std::string otherExpected(200, 'y');
    const char *narrow = text.GetUtf8StringBuffer();
    const char *otherNarrow = other.GetAnsiString();

    text = other;
    EXPECT_EQ(narrow, expected);
    text = L"plain";
    text = L'c';
    text = std::wstring(300, L'z');
    text = std::string(300, 'z');
    text.Format(L"%d", 1);
    EXPECT_EQ(narrow, expected);
    EXPECT_EQ(std::wstring(text), L"1");

    text = std::move(other);
    EXPECT_EQ(narrow, expected);
    EXPECT_EQ(otherNarrow, otherExpected);
    other = L"o";
    EXPECT_STREQ(other.GetUtf8StringBuffer(), "o"); // into its own cache
    EXPECT_EQ(narrow, expected);

    const CCpNxString copy(text);
    CCpNxString moved(std::move(text));
    EXPECT_EQ(narrow, expected);
    EXPECT_STREQ(moved.GetUtf8StringBuffer(), std::string(200, 'y').c_str());
    EXPECT_EQ(narrow, expected);
}

TEST(StringConversion, Next_conversion_replaces_string_at_returned_pointer) {
    CCpNxString text(L"first");
    const char *narrow = text.GetUtf8StringBuffer();
    text = L"other";
    EXPECT_STREQ(narrow, "first");
    // Both conversions write to the same place; texts this short need no new memory.
    EXPECT_EQ(text.GetAnsiString(), narrow);
    EXPECT_STREQ(narrow, "other");
    text = L"third";
    EXPECT_EQ(text.GetStringBufferBaseOnOS(), narrow);
    EXPECT_STREQ(narrow, "third");
}

TEST(StringConversion, GetUtf8String_returns_copy) {
    CCpNxString text(L"first");
    const std::string copy = text.GetUtf8String();
    text = L"other";
    text.ConverToUtf8String();
    EXPECT_EQ(copy, "first");
}

TEST(StringConversion, Embedded_NUL_ends_narrow_string) {
    CCpNxString text(L"ab\0cd", std::size_t{5});
    EXPECT_EQ(text.GetUtf8String(), "ab");
    EXPECT_EQ(text.GetUtf8StringLength(), 2);
    EXPECT_STREQ(text.GetAnsiString(), "ab");
}

TEST(StringConversion, More_than_10239_bytes_return_empty_string) {
    CCpNxString fits(std::size_t{10239}, L'a');
    EXPECT_EQ(fits.GetUtf8StringLength(), 10239);
    CCpNxString tooLong(std::size_t{10240}, L'a');
    EXPECT_EQ(tooLong.GetUtf8StringLength(), 0);
    EXPECT_STREQ(tooLong.GetStringBufferBaseOnOS(), "");
}

} // namespace
