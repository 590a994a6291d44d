#include <gtest/gtest.h>

#include "ResultInfo.h"

namespace {

TEST(ResultInfo, Codes_of_the_library_have_a_name_and_a_meaning) {
    EXPECT_EQ(ispctl::DescribeResult(0).name, "SCALER_ISP_SUCCESS");
    EXPECT_EQ(ispctl::DescribeResult(-1).meaning, "the command line was refused");
    EXPECT_EQ(ispctl::DescribeResult(-1, true).meaning,
              "the plug-in failed or threw an exception, or a call inside the library failed");
    EXPECT_EQ(ispctl::DescribeResult(0x4003).name, "SCALER_ISP_BAD_SIGNATURE");
    EXPECT_EQ(ispctl::DescribeResult(0x4003).meaning, "the firmware signature is invalid");
}

TEST(ResultInfo, Other_codes_come_from_the_plugin) {
    EXPECT_EQ(ispctl::DescribeResult(0x7777).name, "");
    EXPECT_EQ(ispctl::DescribeResult(0x7777).meaning,
              "error code of the plug-in (see its documentation)");
    EXPECT_EQ(ispctl::DescribeResult(-2).meaning,
              "error code of the plug-in (see its documentation)");
}

TEST(ResultInfo, Hexadecimal_is_the_librarys) {
    EXPECT_EQ(ispctl::FormatResultCode(0xD67), "0xD67");
    EXPECT_EQ(ispctl::FormatResultCode(-1), "0xFFFFFFFF");
    EXPECT_EQ(ispctl::FormatResultCode(0), "0x0");
}

} // namespace
