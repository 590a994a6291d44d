#include <random>

#include <gmock/gmock.h>

#include "scaler_isp/entry/CommandLineSplit.h"
#include "support/CapturedOutput.h"

namespace {

using Tokens = std::vector<std::string>;

constexpr const char *kFailed = "(failed)";

Tokens Split(const std::string &line) {
    Tokens tokens;
    return ParseCommandLineParameter(tokens, line) == 1 ? tokens : Tokens{kFailed};
}

/// Whether `part` stands at a place of a text, compared letter by letter.
bool StandsAt(const std::string &text, int place, const std::string &part) {
    for (int i = 0; i < static_cast<int>(part.size()); ++i) {
        if (place + i >= static_cast<int>(text.size()) ||
            text[static_cast<std::size_t>(place + i)] != part[static_cast<std::size_t>(i)]) {
            return false;
        }
    }
    return true;
}

/// Replaces the first place of `part`; nothing where there is none.
bool ReplaceFirst(std::string &text, const std::string &part, const std::string &with) {
    for (int place = 0; place < static_cast<int>(text.size()); ++place) {
        if (StandsAt(text, place, part)) {
            std::string result;
            for (int i = 0; i < place; ++i) {
                result += text[static_cast<std::size_t>(i)];
            }
            result += with;
            for (auto i = static_cast<std::size_t>(place) + part.size(); i < text.size(); ++i) {
                result += text[i];
            }
            text = result;
            return true;
        }
    }
    return false;
}

/// The splitting as the rules describe it, letter by letter.
Tokens Model(const std::string &line) {
    const int length = static_cast<int>(line.size());
    std::vector<int> places; // what each search finds; the end of the line where nothing is left
    int quotes = 0;
    for (const char c : line) {
        quotes += c == '"' ? 1 : 0;
    }
    if (quotes % 2 == 1) {
        return {kFailed};
    }
    for (int n = 0, from = 1; n < quotes; ++n) {
        int place = from;
        while (place < length && line[static_cast<std::size_t>(place)] != '"') {
            ++place;
        }
        places.push_back(place < length ? place : length);
        from = place + 1;
    }
    std::vector<std::string> segments;
    for (std::size_t n = 1; n < places.size(); n += 2) {
        const int opening = places[n - 1];
        const int closing = places[n];
        if (closing < length && closing - opening == 1) {
            return {kFailed};
        }
        std::string segment;
        for (int i = opening; i <= closing && i < length; ++i) {
            segment += line[static_cast<std::size_t>(i)];
        }
        segments.push_back(segment);
    }
    std::string copy = line;
    for (const std::string &segment : segments) {
        ReplaceFirst(copy, segment, "\"\"");
    }
    Tokens tokens;
    std::string token;
    for (const char c : copy + " ") {
        if (c != ' ') {
            token += c;
        } else if (!token.empty()) {
            tokens.push_back(token);
            token.clear();
        }
    }
    std::size_t k = 0;
    for (std::string &word : tokens) {
        if (k >= segments.size()) {
            break;
        }
        std::string inner;
        for (std::size_t i = 1; i + 1 < segments[k].size(); ++i) {
            inner += segments[k][i];
        }
        k += ReplaceFirst(word, "\"\"", inner) ? 1U : 0U;
    }
    return tokens;
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
