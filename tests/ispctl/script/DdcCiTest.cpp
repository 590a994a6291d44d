#include "script/DdcCi.h"

#include <gtest/gtest.h>

namespace {

using ispctl::DdcRequest;
using Bytes = std::vector<std::uint8_t>;

struct MessageRow {
    DdcRequest request;
    Bytes message;
};

// VESA DDC/CI 1.1: source, 0x80 + length, request, checksum over these and the address 0x6E.
TEST(DdcMessages, Requests_have_length_and_checksum_of_standard) {
    const MessageRow rows[] = {
        {{DdcRequest::Kind::Get, 0x10}, {0x51, 0x82, 0x01, 0x10, 0xAC}},
        {{DdcRequest::Kind::Get, 0x12}, {0x51, 0x82, 0x01, 0x12, 0xAE}},
        {{DdcRequest::Kind::Set, 0x10, 50}, {0x51, 0x84, 0x03, 0x10, 0x00, 0x32, 0x9A}},
        {{DdcRequest::Kind::Set, 0x60, 0x0F11}, {0x51, 0x84, 0x03, 0x60, 0x0F, 0x11, 0xC6}},
    };
    EXPECT_EQ(ispctl::kDdcSlave, 0x6E);
    for (const MessageRow &row : rows) {
        EXPECT_EQ(ispctl::DdcMessage(row.request), row.message);
    }
}

TEST(DdcMessages, Answer_is_read_as_current_and_maximum) {
    // 0x50 ^ 0x6E ^ 0x88 ^ 0x02 ^ 0x10 ^ 0x01 ^ 0x2C ^ 0x00 ^ 0x4B
    const Bytes reply{0x6E, 0x88, 0x02, 0x00, 0x10, 0x00, 0x01, 0x2C, 0x00, 0x4B, 0xC2};
    std::string error;
    const auto feature = ispctl::ReadDdcReply(reply, 0x10, error);
    ASSERT_TRUE(feature.has_value()) << error;
    EXPECT_EQ(feature->maximum, 300);
    EXPECT_EQ(feature->current, 75);
}

struct ReplyRow {
    Bytes reply;
    const char *error;
};

TEST(DdcMessages, Answers_that_are_none_are_told_apart) {
    const ReplyRow rows[] = {
        {{}, "the display sends no DDC/CI answer"},
        {Bytes(11, 0xFF), "the display sends no DDC/CI answer"},
        {{0x6E, 0x80, 0xBE, 0, 0, 0, 0, 0, 0, 0, 0},
         "the display is not ready: it sends an empty answer"},
        {{0x6E, 0x80, 0xBF, 0, 0, 0, 0, 0, 0, 0, 0},
         "the answer of the display has a wrong checksum"},
        {{0x6E, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "the answer of the display has a wrong checksum"},
        {{0x6E, 0x88, 0x02, 0x00, 0x10, 0x00, 0x00, 0x64, 0x00, 0x4B, 0x8A},
         "the answer of the display has a wrong checksum"},
        {{0x6E, 0x88, 0x02, 0x00, 0x12, 0x00, 0x00, 0x64, 0x00, 0x4B, 0x89},
         "the answer of the display is to another request"},
        {{0x6E, 0x88, 0x02, 0x01, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00, 0xA5},
         "the display does not support the VCP feature 0x10"},
    };
    for (const ReplyRow &row : rows) {
        std::string error;
        EXPECT_EQ(ispctl::ReadDdcReply(row.reply, 0x10, error), std::nullopt);
        EXPECT_EQ(error, row.error);
    }
}

} // namespace
