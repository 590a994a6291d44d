#include <random>

#include <gmock/gmock.h>

#include "scaler_isp/entry/CommandLineSplit.h"
#include "support/CapturedOutput.h"
#include "unit/entry/CommandLineSplitModel.h"

namespace {

using Tokens = std::vector<std::string>;

constexpr const char *kFailed = "(failed)";

Tokens Split(const std::string &line) {
    Tokens tokens;
    return ParseCommandLineParameter(tokens, line) == 1 ? tokens : Tokens{kFailed};
}

/// As the model says it.
Tokens Model(const std::string &line) {
    return model::SplitTokens(line).value_or(Tokens{kFailed});
}

} // namespace

TEST(CommandLineSplit, Spaces_separate_arguments) {
    EXPECT_EQ(Split("a b"), (Tokens{"a", "b"}));
    EXPECT_EQ(Split("  a   b  "), (Tokens{"a", "b"}));
    EXPECT_EQ(Split(""), Tokens{});
    EXPECT_EQ(Split("   "), Tokens{});
    EXPECT_EQ(Split("a\tb c\nd"), (Tokens{"a\tb", "c\nd"}));
}

TEST(CommandLineSplit, Quotes_protect_spaces_and_are_removed) {
    EXPECT_EQ(Split("a \"b c\" d"), (Tokens{"a", "b c", "d"}));
    EXPECT_EQ(Split("p --fw=\"my file.bin\" --isp"), (Tokens{"p", "--fw=my file.bin", "--isp"}));
    EXPECT_EQ(Split("a x\"b c\"y d"), (Tokens{"a", "xb cy", "d"}));
    EXPECT_EQ(Split("a \"'b\t\" d"), (Tokens{"a", "'b\t", "d"}));
}

TEST(CommandLineSplit, Odd_number_of_quotes_fails) {
    for (const char *line : {"a \"b", "\"", "a \"b\" \"c", "a \"\"\""}) {
        EXPECT_EQ(Split(line), Tokens{kFailed}) << line;
    }
}

TEST(CommandLineSplit, Empty_pair_of_quotes_fails) {
    for (const char *line : {"a \"\"", "a \"\" b", "a \"b\" \"\"", "a\"\"b"}) {
        EXPECT_EQ(Split(line), Tokens{kFailed}) << line;
    }
}

TEST(CommandLineSplit, Failure_prints_nothing) {
    EXPECT_EQ(OutputOf([] { Split("a \"\""); }), "");
}

TEST(CommandLineSplit, Quote_at_the_start_of_the_line_opens_nothing) {
    EXPECT_EQ(Split("\"a b\" c"), (Tokens{"\"a", "b "}));
    EXPECT_EQ(Split("\"\" a"), (Tokens{" \""}));
    EXPECT_EQ(Split("\"\""), (Tokens{"\""}));
}

TEST(CommandLineSplit, Second_quoted_part_moves_to_next_word) {
    EXPECT_EQ(Split("x\"a b\"\"c d\" \"e f\""), (Tokens{"xa b\"\"", "c d"}));
}

TEST(CommandLineSplit, Repeated_quoted_parts_are_restored_in_order) {
    EXPECT_EQ(Split("p \"a b\" \"a b\""), (Tokens{"p", "a b", "a b"}));
}

TEST(CommandLineSplit, Split_replaces_content_of_output_list) {
    Tokens tokens{"old"};
    EXPECT_EQ(ParseCommandLineParameter(tokens, "a"), 1);
    EXPECT_EQ(tokens, Tokens{"a"});
}

TEST(CommandLineSplit, Every_short_line_agrees_with_documented_rules) {
    const char letters[] = {'"', 'a', ' '};
    for (int length = 0; length <= 9; ++length) {
        int lines = 1;
        for (int i = 0; i < length; ++i) {
            lines *= 3;
        }
        for (int number = 0; number < lines; ++number) {
            std::string line;
            for (int i = 0, rest = number; i < length; ++i, rest /= 3) {
                line += letters[static_cast<std::size_t>(rest % 3)];
            }
            ASSERT_EQ(Split(line), Model(line)) << "[" << line << "]";
        }
    }
}

TEST(CommandLineSplit, Random_long_lines_agree_with_documented_rules) {
    std::mt19937 random(99);
    const std::string letters = "\"\"ab-=  \t";
    for (int round = 0; round < 20000; ++round) {
        std::string line;
        for (auto count = random() % 60; count > 0; --count) {
            line += letters[random() % letters.size()];
        }
        ASSERT_EQ(Split(line), Model(line)) << "[" << line << "]";
    }
}
