#include "PluginCodes.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace {

struct Line {
    const char *name;
    const char *file;
    int code;
    const char *meaning; // null: none
    const char *remedy;
};

void PrintTo(const Line &line, std::ostream *stream) {
    *stream << line.file;
}

class PluginCodes : public testing::TestWithParam<Line> {};

TEST_P(PluginCodes, FindPluginCodeIn_reads_one_line_per_code) {
    const Line &line = GetParam();
    const auto found = ispctl::FindPluginCodeIn(line.file, line.code);
    ASSERT_EQ(found.has_value(), line.meaning != nullptr);
    if (found) {
        EXPECT_EQ(found->meaning, line.meaning);
        EXPECT_EQ(found->remedy, line.remedy);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, PluginCodes,
    testing::Values(
        Line{"decimal", "7 flash is locked\n", 7, "flash is locked", ""},
        Line{"hexadecimal", "0x7001 locked\n", 0x7001, "locked", ""},
        Line{"negative", "-2 locked", -2, "locked", ""},
        Line{"negative_as_hexadecimal", "0xFFFFFFFE locked", -2, "locked", ""},
        Line{"remedy_after_tab", "7\tlocked\tset the jumper\r\n", 7, "locked", "set the jumper"},
        Line{"remedy_after_bar", "7 locked | set the jumper", 7, "locked", "set the jumper"},
        Line{"other_lines_are_comments", "# 7 no\ncodes of X\n\n 7 yes\n", 7, "yes", ""},
        Line{"first_line_wins", "7 one\n7 two\n", 7, "one", ""},
        Line{"too_large_number", "0x100000007 no\n", 7, nullptr, ""},
        Line{"letters_after_number", "7x no\n", 7, nullptr, ""},
        Line{"code_without_meaning", "7\n7 \t \n", 7, nullptr, ""},
        Line{"other_code", "8 no\n", 7, nullptr, ""}, Line{"empty", "", 7, nullptr, ""}),
    [](const auto &row) { return row.param.name; });

TEST(PluginCodesFile, FindPluginCode_reads_the_file_beside_the_plugin) {
    const TempFolder folder;
    EXPECT_FALSE(ispctl::FindPluginCode(folder.Path(), 7));
    folder.Write("PlugIn/libIsp.codes", "7 locked\n");
    const auto found = ispctl::FindPluginCode(folder.Path(), 7);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->meaning, "locked");
}

TEST(PluginCodesFile, FindPluginCode_ignores_what_is_after_64_KiB) {
    const TempFolder folder;
    folder.Write("PlugIn/libIsp.codes", std::string(64 * 1024, '\n') + "7 locked\n");
    EXPECT_FALSE(ispctl::FindPluginCode(folder.Path(), 7));
}

} // namespace
