#include "edid/EdidBlocks.h"

#include <gmock/gmock.h>

#include "edid/EdidMaker.h"

namespace {

using ispctl::EdidFacts;
using ispctl::EdidProblems;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::uint8_t> Join(const edid::Block &first, const edid::Block &second) {
    std::vector<std::uint8_t> bytes(first.begin(), first.end());
    bytes.insert(bytes.end(), second.begin(), second.end());
    return bytes;
}

TEST(EdidBlocks, Valid_EDID_has_no_problem) {
    EXPECT_THAT(EdidProblems(edid::Base()), IsEmpty());
    EXPECT_THAT(EdidProblems(Join(edid::Base(1), edid::Cta())), IsEmpty());
}

TEST(EdidBlocks, EdidFacts_reads_facts_of_base_block) {
    EXPECT_EQ(EdidFacts(edid::Base()),
              "manufacturer      TST\n"
              "product           0x1234\n"
              "serial number     0x12345678\n"
              "made              week 12 of 2021\n"
              "EDID version      1.4\n"
              "preferred timing  1920 x 1080, 60.00 Hz, pixel clock 148.50 MHz\n"
              "name              Test panel\n"
              "extension blocks  0\n");
    EXPECT_THAT(EdidFacts(Join(edid::Base(1), edid::Cta())),
                HasSubstr("extension blocks  1\n  block 1         CTA-861\n"));
}

TEST(EdidBlocks, Year_is_shown_in_three_forms) {
    edid::Block block = edid::Base();
    block[16] = 0;
    EXPECT_THAT(EdidFacts(block), HasSubstr("made              year 2021\n"));
    block[16] = 0xFF;
    EXPECT_THAT(EdidFacts(block), HasSubstr("made              model year 2021\n"));
}

TEST(EdidBlocks, Missing_timing_and_name_are_reported) {
    edid::Block block = edid::Base();
    block[54] = block[55] = 0;
    block[75] = 0xFE;
    EXPECT_THAT(EdidFacts(block), HasSubstr("preferred timing  none\nname              none\n"));
}

TEST(EdidBlocks, Large_and_interlaced_timings_are_read) {
    edid::Block block = edid::Base();
    block[56] = 0x00; // 3840 active, 560 blanking
    block[57] = 0x30;
    block[58] = 0xF2;
    block[71] |= 0x80;
    EXPECT_THAT(EdidFacts(block), HasSubstr("preferred timing  3840 x 1080 interlaced, 30.00 Hz"));
}

TEST(EdidBlocks, Wrong_checksum_is_reported_with_expected_one) {
    edid::Block block = edid::Base();
    const std::uint8_t due = block[127];
    block[127] = static_cast<std::uint8_t>(due + 1);
    char text[100];
    std::snprintf(text, sizeof text,
                  "block 0: checksum 0x%02X, expected 0x%02X (the sum of the 128 bytes is 0x01, "
                  "not 0)",
                  due + 1, due);
    EXPECT_THAT(EdidProblems(block), ElementsAre(text));
}

TEST(EdidBlocks, Checksum_of_each_block_is_checked_separately) {
    edid::Block base = edid::Base(1);
    edid::Block cta = edid::Cta();
    ++base[127];
    --cta[127]; // the sum of both together is still 0
    EXPECT_THAT(EdidProblems(Join(base, cta)),
                ElementsAre(HasSubstr("block 0: checksum 0x"), HasSubstr("block 1: checksum 0x")));
}

TEST(EdidBlocks, Announced_and_present_blocks_are_compared) {
    EXPECT_THAT(EdidProblems(edid::Base(1)),
                ElementsAre("block 0: header declares 1 extension block, file contains 0"));
    EXPECT_THAT(EdidProblems(Join(edid::Base(), edid::Cta())),
                ElementsAre("block 0: header declares 0 extension blocks, file contains 1"));
}

TEST(EdidBlocks, Wrong_size_or_header_is_reported) {
    EXPECT_THAT(EdidProblems({}), ElementsAre("size 0 is not a multiple of 128"));
    edid::Block block = edid::Base();
    block[0] = 1;
    edid::Close(block);
    EXPECT_THAT(EdidProblems(block),
                ElementsAre("block 0: the header is not 00 FF FF FF FF FF FF 00"));
    std::vector<std::uint8_t> longer(block.begin(), block.end());
    longer.push_back(0);
    EXPECT_EQ(EdidProblems(longer).front(), "size 129 is not a multiple of 128");
}

} // namespace
