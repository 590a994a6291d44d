#include "ParserFixture.h"

using ValueConverters = ParserTest;

namespace {

struct TextRow {
    const char *text;
    int result;
    const char *message;
    unsigned value;
};

} // namespace

TEST_F(ValueConverters, Signature_mode_outside_1_to_4_is_rejected) {
    const TextRow rows[] = {
        {"", 1, "", 77},
        {"1", 1, "", 1},
        {"4", 1, "", 4},
        {"0x3", 1, "", 3},
        {"02", 1, "", 2},
        {"0", 0, "Parameter out of range! --dsmode 0 \n", 77},
        {"5", 0, "Parameter out of range! --dsmode 5 \n", 77},
        {"-1", 0, "Parameter out of range! --dsmode -1 \n", 77},
        {"1a", 0, "Parameter illegal! --dsmode 1a \n", 77},
        {"sw", 0, "Parameter illegal! --dsmode sw \n", 77},
    };
    for (const TextRow &row : rows) {
        auto sw = static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(77);
        Answer answer = Ask([&] { return parser->GetDigitalSignatureSwMode(row.text, sw); });
        EXPECT_EQ(answer.result, row.result) << row.text;
        EXPECT_EQ(answer.out, row.message);
        EXPECT_EQ(static_cast<unsigned>(sw), row.value) << row.text;
        auto hw = static_cast<ENUM_CP_DIGITAL_SIGNATURE_HW_MODE>(77);
        answer = Ask([&] { return parser->GetDigitalSignatureHwMode(row.text, hw); });
        EXPECT_EQ(answer.result, row.result) << row.text;
        EXPECT_EQ(answer.out, row.message);
        EXPECT_EQ(static_cast<unsigned>(hw), row.value) << row.text;
    }
}

TEST_F(ValueConverters, GetCommID_accepts_1_to_19) {
    const TextRow rows[] = {
        {"", 1, "", 0},
        {"1", 1, "", 1},
        {"19", 1, "", 19},
        {"0x13", 1, "", 19},
        {"0", 0, "Parameter out of range! --comm 0\n", 0},
        {"20", 0, "Parameter out of range! --comm 20\n", 0},
        {"-3", 0, "Parameter out of range! --comm -3\n", 0},
        {"usb", 0, "Parameter illegal! --comm usb \n", 0},
        {"1 ", 0, "Parameter illegal! --comm 1  \n", 0},
    };
    for (const TextRow &row : rows) {
        auto id = static_cast<STRUCT_ENUM_COMM_ID>(77);
        const Answer answer = Ask([&] { return parser->GetCommID(row.text, id); });
        EXPECT_EQ(answer.result, row.result) << row.text;
        EXPECT_EQ(answer.out, row.message);
        EXPECT_EQ(static_cast<unsigned>(id), row.value) << row.text;
    }
}

TEST_F(ValueConverters, GetSlaveAddress_stores_state_and_address) {
    const struct {
        const char *text;
        int result;
        const char *message;
        int state;
        unsigned address;
    } rows[] = {
        {"", 1, "", -1, 0x94},
        {"0", 1, "", 1, 0x94},
        {"0x0", 1, "", 1, 0x94},
        {"1", 1, "", 0, 1},
        {"254", 1, "", 0, 254},
        {"0x6E", 1, "", 0, 0x6E},
        {"255", 0, "Parameter out of range! --slave 255 \n", 0, 0x94},
        {"-1", 0, "Parameter out of range! --slave -1 \n", 0, 0x94},
        {"x", 0, "Parameter illegal! --slave x \n", -1, 0x94},
    };
    for (const auto &row : rows) {
        int state = -1;
        unsigned char address = 0x94;
        const Answer answer =
            Ask([&] { return parser->GetSlaveAddress(row.text, state, address); });
        EXPECT_EQ(answer.result, row.result) << row.text;
        EXPECT_EQ(answer.out, row.message);
        EXPECT_EQ(state, row.state) << row.text;
        EXPECT_EQ(address, row.address) << row.text;
    }
}

class MergeInfo : public ParserTest {
  protected:
    MergeInfo() {
        setting.ulMergeDataCount = 9;
        std::memset(setting.ucMergeData, 0x55, sizeof setting.ucMergeData);
    }
    Answer Convert(const std::string &text) {
        return Ask([&] { return parser->GetMergeFwInfoCmd(text, setting); });
    }
    STRUCT_MERGE_FW_INFO_SETTING setting;
};

TEST_F(MergeInfo, Empty_string_changes_nothing) {
    EXPECT_ACCEPTED(Convert(""));
    EXPECT_EQ(setting.ulMergeDataCount, 9U);
    EXPECT_EQ(setting.ucMergeData[15], 0x55);
}

TEST_F(MergeInfo, Bytes_are_split_at_dots_and_remaining_ones_cleared) {
    EXPECT_ACCEPTED(Convert("1.0x2.010.255"));
    EXPECT_EQ(setting.ulMergeDataCount, 4U);
    EXPECT_THAT(setting.ucMergeData,
                testing::ElementsAre(1, 2, 8, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(MergeInfo, Doubled_and_trailing_dots_add_nothing) {
    EXPECT_ACCEPTED(Convert("1..2."));
    EXPECT_EQ(setting.ulMergeDataCount, 2U);
}

TEST_F(MergeInfo, Sixteen_bytes_are_accepted) {
    EXPECT_ACCEPTED(Convert("1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16"));
    EXPECT_EQ(setting.ulMergeDataCount, 16U);
    EXPECT_EQ(setting.ucMergeData[15], 16);
}

TEST_F(MergeInfo, Seventeen_bytes_are_rejected_with_count_and_list) {
    EXPECT_REFUSED(Convert("1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17"),
                   "Input Flag Length: 0x11 ,Max Flag Count: 0x10"
                   "Parameter illegal! --MergeFw --write "
                   "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16.17 \n");
    EXPECT_EQ(setting.ucMergeData[15], 16);
}

TEST_F(MergeInfo, Invalid_byte_prints_list_and_keeps_earlier_bytes) {
    for (const char *bad : {"1.256.3", "1.-1", "1.x", "1. ", "1.2 "}) {
        setting.ulMergeDataCount = 9;
        EXPECT_REFUSED(Convert(bad),
                       std::string("Parameter illegal! --MergeFw --write ") + bad + " \n");
        EXPECT_EQ(setting.ulMergeDataCount, 1U) << bad;
        EXPECT_EQ(setting.ucMergeData[0], 1);
        EXPECT_EQ(setting.ucMergeData[1], 0);
    }
}
