#include "scaler_isp/common/CCpNxString.h"

#include <cstdlib>
#include <new>
#include <random>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace {

TEST(String, Object_is_wide_string_with_vtable_and_narrow_cache) {
    static_assert(std::is_convertible_v<CCpNxString *, std::wstring *>);
    static_assert(std::has_virtual_destructor_v<CCpNxString>);
    static_assert(std::is_polymorphic_v<CCpNxString>);
    EXPECT_EQ(sizeof(CCpNxString), sizeof(void *) + sizeof(std::wstring) + sizeof(std::string));
}

TEST(String, Default_constructor_makes_empty_string) {
    const CCpNxString text;
    EXPECT_EQ(std::wstring(text), L"");
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.GetLength(), 0);
}

TEST(String, Copy_constructor_keeps_source) {
    const CCpNxString source(L"a source text beyond any small buffer");
    const CCpNxString copy(source); // NOLINT(*-unnecessary-copy-*)
    EXPECT_EQ(std::wstring(copy), L"a source text beyond any small buffer");
    EXPECT_EQ(std::wstring(source), L"a source text beyond any small buffer");
}

TEST(String, Move_constructor_takes_over_text) {
    CCpNxString source(L"a source text beyond any small buffer");
    const wchar_t *characters = source.GetString();
    const CCpNxString moved(std::move(source));
    EXPECT_EQ(std::wstring(moved), L"a source text beyond any small buffer");
    EXPECT_EQ(moved.GetString(), characters);
}

TEST(String, Constructor_copies_substring) {
    const CCpNxString other(L"0123456789");
    EXPECT_EQ(std::wstring(CCpNxString(other, 2, 3)), L"234");
    EXPECT_EQ(std::wstring(CCpNxString(other, 8, 100)), L"89");
    EXPECT_EQ(std::wstring(CCpNxString(other, 10, 1)), L"");
    EXPECT_THROW(CCpNxString(other, 11, 1), std::out_of_range);
}

TEST(String, Constructor_reads_up_to_terminator) {
    EXPECT_EQ(std::wstring(CCpNxString(L"ab\0cd")), L"ab");
    EXPECT_EQ(std::wstring(CCpNxString(L"")), L"");
}

TEST(String, Constructor_with_count_reads_exactly_count_characters) {
    EXPECT_EQ(std::wstring(CCpNxString(L"abcdef", std::size_t{3})), L"abc");
    EXPECT_EQ(std::wstring(CCpNxString(L"ab\0cd", std::size_t{5})), std::wstring(L"ab\0cd", 5));
    EXPECT_EQ(std::wstring(CCpNxString(L"abc", std::size_t{0})), L"");
}

TEST(String, Constructor_repeats_character) {
    EXPECT_EQ(std::wstring(CCpNxString(std::size_t{4}, L'x')), L"xxxx");
    EXPECT_EQ(std::wstring(CCpNxString(std::size_t{0}, L'x')), L"");
}

TEST(String, Null_pointer_is_treated_as_empty_string) {
    const wchar_t *null = nullptr;
    wchar_t *writableNull = nullptr;
    EXPECT_EQ(std::wstring(CCpNxString(null)), L"");
    EXPECT_EQ(std::wstring(CCpNxString(null, std::size_t{3})), L"");
    CCpNxString text(L"old");
    text = null;
    EXPECT_EQ(std::wstring(text), L"");
    text = L"old";
    text = writableNull;
    EXPECT_EQ(std::wstring(text), L"");
    EXPECT_TRUE(CCpNxString() == null);
    EXPECT_TRUE(null == CCpNxString());
    EXPECT_TRUE(null < CCpNxString(L"a"));
    EXPECT_EQ(std::wstring(CCpNxString(L"a") + null), L"a");
    EXPECT_EQ(std::wstring(null + CCpNxString(L"a")), L"a");
    text = L"old";
    text.Format(nullptr);
    EXPECT_EQ(std::wstring(text), L"");
}

