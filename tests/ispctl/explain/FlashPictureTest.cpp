// The picture of the flash, table-driven.

#include <gmock/gmock.h>

#include "explain/FlashPicture.h"
#include "explain/FlashText.h"

namespace ispctl {
namespace {

using testing::HasSubstr;
using testing::Not;

struct PictureCase {
    const char *name;
    std::vector<BankUse> uses;
    std::string firstRow; ///< letters of banks 0 to 15
    std::vector<std::uint32_t> overlaps;
    std::vector<std::uint32_t> beyondEnd;
    std::vector<std::string> remarks;
};

void PrintTo(const PictureCase &row, std::ostream *stream) {
    *stream << row.name;
}

const PictureCase kPictures[] = {
    {"Nothing", {}, "................", {}, {}, {}},
    {"OneFile", {{"/a", 0, 0}, {"/a", 1, 1}}, "AA..............", {}, {}, {}},
    {"SecondFileHasNextLetter", {{"/a", 2, 0}, {"/b", 0, 0}}, "B.A.............", {}, {}, {}},
    {"TwoFilesInOneBank",
     {{"/a", 3, 0}, {"/b", 3, 0}},
     "...#............",
     {3},
     {},
     {"bank 3 is used more than once"}},
    {"OneFileTwiceInOneBank",
     {{"/a", 1, 0}, {"/a", 1, 1}, {"/a", 2, 0}, {"/a", 2, 2}},
     ".##.............",
     {1, 2},
     {},
     {"banks 1-2 are used more than once"}},
    {"BootPassIsFileOfItsOwn", {{"/a", 0, 0, true}, {"/a", 1, 0}}, "AB..............", {}, {}, {}},
    {"LastBank", {{"/a", 255, 0}}, "................", {}, {}, {}},
    {"BeyondEnd",
     {{"/a", 15, 0}, {"/a", 256, 1}, {"/a", 4294967295U, 2}},
     "...............A",
     {},
     {256, 4294967295U},
     {"banks 256, 4294967295 are after the end of the flash, 0x1000000 (16 MiB)"}},
};

class FlashPictures : public testing::TestWithParam<PictureCase> {};

TEST_P(FlashPictures, Shows_files_overlaps_and_end) {
    const FlashPicture picture = DrawFlash(GetParam().uses);
    std::string row;
    for (std::size_t bank = 0; bank < kPictureColumns; ++bank) {
        row += LetterOf(picture, bank);
    }
    EXPECT_EQ(row, GetParam().firstRow);
    EXPECT_EQ(picture.overlaps, GetParam().overlaps);
    EXPECT_EQ(picture.beyondEnd, GetParam().beyondEnd);
    EXPECT_EQ(RemarksOf(picture), GetParam().remarks);
}

INSTANTIATE_TEST_SUITE_P(Cases, FlashPictures, testing::ValuesIn(kPictures),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(FlashPictures, Last_bank_is_last_cell) {
    EXPECT_EQ(LetterOf(DrawFlash({{"/a", 255, 0}}), 255), 'A');
}

TEST(FlashPictures, Sixty_third_file_has_letter_of_all_further_files) {
    std::vector<BankUse> uses;
    for (std::uint32_t i = 0; i < 63; ++i) {
        uses.push_back({"/" + std::to_string(i), i, 0});
    }
    const FlashPicture picture = DrawFlash(uses);
    EXPECT_EQ(LetterOf(picture, 61), '9');
    EXPECT_EQ(LetterOf(picture, 62), '+');
}

TEST(FlashPictures, Banks_are_described_with_addresses) {
    EXPECT_EQ(DescribeBanks({}), "no bank");
    EXPECT_EQ(DescribeBanks({3}), "bank 3, 0x030000-0x03FFFF");
    EXPECT_EQ(DescribeBanks({0, 1, 2, 7}), "banks 0-2, 7, 0x000000-0x07FFFF");
    EXPECT_EQ(DescribeBanks({4294967295U}), "bank 4294967295, 0xFFFFFFFF0000-0xFFFFFFFFFFFF");
}

TEST(FlashText, Text_without_colours_has_no_escape) {
    const std::string text =
        FlashText(DrawFlash({{"/a\033[31m", 0, 0}, {"/b", 0, 0}}), Charset::Utf8);
    EXPECT_THAT(text, HasSubstr("\033[1;31m#\033[m"));
    EXPECT_THAT(StripColours(text), Not(HasSubstr("\033")));
    EXPECT_THAT(StripColours(text), HasSubstr("A /a\\x1B[31m: bank 0, 0x000000-0x00FFFF\n"));
    EXPECT_THAT(StripColours(text), HasSubstr("0x000000  # . ."));
}

} // namespace
} // namespace ispctl
