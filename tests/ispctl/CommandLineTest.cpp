#include <gmock/gmock.h>
#include <random>

#include "CommandLine.h"
#include "ScalerLibrary.h"

namespace {

using ispctl::BuildCommandLine;
using ispctl::CommandLine;
using testing::HasSubstr;
using Words = std::vector<std::string>;

class BuiltCommandLine : public testing::Test {
  protected:
    static const ispctl::ScalerLibrary &Library() {
        static std::string error;
        static const auto library = ispctl::ScalerLibrary::Open(REAL_LIBRARY, error);
        if (!library) {
            throw std::runtime_error(error);
        }
        return *library;
    }
    static CommandLine Build(const Words &arguments) {
        return BuildCommandLine(arguments,
                                [](const std::string &line) { return Library().Split(line); });
    }
};

TEST_F(BuiltCommandLine, Plain_arguments_follow_program_name) {
    EXPECT_EQ(Build({"--isp", "--fw", "/a/b.bin"}).line, L"ispctl --isp --fw /a/b.bin");
}

TEST_F(BuiltCommandLine, Argument_with_space_is_quoted_from_end_to_end) {
    EXPECT_EQ(Build({"--fw=/my files/b.bin", "--isp"}).line,
              L"ispctl \"--fw=/my files/b.bin\" --isp");
    EXPECT_EQ(Build({"a b", "c d", "a b"}).line, L"ispctl \"a b\" \"c d\" \"a b\"");
}

TEST_F(BuiltCommandLine, Character_outside_ASCII_becomes_one_wide_character) {
    EXPECT_EQ(Build({"gr\xC3\xBC\xC3\x9F", "\xE2\x82\xAC", "\xF0\x9F\x94\xA7"}).line,
              L"ispctl gr\u00FC\u00DF \u20AC \U0001F527");
}

TEST_F(BuiltCommandLine, Tab_and_newline_do_not_split_argument) {
    EXPECT_EQ(Build({"a\tb\nc"}).line, L"ispctl a\tb\nc");
}

TEST_F(BuiltCommandLine, BuildCommandLine_rejects_empty_argument) {
    EXPECT_THAT(Build({"--fw", ""}).error, HasSubstr("argument 2 is empty"));
}

TEST_F(BuiltCommandLine, BuildCommandLine_rejects_double_quote) {
    EXPECT_THAT(Build({"a\"b"}).error, HasSubstr("argument 1 (a\"b) contains a double quote"));
    EXPECT_FALSE(Build({"\"\""}).IsValid());
}

TEST_F(BuiltCommandLine, BuildCommandLine_rejects_bytes_that_are_not_UTF8) {
    EXPECT_THAT(Build({"--fw", "x\xFF.bin"}).error,
                HasSubstr("argument 2 (x\\xFF.bin) is not valid UTF-8"));
}

TEST_F(BuiltCommandLine, BuildCommandLine_rejects_outer_spaces_that_are_misread) {
    EXPECT_TRUE(Build({" x "}).IsValid());
    EXPECT_TRUE(Build({"a b", " x "}).IsValid());
    EXPECT_THAT(Build({"a b", " "}).error,
                HasSubstr("argument 2 ( ) starts and ends with a space"));
    EXPECT_THAT(Build({"a b", "x", " x "}).error,
                HasSubstr("argument 3 ( x ) starts and ends with a space"));
}

TEST_F(BuiltCommandLine, BuildCommandLine_accepts_at_most_10239_bytes) {
    const std::string longest(10239 - 7, 'x'); // after "ispctl "
    EXPECT_EQ(Build({longest}).line.size(), 10239U);
    EXPECT_EQ(Build({longest + "x"}).error,
              "the command line is 10240 bytes long; the library reads at most 10239");
}

TEST_F(BuiltCommandLine, Length_limit_counts_bytes_and_not_characters) {
    std::string text;
    for (int i = 0; i < 5116; ++i) {
        text += "\xC3\xBC";
    }
    EXPECT_TRUE(Build({text}).IsValid());
    EXPECT_FALSE(Build({text + "\xC3\xBC"}).IsValid());
}

TEST_F(BuiltCommandLine, BuildCommandLine_fails_if_library_cannot_split_line) {
    const auto line = BuildCommandLine({"a"}, [](const std::string &) { return std::nullopt; });
    EXPECT_EQ(line.error, "the library rejects the quoting of this command line");
}

TEST_F(BuiltCommandLine, BuildCommandLine_fails_if_library_returns_extra_argument) {
    const auto line = BuildCommandLine({"a"}, [](const std::string &) {
        return Words{"ispctl", "a", "b"};
    });
    EXPECT_EQ(line.error, "the library would split this command line into different arguments");
}

// A slow, obvious reading of the rule for lines as they are built here: a word is quoted as a whole
// or not at all, and quotes mean what they look like.
Words PlainReading(const std::wstring &line) {
    Words words{""};
    bool quoted = false;
    for (const wchar_t character : line) {
        if (character == L'"') {
            quoted = !quoted;
        } else if (character == L' ' && !quoted) {
            words.emplace_back();
        } else {
            words.back() += static_cast<char>(character);
        }
    }
    return words;
}

TEST_F(BuiltCommandLine, Random_arguments_are_split_unchanged_or_rejected) {
    std::mt19937 random(20240229); // NOLINT: the same lists every time
    const std::string letters = "  \"ab=-\t/";
    int good = 0;
    int misread = 0;
    for (int round = 0; round < 200000; ++round) {
        Words arguments(1 + random() % 4);
        bool expressible = true;
        for (std::string &argument : arguments) {
            for (auto length = random() % 5; length > 0; --length) {
                argument += letters[random() % letters.size()];
            }
            expressible =
                expressible && !argument.empty() && argument.find('"') == std::string::npos;
        }
        const CommandLine line = Build(arguments);
        Words expected{"ispctl"};
        expected.insert(expected.end(), arguments.begin(), arguments.end());
        if (line.IsValid()) {
            ASSERT_TRUE(expressible);
            ASSERT_EQ(PlainReading(line.line), expected);
            const std::string narrow(line.line.begin(), line.line.end());
            ASSERT_EQ(Library().Split(narrow), expected);
            ++good;
        } else {
            ASSERT_TRUE(line.line.empty());
            misread += expressible ? 1 : 0;
        }
    }
    // Only blanks at both ends make a list without quotes inexpressible, and that is rare.
    EXPECT_GT(good, 20000);
    EXPECT_GT(misread, 0);
    EXPECT_LT(misread, good / 10);
}

} // namespace