TEST(String, Every_assignment_replaces_text) {
    CCpNxString text(L"a former text that was much longer");
    const CCpNxString other(L"copied");
    CCpNxString &copied = (text = other);
    EXPECT_EQ(std::wstring(text), L"copied");
    EXPECT_EQ(&copied, &text);
    EXPECT_EQ(std::wstring(other), L"copied");

    CCpNxString source(L"moved");
    EXPECT_EQ(&(text = std::move(source)), &text);
    EXPECT_EQ(std::wstring(text), L"moved");

    EXPECT_EQ(&(text = L"plain"), &text);
    EXPECT_EQ(std::wstring(text), L"plain");

    wchar_t writable[] = L"writable";
    EXPECT_EQ(&(text = static_cast<wchar_t *>(writable)), &text);
    EXPECT_EQ(std::wstring(text), L"writable");

    EXPECT_EQ(&(text = L'c'), &text);
    EXPECT_EQ(std::wstring(text), L"c");

    const std::wstring standard(L"stand\0ard", 9);
    EXPECT_EQ(&(text = standard), &text);
    EXPECT_EQ(std::wstring(text), standard);

    EXPECT_EQ(&(text = std::string("narrow \xC3\xA9 \xF0\x9F\x92\xBE")), &text);
    EXPECT_EQ(std::wstring(text), L"narrow \u00E9 \U0001F4BE");
}

TEST(String, Assignment_of_invalid_UTF8_makes_text_empty) {
    CCpNxString text(L"before");
    text = std::string("ok \xFF");
    EXPECT_EQ(std::wstring(text), L"");
    text = L"before";
    text = std::string();
    EXPECT_EQ(std::wstring(text), L"");
}

TEST(String, Assignment_of_own_characters_keeps_them) {
    CCpNxString text(L"own text");
    text = text.GetString();
    EXPECT_EQ(std::wstring(text), L"own text");
    const CCpNxString &same = text;
    text = same;
    EXPECT_EQ(std::wstring(text), L"own text");
}

/// All six comparisons in all three forms against what the order of character values says.
void ExpectOrder(const wchar_t *left, const wchar_t *right, int order) {
    SCOPED_TRACE(testing::Message() << '"' << left << "\" and \"" << right << '"');
    const CCpNxString a(left);
    const CCpNxString b(right);
    EXPECT_EQ(a == b, order == 0);
    EXPECT_EQ(left == b, order == 0);
    EXPECT_EQ(a == right, order == 0);
    EXPECT_EQ(a != b, order != 0);
    EXPECT_EQ(left != b, order != 0);
    EXPECT_EQ(a != right, order != 0);
    EXPECT_EQ(a < b, order < 0);
    EXPECT_EQ(left < b, order < 0);
    EXPECT_EQ(a < right, order < 0);
    EXPECT_EQ(a <= b, order <= 0);
    EXPECT_EQ(left <= b, order <= 0);
    EXPECT_EQ(a <= right, order <= 0);
    EXPECT_EQ(a > b, order > 0);
    EXPECT_EQ(left > b, order > 0);
    EXPECT_EQ(a > right, order > 0);
    EXPECT_EQ(a >= b, order >= 0);
    EXPECT_EQ(left >= b, order >= 0);
    EXPECT_EQ(a >= right, order >= 0);
}

TEST(String, Comparison_is_by_character_value) {
    ExpectOrder(L"a", L"a", 0);
    ExpectOrder(L"", L"", 0);
    ExpectOrder(L"a", L"B", 1);
    ExpectOrder(L"B", L"a", -1);
    ExpectOrder(L"", L"a", -1);
    ExpectOrder(L"ab", L"a", 1);
    ExpectOrder(L"a", L"ab", -1);
    ExpectOrder(L"abc", L"abd", -1);
    ExpectOrder(L"z", L"\u00E4", -1);
    ExpectOrder(L"\U0001F4BE", L"\uFFFD", 1);
}

TEST(String, Comparison_continues_after_embedded_NUL) {
    const CCpNxString shorter(L"a", std::size_t{1});
    const CCpNxString longer(L"a\0b", std::size_t{3});
    EXPECT_TRUE(shorter != longer);
    EXPECT_TRUE(shorter < longer);
    EXPECT_TRUE(longer != L"a");
}

TEST(String, Operator_plus_concatenates_in_five_forms) {
    const CCpNxString left(L"left");
    const CCpNxString right(L"right");
    static_assert(std::is_same_v<decltype(left + right), CCpNxString>);
    static_assert(std::is_same_v<decltype(left + L""), CCpNxString>);
    static_assert(std::is_same_v<decltype(L"" + left), CCpNxString>);
    static_assert(std::is_same_v<decltype(left + L'c'), CCpNxString>);
    static_assert(std::is_same_v<decltype(L'c' + left), CCpNxString>);
    EXPECT_EQ(std::wstring(left + right), L"leftright");
    EXPECT_EQ(std::wstring(left + L"-plain"), L"left-plain");
    EXPECT_EQ(std::wstring(L"plain-" + right), L"plain-right");
    EXPECT_EQ(std::wstring(left + L'/'), L"left/");
    EXPECT_EQ(std::wstring(L'/' + right), L"/right");
    EXPECT_EQ(std::wstring(left), L"left");
    EXPECT_EQ(std::wstring(right), L"right");
}

