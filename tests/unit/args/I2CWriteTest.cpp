#include "ParserFixture.h"

class I2CWriteArguments : public ParserTest {
  protected:
    Answer Convert(const std::string &data, unsigned ddcci = 0) {
        STRUCT_CP_ISP_CMD_ARGS args;
        args.strWriteData = data;
        args.bDdcciCmd = ddcci;
        setting = STRUCT_I2C_WRITE_ACTION_TYPE_SETTING();
        return Ask([&] { return parser->GetI2CWriteActionTypeSetting(args, setting); });
    }
    static std::string Ones(int count) {
        std::string text = "1";
        for (int i = 1; i < count; ++i) {
            text += ",1";
        }
        return text;
    }
    STRUCT_I2C_WRITE_ACTION_TYPE_SETTING setting;
};

TEST_F(I2CWriteArguments, Plain_write_stores_slave_sub_address_and_data) {
    EXPECT_ACCEPTED(Convert("110,81,1"));
    EXPECT_EQ(setting.ucI2CSlaveAddr, 110);
    EXPECT_EQ(setting.ucI2CSubAddr, 81);
    EXPECT_EQ(setting.ucI2CDataLen, 1);
    EXPECT_EQ(setting.ucI2CData[0], 1);
    EXPECT_EQ(setting.ucI2CData[1], 0xFF);
    EXPECT_EQ(setting.bDdcciCmd, 0U);
}

TEST_F(I2CWriteArguments, Ddcci_length_byte_is_stored_with_bit_7_cleared) {
    EXPECT_ACCEPTED(Convert("0x6E,0x51,0x82,7,8", 1));
    EXPECT_EQ(setting.ucI2CSlaveAddr, 0x6E);
    EXPECT_EQ(setting.ucI2CSubAddr, 0x51);
    EXPECT_EQ(setting.ucI2CDataLen, 2);
    EXPECT_EQ(setting.ucI2CData[0], 7);
    EXPECT_EQ(setting.ucI2CData[1], 8);
    EXPECT_EQ(setting.ucI2CData[2], 0xFF);
    EXPECT_EQ(setting.bDdcciCmd, 1U);
    EXPECT_ACCEPTED(Convert("1,2,2,7,8", 1));
    EXPECT_EQ(setting.ucI2CDataLen, 2);
    EXPECT_ACCEPTED(Convert("1,2,0x80", 1));
    EXPECT_EQ(setting.ucI2CDataLen, 0);
}

TEST_F(I2CWriteArguments, Ddcci_length_must_equal_number_of_data_bytes) {
    EXPECT_REFUSED(Convert("1,2,0x83,7,8", 1), "");
    EXPECT_REFUSED(Convert("1,2,0x81,7,8", 1), "");
    EXPECT_EQ(setting.bDdcciCmd, 1U);
    EXPECT_EQ(setting.ucI2CDataLen, 1);
    EXPECT_EQ(setting.ucI2CData[0], 0xFF);
}

TEST_F(I2CWriteArguments, Ddcci_data_has_at_most_127_bytes) {
    EXPECT_ACCEPTED(Convert("1,2,0xFF," + Ones(127), 1));
    EXPECT_EQ(setting.ucI2CDataLen, 127);
    EXPECT_REFUSED(Convert("1,2,0x80," + Ones(128), 1), "");
}

TEST_F(I2CWriteArguments, Fewer_than_three_values_are_rejected) {
    for (const char *data : {"", "1", "1,2", "1,2,", ",,"}) {
        EXPECT_REFUSED(Convert(data), "");
    }
    EXPECT_EQ(setting.ucI2CSlaveAddr, 0xFF);
}

TEST_F(I2CWriteArguments, Value_outside_0_to_255_is_rejected) {
    for (const char *data : {"1,2,256", "-1,2,3", "1,2,x", "1,2,3;4"}) {
        EXPECT_REFUSED(Convert(data), "");
    }
}

TEST_F(I2CWriteArguments, I2C_write_of_256_bytes_has_length_0) {
    EXPECT_ACCEPTED(Convert("9,8," + Ones(255)));
    EXPECT_EQ(setting.ucI2CDataLen, 255);
    EXPECT_EQ(setting.ucI2CData[255], 0xFF);
    EXPECT_ACCEPTED(Convert("9,8," + Ones(256)));
    EXPECT_EQ(setting.ucI2CDataLen, 0);
    EXPECT_THAT(setting.ucI2CData, testing::Each(1));
    EXPECT_REFUSED(Convert("9,8," + Ones(257)), "");
    EXPECT_EQ(setting.ucI2CSlaveAddr, 0xFF);
}

TEST_F(I2CWriteArguments, GetI2CCmdFromString_appends_and_counts_all_values) {
    std::vector<unsigned char> bytes{4, 5};
    EXPECT_ACCEPTED(Ask([&] { return parser->GetI2CCmdFromString(bytes, "6"); }));
    EXPECT_THAT(bytes, testing::ElementsAre(4, 5, 6));
    EXPECT_REFUSED(Ask([&] { return parser->GetI2CCmdFromString(bytes, "7,x,8"); }), "");
    EXPECT_THAT(bytes, testing::ElementsAre(4, 5, 6, 7));
}
