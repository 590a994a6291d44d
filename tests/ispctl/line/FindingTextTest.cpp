#include "line/FindingText.h"

#include <algorithm>
#include <sstream>

#include <gmock/gmock.h>

#include "line/DisplayWidth.h"
#include "line/FindingJson.h"
#include "line/ShellQuote.h"

namespace {

using ispctl::Finding;
using ispctl::FindingClass;
using Words = std::vector<std::string>;

Finding About(std::size_t argument, std::size_t offset, std::size_t length) {
    Finding finding;
    finding.name = "unknown-option";
    finding.message = "there is no option --bnak";
    finding.suggestion = "did you mean --bank?";
    finding.argument = argument;
    finding.offset = offset;
    finding.length = length;
    return finding;
}

Words LinesOf(const std::string &text) {
    std::istringstream stream(text);
    Words lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

TEST(FindingText, Word_is_underlined_and_suggestion_follows) {
    EXPECT_EQ(ispctl::FindingText(About(2, 0, 6), {"--isp", "--fw=my file", "--bnak"}, {}),
              "error: there is no option --bnak [unknown-option]\n"
              "  --isp '--fw=my file' --bnak\n"
              "                       ^~~~~~\n"
              "help: did you mean --bank?\n");
}

TEST(FindingText, One_line_that_corrects_all_findings_is_at_the_end) {
    const ispctl::CorrectedLine corrected{{"--isp", "--fw", "my file", "--bank"}, {}};
    const std::string text =
        ispctl::FindingsText({About(1, 0, 6), About(1, 0, 6)}, corrected, {"--isp", "--bnak"}, {});
    EXPECT_THAT(text, testing::EndsWith("help: did you mean --bank?\n\ncorrected line:\n"
                                        "  ispctl run --isp --fw 'my file' --bank\n"));
    EXPECT_EQ(text.find("ispctl run"), text.rfind("ispctl run"));
}

TEST(FindingText, Line_that_is_not_right_yet_says_what_remains) {
    const ispctl::CorrectedLine corrected{{"--isp"}, {About(0, 0, 5)}};
    EXPECT_EQ(ispctl::CorrectedText(corrected, {}), "corrected in part; this remains:\n"
                                                    "  there is no option --bnak [unknown-option]\n"
                                                    "line so far:\n"
                                                    "  ispctl run --isp\n");
    EXPECT_EQ(ispctl::CorrectedText({{}, {About(0, 0, 5)}}, {}), "");
}

TEST(FindingText, Consequence_is_one_sentence_that_names_its_cause) {
    Finding finding = About(0, 0, 5);
    finding.followsFrom = "--fww";
    EXPECT_EQ(ispctl::FindingText(finding, {"--isp"}, {}),
              "error: there is no option --bnak [unknown-option]; follows from --fww\n");
}

TEST(FindingText, Part_of_a_quoted_argument_is_underlined) {
    const Words lines = LinesOf(ispctl::FindingText(About(0, 5, 4), {"--fw=a b.x"}, {}));
    EXPECT_EQ(lines[1], "  '--fw=a b.x'");
    EXPECT_EQ(lines[2], "        ^~~~");
}

TEST(FindingText, Columns_are_those_of_the_terminal) {
    const Words lines = LinesOf(ispctl::FindingText(About(1, 0, 3),
                                                    {"\xC3\xA4\xE4\xB8\xAD"
                                                     "e\xCC\x81",
                                                     "abc"},
                                                    {}));
    EXPECT_EQ(lines[2], "       ^~~"); // 1 + 2 + 1 columns before the space
}

TEST(FindingText, Long_line_is_cut_around_the_word) {
    Words arguments(40, "--aaaaaaaa");
    arguments[20] = "--bnak";
    for (const std::size_t width : {30U, 40U, 80U}) {
        const Words lines =
            LinesOf(ispctl::FindingText(About(20, 0, 6), arguments, {.width = width}));
        const auto line = std::find_if(lines.begin(), lines.end(), [](const std::string &text) {
            return text.starts_with("  ...");
        });
        ASSERT_NE(line, lines.end());
        EXPECT_LE(line->size(), width);
        EXPECT_TRUE(line->ends_with("..."));
        const std::string &marks = *(line + 1);
        EXPECT_EQ(line->substr(marks.find('^'), 6), "--bnak");
        EXPECT_EQ(marks.substr(marks.find('^')), "^~~~~~");
    }
}

TEST(FindingText, Word_longer_than_the_terminal_shows_its_beginning) {
    const Words lines =
        LinesOf(ispctl::FindingText(About(0, 0, 200), {std::string(200, 'x')}, {.width = 40}));
    for (const std::string &line : lines) {
        EXPECT_LE(line.size(), 40U + 12U); // messages break between words only
    }
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("  xxxx")));
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith("  ^~~~")));
}

TEST(FindingText, Finding_about_the_line_underlines_nothing) {
    Finding finding = About(0, 0, 0);
    finding.argument.reset();
    EXPECT_THAT(ispctl::FindingText(finding, {"--comm"}, {}),
                testing::Not(testing::HasSubstr("^")));
}

TEST(FindingText, Control_characters_do_not_reach_the_terminal) {
    Finding finding = About(0, 0, 5);
    finding.message = "bad \033[31m";
    finding.corrected = {"\033x"};
    const std::string text = ispctl::FindingText(finding, {"a\033[2Jb"}, {});
    EXPECT_EQ(text.find('\033'), std::string::npos);
    EXPECT_THAT(text, testing::HasSubstr("$'a\\x1B[2Jb'"));
}

TEST(FindingText, Ascii_terminal_gets_ascii) {
    Finding finding = About(0, 0, 2);
    const std::string text =
        ispctl::FindingText(finding, {"\xC3\xA4"}, {.charset = ispctl::Charset::Ascii});
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c > 0; }));
    EXPECT_THAT(text, testing::HasSubstr("$'\\xC3\\xA4'"));
}

TEST(ShellQuote, Argument_is_quoted_as_a_shell_needs_it) {
    EXPECT_EQ(ispctl::QuoteForShell("--fw=/a/b_c-1.bin"), "--fw=/a/b_c-1.bin");
    EXPECT_EQ(ispctl::QuoteForShell(""), "''");
    EXPECT_EQ(ispctl::QuoteForShell("a b"), "'a b'");
    EXPECT_EQ(ispctl::QuoteForShell("it's"), "'it'\\''s'");
    EXPECT_EQ(ispctl::QuoteForShell("$HOME"), "'$HOME'");
    EXPECT_EQ(ispctl::QuoteForShell("a\n'"), "$'a\\x0A\\''");
}

TEST(FindingJson, Everything_that_a_finding_has_is_there) {
    Finding finding = About(2, 0, 6);
    finding.option = "--bnak";
    finding.corrected = {"--isp"};
    EXPECT_EQ(ispctl::FindingJson(finding).dump(),
              R"({"name":"unknown-option","class":"error","option":"--bnak","value":null,)"
              R"("argument":2,"offset":0,"length":6,"message":"there is no option --bnak",)"
              R"("suggestion":"did you mean --bank?","follows_from":null,"corrected":["--isp"]})");
    EXPECT_TRUE(ispctl::FindingJson(Finding{})["argument"].is_null());
    EXPECT_TRUE(ispctl::FindingJson(Finding{})["corrected"].is_null());
    EXPECT_EQ(ispctl::FindingsJson({}).dump(), "[]");
}

} // namespace
