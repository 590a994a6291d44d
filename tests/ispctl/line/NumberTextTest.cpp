#include "line/NumberText.h"

#include <gmock/gmock.h>

#include "line/NearestName.h"

namespace {

struct NumberCase {
    const char *text;
    bool isComplete;
    std::int32_t stored; ///< of a complete number
    bool isOctal;
    bool isHuge;
};

const NumberCase kNumbers[] = {
    {"", true, 0, false, false},
    {"0", true, 0, false, false},
    {"00", true, 0, false, false},
    {"10", true, 10, false, false},
    {"010", true, 8, true, false},
    {"09", false, 0, false, false},
    {"0x1F", true, 31, false, false},
    {"0X1f", true, 31, false, false},
    {"0x", false, 0, false, false},
    {"0b1", false, 0, false, false},
    {" \t+5", true, 5, false, false},
    {"-1", true, -1, false, false},
    {"5 ", false, 0, false, false},
    {"12abc", false, 0, false, false},
    {"abc", false, 0, false, false},
    {"-", false, 0, false, false},
    {" ", false, 0, false, false},
    {"0xffffffff", true, -1, false, false},
    {"4294967297", true, 1, false, true},
    {"99999999999999999999", true, -1, false, true},
    {"-99999999999999999999", true, 0, false, true},
};

TEST(NumberText, Text_is_read_as_the_library_reads_it) {
    for (const NumberCase &row : kNumbers) {
        const ispctl::NumberText number = ispctl::ReadNumberText(row.text);
        EXPECT_EQ(number.isComplete, row.isComplete) << row.text;
        if (row.isComplete) {
            EXPECT_EQ(number.stored, row.stored) << row.text;
        }
        EXPECT_EQ(number.isOctal, row.isOctal) << row.text;
        EXPECT_EQ(number.isHuge, row.isHuge) << row.text;
    }
}

TEST(NearestName, Typing_errors_lead_to_the_name_that_was_meant) {
    const std::string_view names[] = {"isp", "bank", "bank1", "virtual", "signfile", "comm"};
    EXPECT_EQ(ispctl::NearestName("bnak", names), "bank");
    EXPECT_EQ(ispctl::NearestName("virtul", names), "virtual");
    EXPECT_EQ(ispctl::NearestName("ISP", names), "isp");
    EXPECT_EQ(ispctl::NearestName("sgnfil", names), "signfile");
    EXPECT_EQ(ispctl::NearestName("virt", names), "virtual");
    EXPECT_EQ(ispctl::NearestName("zzz", names), "");
    EXPECT_EQ(ispctl::NearestName("x", names), "");
}

TEST(NearestName, Distance_counts_an_exchange_as_one) {
    EXPECT_EQ(ispctl::EditDistance("bank", "bank"), 0U);
    EXPECT_EQ(ispctl::EditDistance("bnak", "bank"), 1U);
    EXPECT_EQ(ispctl::EditDistance("", "abc"), 3U);
    EXPECT_EQ(ispctl::EditDistance("kitten", "sitting"), 3U);
}

} // namespace
