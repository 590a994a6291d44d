#include "ParserFixture.h"

class FlashVersion : public ParserTest {
  protected:
    Answer Convert(const char *addr, const char *total, const char *major, const char *sub,
                   const char *mode = "") {
        STRUCT_CP_ISP_CMD_ARGS args;
        args.strVerAddr = addr;
        args.strTotalVerLen = total;
        args.strMajorVerLen = major;
        args.strSubVerLen = sub;
        args.strRecordVerMode = mode;
        setting = STRUCT_READ_VERSION_FROM_FLASH_SETTING();
        return Ask([&] { return parser->GetReadVersionFromFlashSetting(args, setting); });
    }
    STRUCT_READ_VERSION_FROM_FLASH_SETTING setting;
};

TEST_F(FlashVersion, No_value_is_accepted_and_stores_zeros) {
    EXPECT_ACCEPTED(Convert("", "", "", "", "1"));
    EXPECT_EQ(setting.enumRecordVerMode, 0U);
    EXPECT_EQ(setting.ulVerAddr, 0U);
    EXPECT_EQ(setting.ulTotalVerLen, 0U);
    EXPECT_EQ(setting.ulMajorVerLen, 0U);
    EXPECT_EQ(setting.ulSubVerLen, 0U);
}

TEST_F(FlashVersion, Flash_version_stores_all_values) {
    EXPECT_ACCEPTED(Convert("0x1000", "8", "3", "2", "1"));
    EXPECT_EQ(setting.enumRecordVerMode, 1U);
    EXPECT_EQ(setting.ulVerAddr, 0x1000U);
    EXPECT_EQ(setting.ulTotalVerLen, 8U);
    EXPECT_EQ(setting.ulMajorVerLen, 3U);
    EXPECT_EQ(setting.ulSubVerLen, 2U);
}

TEST_F(FlashVersion, Sub_length_defaults_to_0) {
    EXPECT_ACCEPTED(Convert("1", "2", "2", ""));
    EXPECT_EQ(setting.ulSubVerLen, 0U);
}

TEST_F(FlashVersion, First_three_values_are_required_if_any_is_given) {
    EXPECT_REFUSED(Convert("", "8", "1", ""), "");
    EXPECT_REFUSED(Convert("1", "", "1", ""), "");
    EXPECT_REFUSED(Convert("1", "8", "", ""), "");
    EXPECT_REFUSED(Convert("", "", "", "1"), "");
}

TEST_F(FlashVersion, Value_that_is_not_number_is_rejected) {
    EXPECT_REFUSED(Convert("a", "8", "1", ""), "");
    EXPECT_REFUSED(Convert("1", "8x", "1", ""), "");
    EXPECT_REFUSED(Convert("1", "8", "-", ""), "");
    EXPECT_REFUSED(Convert("1", "8", "1", "s"), "");
}

TEST_F(FlashVersion, Record_mode_other_than_0_or_1_becomes_2) {
    const struct {
        const char *text;
        unsigned mode;
    } rows[] = {{"", 2}, {"0", 0}, {"1", 1}, {"2", 2}, {"3", 2}, {"-1", 2}, {"x", 2}, {"0x1", 1}};
    for (const auto &row : rows) {
        EXPECT_ACCEPTED(Convert("0", "8", "1", "", row.text));
        EXPECT_EQ(setting.enumRecordVerMode, row.mode) << row.text;
    }
}

TEST_F(FlashVersion, Total_length_above_256_is_rejected) {
    EXPECT_ACCEPTED(Convert("0", "256", "1", ""));
    EXPECT_REFUSED(Convert("0", "257", "1", ""), "");
    EXPECT_REFUSED(Convert("0", "-1", "1", ""), "");
    EXPECT_EQ(setting.ulTotalVerLen, 0xFFFFFFFFU);
}

TEST_F(FlashVersion, Major_and_sub_length_above_total_are_rejected) {
    EXPECT_ACCEPTED(Convert("0", "8", "5", "3"));
    EXPECT_REFUSED(Convert("0", "8", "5", "4"), "");
    EXPECT_REFUSED(Convert("0", "8", "9", ""), "");
    EXPECT_REFUSED(Convert("0", "8", "2", "-1"), "");
}

TEST_F(FlashVersion, Major_length_0_is_rejected) {
    EXPECT_REFUSED(Convert("0", "8", "0", "1"), "");
}

TEST_F(FlashVersion, Address_range_up_to_16_MiB_is_rejected) {
    EXPECT_ACCEPTED(Convert("0xFFFFFE", "1", "1", ""));
    EXPECT_REFUSED(Convert("0xFFFFFF", "1", "1", ""), "");
    EXPECT_REFUSED(Convert("0x1000000", "1", "1", ""), "");
    EXPECT_REFUSED(Convert("-1", "1", "1", ""), "");
}
