#include "scaler_isp/common/TextUtil.h"

#include <random>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"

namespace {

using Fields = std::vector<std::string>;

struct NumberRow {
    const char *text;
    int result;
    int value;
};

void PrintTo(const NumberRow &row, std::ostream *stream) {
    *stream << '"' << row.text << '"';
}

class StringToNumber : public testing::TestWithParam<NumberRow> {};

TEST_P(StringToNumber, StringtoInt_returns_result_and_stores_value) {
    int value = 4711;
    EXPECT_EQ(StringtoInt(GetParam().text, value), GetParam().result);
    EXPECT_EQ(value, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StringToNumber,
    testing::Values(NumberRow{"", 1, 0}, NumberRow{"0", 1, 0}, NumberRow{"7", 1, 7},
                    NumberRow{"255", 1, 255}, NumberRow{"-1", 1, -1}, NumberRow{"+12", 1, 12},
                    NumberRow{"0x1F", 1, 31}, NumberRow{"0X1f", 1, 31}, NumberRow{"-0x10", 1, -16},
                    NumberRow{"010", 1, 8}, NumberRow{"-010", 1, -8}, NumberRow{"0377", 1, 255},
                    NumberRow{"00", 1, 0}, NumberRow{"  12", 1, 12}, NumberRow{"\t12", 1, 12},
                    NumberRow{"\n\v\f\r 12", 1, 12}, NumberRow{" +0x1", 1, 1}));

INSTANTIATE_TEST_SUITE_P(
    No_number, StringToNumber,
    testing::Values(NumberRow{"12abc", 0, -1}, NumberRow{"abc", 0, -1}, NumberRow{"12 ", 0, -1},
                    NumberRow{" ", 0, -1}, NumberRow{"09", 0, -1}, NumberRow{"018", 0, -1},
                    NumberRow{"0x", 0, -1}, NumberRow{"0xg", 0, -1}, NumberRow{"x1", 0, -1},
                    NumberRow{"0b11", 0, -1}, NumberRow{"0B1", 0, -1}, NumberRow{"0o7", 0, -1},
                    NumberRow{"+", 0, -1}, NumberRow{"-", 0, -1}, NumberRow{"--1", 0, -1},
                    NumberRow{"- 1", 0, -1}, NumberRow{"1.5", 0, -1}, NumberRow{"1,5", 0, -1},
                    NumberRow{"1f", 0, -1}));

INSTANTIATE_TEST_SUITE_P(Cut_to_32_bits, StringToNumber,
                         testing::Values(NumberRow{"2147483647", 1, 2147483647},
                                         NumberRow{"2147483648", 1, -2147483647 - 1},
                                         NumberRow{"-2147483648", 1, -2147483647 - 1},
                                         NumberRow{"4294967295", 1, -1},
                                         NumberRow{"0xffffffff", 1, -1},
                                         NumberRow{"4294967296", 1, 0},
                                         NumberRow{"0x100000005", 1, 5},
                                         // Beyond 64 bits the number is clamped before the cut.
                                         NumberRow{"99999999999999999999", 1, -1},
                                         NumberRow{"-99999999999999999999", 1, 0}));

TEST(TextUtil, Leading_zero_means_octal) {
    int value = 0;
    EXPECT_EQ(StringtoInt("010", value), 1);
    EXPECT_EQ(value, 8);
    EXPECT_EQ(StringtoInt("09", value), 0);
    EXPECT_EQ(value, -1);
}

/// Digits added up one by one; for texts short enough not to overflow.
int SlowStringToInt(const std::string &text, int &value) {
    value = -1;
    std::size_t at = 0;
    while (at < text.size() && text[at] == ' ') {
        ++at;
    }
    bool negative = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        negative = text[at++] == '-';
    }
    const std::string rest = text.substr(at);
    std::string digits = rest;
    std::string alphabet = "0123456789";
    if (rest.size() >= 2 && rest[0] == '0' && (rest[1] == 'x' || rest[1] == 'X')) {
        digits = rest.substr(2);
        alphabet = "0123456789abcdef";
    } else if (!rest.empty() && rest[0] == '0') {
        alphabet = "01234567";
    }
    if (digits.empty()) {
        // Only the empty text may lack digits: a lone sign, blank or prefix leaves something over.
        value = text.empty() ? 0 : -1;
        return text.empty() ? 1 : 0;
    }
    long sum = 0;
    for (const char digit : digits) {
        const auto worth = alphabet.find(digit);
        if (worth == std::string::npos) {
            return 0;
        }
        sum = sum * static_cast<long>(alphabet.size()) + static_cast<long>(worth);
    }
    value = static_cast<int>(negative ? -sum : sum);
    return 1;
}

/// Calls a function with every text of up to `longest` characters of an alphabet.
template <class Function>
void ForAllTexts(const std::string &alphabet, std::size_t longest, Function function,
                 const std::string &begin = "") {
    function(begin);
    if (begin.size() < longest) {
        for (const char next : alphabet) {
            ForAllTexts(alphabet, longest, function, begin + next);
        }
    }
}

TEST(TextUtil, Every_short_text_converts_as_sum_of_its_digits) {
    ForAllTexts("0178 9+-xXab", 5, [](const std::string &text) {
        int expected = 0;
        const int expectedResult = SlowStringToInt(text, expected);
        int value = 4711;
        ASSERT_EQ(StringtoInt(text, value), expectedResult) << '"' << text << '"';
        ASSERT_EQ(value, expected) << '"' << text << '"';
    });
}

struct SplitRow {
    const char *text;
    const char *delimiters;
    Fields skipped; ///< without empty fields
    Fields kept;    ///< with them
};

TEST(TextUtil, StringSplit_splits_at_any_delimiter) {
    const SplitRow rows[] = {
        {"a b", " ", {"a", "b"}, {"a", "b"}},
        {"a  b", " ", {"a", "b"}, {"a", "", "b"}},
        {"a b ", " ", {"a", "b"}, {"a", "b"}},
        {"a b  ", " ", {"a", "b"}, {"a", "b", ""}},
        {" a", " ", {"a"}, {"", "a"}},
        {"", " ", {}, {}},
        {" ", " ", {}, {""}},
        {"  ", " ", {}, {"", ""}},
        {"abc", " ", {"abc"}, {"abc"}},
        {"a,b;c", ",;", {"a", "b", "c"}, {"a", "b", "c"}},
        {"a,;b", ",;", {"a", "b"}, {"a", "", "b"}},
        {"a b", "", {"a b"}, {"a b"}},
        {"a\tb c", " ", {"a\tb", "c"}, {"a\tb", "c"}},
    };
    for (const SplitRow &row : rows) {
        EXPECT_EQ(StringSplit(row.text, row.delimiters, 0), row.skipped) << '"' << row.text << '"';
        EXPECT_EQ(StringSplit(row.text, row.delimiters, 1), row.kept) << '"' << row.text << '"';
        EXPECT_EQ(StringSplit(row.text, row.delimiters, -5), row.kept) << '"' << row.text << '"';
    }
}

TEST(TextUtil, StringSplit_without_delimiter_returns_unsplit_text) {
    EXPECT_EQ(StringSplit("a b", nullptr, 0), Fields{"a b"});
    EXPECT_EQ(StringSplit("", nullptr, 1), Fields{});
}

TEST(TextUtil, StringSplit_keeps_embedded_NUL) {
    EXPECT_EQ(StringSplit(std::string("a\0b c", 5), " ", 0), (Fields{std::string("a\0b", 3), "c"}));
}

/// Character by character: a field is closed at each delimiter; what is open at the end counts if
/// it holds something.
Fields SlowSplit(const std::string &text, const std::string &delimiters, bool keepEmpty) {
    Fields fields;
    std::string open;
    for (const char character : text) {
        bool isDelimiter = false;
        for (const char delimiter : delimiters) {
            isDelimiter = isDelimiter || delimiter == character;
        }
        if (!isDelimiter) {
            open += character;
            continue;
        }
        if (!open.empty() || keepEmpty) {
            fields.push_back(open);
        }
        open.clear();
    }
    if (!open.empty()) {
        fields.push_back(open);
    }
    return fields;
}

TEST(TextUtil, Every_short_text_is_split_as_character_by_character) {
    for (const char *delimiters : {"", " ", ",", " ,", "a"}) {
        for (const int keepEmpty : {0, 1}) {
            ForAllTexts("ab ,", 6, [&](const std::string &text) {
                ASSERT_EQ(StringSplit(text, delimiters, keepEmpty),
                          SlowSplit(text, delimiters, keepEmpty != 0))
                    << '"' << text << "\" at \"" << delimiters << '"';
            });
        }
    }
}

template <class Text> Text Trimmed(Text text, void (*trim)(Text &)) {
    trim(text);
    return text;
}

TEST(TextUtil, DeleteBlankA_only_trims) {
    EXPECT_EQ(Trimmed<std::string>("  a b  c ", DeleteBlankA), "a b  c");
    EXPECT_EQ(Trimmed<std::wstring>(L"  a b  c ", DeleteBlankW), L"abc");
}

TEST(TextUtil, Trimming_removes_spaces_only) {
    EXPECT_EQ(Trimmed<std::string>("\t a \n", DeleteBlankA), "\t a \n");
    EXPECT_EQ(Trimmed<std::wstring>(L" \ta\r ", StringTrimW), L"\ta\r");
    EXPECT_EQ(Trimmed<std::wstring>(L"\u00A0 a\t", DeleteBlankW), L"\u00A0a\t");
}

TEST(TextUtil, Trimming_of_spaces_only_returns_empty_string) {
    for (const std::size_t length : {0U, 1U, 2U, 9U}) {
        EXPECT_EQ(Trimmed(std::string(length, ' '), DeleteBlankA), "");
        EXPECT_EQ(Trimmed(std::wstring(length, L' '), StringTrimW), L"");
        EXPECT_EQ(Trimmed(std::wstring(length, L' '), DeleteBlankW), L"");
    }
}

TEST(TextUtil, Every_short_text_is_trimmed_as_character_by_character) {
    ForAllTexts("ab \t", 7, [](const std::string &text) {
        std::string trimmed = text;
        while (!trimmed.empty() && trimmed[0] == ' ') {
            trimmed = trimmed.substr(1);
        }
        while (!trimmed.empty() && trimmed[trimmed.size() - 1] == ' ') {
            trimmed = trimmed.substr(0, trimmed.size() - 1);
        }
        std::wstring without;
        for (const char character : text) {
            if (character != ' ') {
                without += static_cast<wchar_t>(character);
            }
        }
        const std::wstring wide(text.begin(), text.end());
        ASSERT_EQ(Trimmed(text, DeleteBlankA), trimmed) << '"' << text << '"';
        ASSERT_EQ(Trimmed(wide, StringTrimW), std::wstring(trimmed.begin(), trimmed.end()));
        ASSERT_EQ(Trimmed(wide, DeleteBlankW), without);
    });
}

TEST(TextUtil, Every_number_but_0_is_true) {
    EXPECT_FALSE(ConvertBOOLTobool(0));
    EXPECT_TRUE(ConvertBOOLTobool(1));
    EXPECT_TRUE(ConvertBOOLTobool(-1));
    EXPECT_TRUE(ConvertBOOLTobool(256));
}

TEST(TextUtil, Invalid_input_prints_nothing) {
    EXPECT_EQ(OutputOf([] {
                  EXPECT_EQ(ErrorOutputOf([] {
                                int value = 0;
                                StringtoInt("nonsense", value);
                                StringtoInt("99999999999999999999", value);
                                StringSplit("", nullptr, 1);
                            }),
                            "");
              }),
              "");
}

} // namespace