TEST(String, Left_returns_first_characters) {
    const CCpNxString text(L"abc");
    EXPECT_EQ(std::wstring(text.Left(0)), L"");
    EXPECT_EQ(std::wstring(text.Left(1)), L"a");
    EXPECT_EQ(std::wstring(text.Left(2)), L"ab");
    EXPECT_EQ(std::wstring(text.Left(3)), L"abc");
}

TEST(String, Left_returns_all_for_negative_or_large_count) {
    const CCpNxString text(L"abc");
    EXPECT_EQ(std::wstring(text.Left(4)), L"abc");
    EXPECT_EQ(std::wstring(text.Left(2147483647)), L"abc");
    EXPECT_EQ(std::wstring(text.Left(-1)), L"abc");
    EXPECT_EQ(std::wstring(text.Left(-2147483647 - 1)), L"abc");
    EXPECT_EQ(std::wstring(CCpNxString().Left(-1)), L"");
}

TEST(String, Right_returns_last_characters) {
    const CCpNxString text(L"abc");
    EXPECT_EQ(std::wstring(text.Right(2)), L"bc");
    EXPECT_EQ(std::wstring(text.Right(1)), L"c");
    EXPECT_EQ(std::wstring(text.Right(0)), L"");
}

TEST(String, Right_of_the_full_length_is_empty) {
    const CCpNxString text(L"abc");
    EXPECT_EQ(std::wstring(text.Right(3)), L"");
    EXPECT_EQ(std::wstring(text.Right(4)), L"");
    EXPECT_EQ(std::wstring(text.Right(2147483647)), L"");
    EXPECT_EQ(std::wstring(text.Right(-1)), L"");
    EXPECT_EQ(std::wstring(text.Right(-2147483647 - 1)), L"");
    EXPECT_EQ(std::wstring(CCpNxString().Right(0)), L"");
}

TEST(String, Left_and_Right_agree_with_character_by_character) {
    for (int length = 0; length <= 12; ++length) {
        std::wstring whole;
        for (int i = 0; i < length; ++i) {
            whole += static_cast<wchar_t>(L'a' + i);
        }
        CCpNxString text;
        text = whole;
        for (int n = -3; n <= 15; ++n) {
            std::wstring left;
            std::wstring right;
            for (int i = 0; i < length; ++i) {
                if (n < 0 || i < n) {
                    left += whole[static_cast<std::size_t>(i)];
                }
                if (n >= 0 && n < length && i >= length - n) {
                    right += whole[static_cast<std::size_t>(i)];
                }
            }
            EXPECT_EQ(std::wstring(text.Left(n)), left) << length << ", " << n;
            EXPECT_EQ(std::wstring(text.Right(n)), right) << length << ", " << n;
        }
    }
}

TEST(String, Length_counts_wide_characters) {
    EXPECT_EQ(CCpNxString(L"a\U0001F4BEb").GetLength(), 3);
    EXPECT_EQ(CCpNxString(L"a\0b", std::size_t{3}).GetLength(), 3);
    static_assert(std::is_same_v<decltype(CCpNxString().GetLength()), int>);
}

TEST(String, IsEmpty_returns_true_only_without_characters) {
    EXPECT_TRUE(CCpNxString(L"").IsEmpty());
    EXPECT_FALSE(CCpNxString(L" ").IsEmpty());
    EXPECT_FALSE(CCpNxString(L"\0", std::size_t{1}).IsEmpty());
}

TEST(String, Buffer_and_string_return_terminated_text) {
    const CCpNxString text(L"text");
    static_assert(std::is_same_v<decltype(text.GetBuffer()), wchar_t *>);
    static_assert(std::is_same_v<decltype(text.GetString()), const wchar_t *>);
    EXPECT_STREQ(text.GetBuffer(), L"text");
    EXPECT_STREQ(text.GetString(), L"text");
    EXPECT_EQ(text.GetBuffer(), text.c_str());
    EXPECT_EQ(text.GetString(), text.c_str());
    EXPECT_EQ(text.GetString()[4], L'\0');
}

} // namespace
