#include "ParserFixture.h"

class UserFlag : public ParserTest {
  protected:
    UserFlag() {
        setting.ulFlagCount = 5;
        setting.ulFlagAddr = 7;
        setting.ulFlagReserved = 3;
        std::memset(setting.ucFlagData, 0x11, sizeof setting.ucFlagData);
    }
    Answer Convert(const std::string &addr, const std::string &data) {
        return Ask([&] { return parser->GetUserFlag(addr, data, setting); });
    }
    static std::string Values(int count, const std::string &value) {
        std::string text = value;
        for (int i = 1; i < count; ++i) {
            text += "," + value;
        }
        return text;
    }
    STRUCT_FLAG_SETTING setting;
};

TEST_F(UserFlag, GetUserFlag_changes_nothing_without_address) {
    EXPECT_ACCEPTED(Convert("", "1,2,bad"));
    EXPECT_EQ(setting.ulFlagCount, 5U);
    EXPECT_EQ(setting.ulFlagAddr, 7U);
    EXPECT_EQ(setting.ucFlagData[0], 0x11);
}

TEST_F(UserFlag, GetUserFlag_sets_bytes_to_FF_without_data) {
    EXPECT_ACCEPTED(Convert("0x1234", ""));
    EXPECT_EQ(setting.ulFlagAddr, 0x1234U);
    EXPECT_EQ(setting.ulFlagCount, 0U);
    EXPECT_THAT(setting.ucFlagData, testing::Each(0xFF));
    EXPECT_EQ(setting.ulFlagReserved, 3U);
}

TEST_F(UserFlag, Bytes_are_stored_in_order_and_remaining_ones_are_FF) {
    EXPECT_ACCEPTED(Convert("16", "1,0x20,,03,"));
    EXPECT_EQ(setting.ulFlagCount, 3U);
    EXPECT_EQ(setting.ucFlagData[0], 1);
    EXPECT_EQ(setting.ucFlagData[1], 0x20);
    EXPECT_EQ(setting.ucFlagData[2], 3);
    EXPECT_EQ(setting.ucFlagData[3], 0xFF);
    EXPECT_EQ(setting.ucFlagData[1219], 0xFF);
}

TEST_F(UserFlag, Invalid_address_is_rejected_before_anything_is_stored) {
    EXPECT_REFUSED(Convert("1g", "1"), "Parameter illegal! --flagaddr 1g \n");
    EXPECT_EQ(setting.ulFlagAddr, 7U);
    EXPECT_EQ(setting.ulFlagCount, 5U);
    EXPECT_EQ(setting.ucFlagData[0], 0x11);
}

TEST_F(UserFlag, Invalid_byte_prints_list_and_keeps_earlier_bytes) {
    for (const char *bad : {"9,256", "9,-1", "9,x,3", "9, "}) {
        EXPECT_REFUSED(Convert("1", bad),
                       std::string("Parameter illegal! --flagdata ") + bad + " \n");
        EXPECT_EQ(setting.ulFlagCount, 1U) << bad;
        EXPECT_EQ(setting.ucFlagData[0], 9);
        EXPECT_EQ(setting.ucFlagData[1], 0xFF);
    }
}

TEST_F(UserFlag, Flag_count_wraps_at_256) {
    EXPECT_ACCEPTED(Convert("1", Values(255, "1")));
    EXPECT_EQ(setting.ulFlagCount, 255U);
    EXPECT_ACCEPTED(Convert("1", Values(256, "1")));
    EXPECT_EQ(setting.ulFlagCount, 0U);
    EXPECT_EQ(setting.ucFlagData[255], 1);
    EXPECT_EQ(setting.ucFlagData[256], 0xFF);
    EXPECT_ACCEPTED(Convert("1", Values(300, "2")));
    EXPECT_EQ(setting.ulFlagCount, 44U);
    EXPECT_EQ(setting.ucFlagData[299], 2);
}

TEST_F(UserFlag, Values_beyond_capacity_are_counted_and_not_stored) {
    EXPECT_ACCEPTED(Convert("0x40", Values(1220, "3")));
    EXPECT_EQ(setting.ulFlagCount, 1220U % 256U);
    EXPECT_ACCEPTED(Convert("0x40", Values(1300, "3")));
    EXPECT_EQ(setting.ulFlagCount, 1300U % 256U);
    EXPECT_EQ(setting.ucFlagData[1219], 3);
    EXPECT_EQ(setting.ulFlagAddr, 0x40U);
    EXPECT_EQ(setting.ulFlagReserved, 3U);
    EXPECT_REFUSED(Convert("0x40", Values(1300, "3") + ",256"),
                   "Parameter illegal! --flagdata " + Values(1300, "3") + ",256 \n");
}
