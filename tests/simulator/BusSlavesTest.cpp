// The I2C slaves of the virtual bus: EDID, DDC/CI and the scaler.

#include "VirtualBusFixture.h"

#include <numeric>

namespace {

Octets Part(const Octets &bytes, std::size_t first, std::size_t count) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(first),
            bytes.begin() + static_cast<std::ptrdiff_t>(first + count)};
}

class VirtualSlaves : public VirtualBus {
  protected:
    /// The answer to a DDC/CI message.
    Octets Ask(Octets message, unsigned char length) {
        EXPECT_EQ(
            comm.DDCCIWrite(0x6E, 0x51, static_cast<unsigned char>(message.size()), message.data()),
            0U);
        Octets answer(length);
        EXPECT_EQ(comm.DDCCIRead(0x6E, 0x51, length, answer.data()), 0U);
        return answer;
    }
};

TEST_F(VirtualSlaves, New_device_has_valid_EDID) {
    const Octets edid = Read(0xA0, 0, 256);
    EXPECT_EQ(Part(edid, 0, 8), (Octets{0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00}));
    EXPECT_EQ(Part(edid, 8, 2), (Octets{0x6B, 0x5A})) << "three times Z";
    EXPECT_EQ(Part(edid, 18, 2), (Octets{1, 4}));
    EXPECT_EQ(Part(edid, 25, 10),
              (Octets{0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54}))
        << "the colours of sRGB";
    EXPECT_EQ(Part(edid, 54, 18), (Octets{0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                                          0x2C, 0x45, 0x00, 0x55, 0x50, 0x21, 0x00, 0x00, 0x1E}))
        << "1920x1080 at 60 Hz";
    const std::string text(edid.begin(), edid.end());
    EXPECT_EQ(text.substr(90, 18), std::string("\0\0\0\xFC\0VIRTUAL 1080P", 18));
    EXPECT_EQ(text.substr(108, 18), std::string("\0\0\0\xFF\0VIRTUAL-0001\n", 18));
    EXPECT_EQ(edid[126], 1);
    EXPECT_EQ(Part(edid, 128, 4), (Octets{0x02, 0x03, 25, 0xF1}));
    EXPECT_EQ(Part(edid, 128 + 25, 18),
              (Octets{0x01, 0x1D, 0x00, 0x72, 0x51, 0xD0, 0x1E, 0x20, 0x6E, 0x28, 0x55, 0x00, 0x55,
                      0x50, 0x21, 0x00, 0x00, 0x1E}))
        << "1280x720 at 60 Hz";
    EXPECT_EQ(std::accumulate(edid.begin(), edid.begin() + 128, 0U) % 256, 0U);
    EXPECT_EQ(std::accumulate(edid.begin() + 128, edid.end(), 0U) % 256, 0U);
}

TEST_F(VirtualSlaves, Data_blocks_of_EDID_end_at_offset_of_timings) {
    const Octets edid = Read(0xA0, 0x80, 128);
    std::size_t at = 4;
    while (at < edid[2]) {
        at += 1U + (edid[at] & 0x1FU);
    }
    EXPECT_EQ(at, edid[2]);
}

TEST_F(VirtualSlaves, Eeprom_write_wraps_at_256) {
    EXPECT_EQ(Write(0xA0, 0xFE, {1, 2, 3}), 0U);
    EXPECT_EQ(Read(0xA0, 0xFE, 4), (Octets{1, 2, 3, 0xFF}));
    const std::string file = m_folder.Read("device/edid.bin");
    EXPECT_EQ(file.size(), 256U);
    EXPECT_EQ(file.substr(254), "\x01\x02");
    EXPECT_EQ(file[0], 3);
}

TEST_F(VirtualSlaves, Current_read_continues_after_last_transfer) {
    Read(0xA0, 0x08, 1);
    Octets bytes(2);
    EXPECT_EQ(comm.I2CCurrentRead(0xA1, 2, bytes.data()), 0U);
    EXPECT_EQ(bytes, (Octets{0x5A, 0x01}));
    comm.WriteReg(0x31, 0x99);
    Read(0x6A, 0x30, 1);
    comm.I2CMasterCurrentRead(0x6A, 1, bytes.data());
    EXPECT_EQ(bytes[0], 0x99);
}

TEST_F(VirtualSlaves, Custom_EDID_is_read_by_segments) {
    std::string edid(384, '\0');
    edid[0] = 'a';
    edid[256 + 5] = 'b';
    m_folder.Write("device/edid.bin", edid);
    Octets bytes(2);
    EXPECT_EQ(comm.I2CReadSegment(0x60, 0, 0xA0, 0, 1, bytes.data()), 0U);
    EXPECT_EQ(bytes[0], 'a');
    EXPECT_EQ(comm.I2CReadSegment(0x60, 1, 0xA0, 5, 1, bytes.data()), 0U);
    EXPECT_EQ(bytes[0], 'b');
    EXPECT_EQ(comm.I2CReadSegment(0x60, 1, 0xA0, 0x80, 1, bytes.data()), 0U);
    EXPECT_EQ(bytes[0], 0xFF);
    EXPECT_EQ(comm.I2CReadSegment(0x60, 2, 0xA0, 0, 1, bytes.data()), 0x5B01U);
    EXPECT_EQ(comm.I2CReadSegment(0x62, 0, 0xA0, 0, 1, bytes.data()), 0x5B01U);
    bytes = {0x11, 0x22};
    EXPECT_EQ(comm.I2CWriteSegmentEx(0x60, 1, 0xA0, 5, 2, bytes.data(), INC_TYPE_1), 0U);
    EXPECT_EQ(m_folder.Read("device/edid.bin")[256 + 5], 0x22);
    EXPECT_EQ(Read(0xA0, 5, 1)[0], 0) << "without the pointer it is segment 0";
}

TEST_F(VirtualSlaves, Luminance_is_read_and_set_by_DDC_CI) {
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11),
              (Octets{0x6E, 0x88, 0x02, 0x00, 0x10, 0x00, 0x00, 0x64, 0x00, 0x4B, 0x8B}));
    EXPECT_EQ(Write(0x6E, 0x51, {0x84, 0x03, 0x10, 0x00, 0x32, 0x9A}), 0U);
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11),
              (Octets{0x6E, 0x88, 0x02, 0x00, 0x10, 0x00, 0x00, 0x64, 0x00, 0x32, 0xF2}));
}

TEST_F(VirtualSlaves, Read_only_feature_and_too_large_value_stay_unchanged) {
    Write(0x6E, 0x51, {0x84, 0x03, 0x10, 0x00, 0x65, 0xCD}); // luminance 101
    Write(0x6E, 0x51, {0x84, 0x03, 0xDF, 0x00, 0x01, 0x66}); // version
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11)[9], 0x4B);
    const Octets version = Ask({0x82, 0x01, 0xDF, 0x63}, 11);
    EXPECT_EQ(Part(version, 8, 2), (Octets{0x02, 0x02}));
}

TEST_F(VirtualSlaves, Factory_reset_restores_defaults) {
    Write(0x6E, 0x51, {0x84, 0x03, 0x10, 0x00, 0x32, 0x9A});
    Write(0x6E, 0x51, {0x84, 0x03, 0x04, 0x00, 0x01, 0xBD});
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11)[9], 0x4B);
}

TEST_F(VirtualSlaves, Unknown_feature_is_reported_as_unsupported) {
    EXPECT_EQ(Ask({0x82, 0x01, 0x52, 0xEE}, 11),
              (Octets{0x6E, 0x88, 0x02, 0x01, 0x52, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE7}));
}

TEST_F(VirtualSlaves, Read_without_request_returns_null_message) {
    EXPECT_EQ(Read(0x6F, 0x51, 4), (Octets{0x6E, 0x80, 0xBE, 0x00}));
}

TEST_F(VirtualSlaves, Capabilities_are_returned_in_parts_of_32_bytes) {
    const Octets answer = Ask({0x83, 0xF3, 0x00, 0x00, 0x4F}, 38);
    EXPECT_EQ(Part(answer, 0, 5), (Octets{0x6E, 0xA3, 0xE3, 0x00, 0x00}));
    EXPECT_EQ(std::string(answer.begin() + 5, answer.begin() + 37),
              "(prot(monitor)type(lcd)model(VIR");
    EXPECT_EQ(Part(Ask({0x83, 0xF3, 0x04, 0x00, 0x4B}, 6), 0, 5),
              (Octets{0x6E, 0x83, 0xE3, 0x04, 0x00}));
}

TEST_F(VirtualSlaves, Malformed_message_is_not_executed) {
    EXPECT_EQ(Write(0x6E, 0x51, {0x84, 0x03, 0x10, 0x00, 0x32, 0x9B}), 0x5B03U);
    EXPECT_EQ(Write(0x6E, 0x51, {0x84, 0x03, 0x10, 0x00, 0x32}), 0x5B03U);
    EXPECT_EQ(Write(0x6E, 0x50, {0x84, 0x03, 0x10, 0x00, 0x32, 0x9B}), 0x5B03U);
    EXPECT_EQ(Write(0x6E, 0x51, {}), 0x5B03U);
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11)[9], 0x4B);
}

TEST_F(VirtualSlaves, Configured_fault_gives_replies_wrong_checksum) {
    SetFaults("wrong-ddcci-checksum\n");
    EXPECT_EQ(Ask({0x82, 0x01, 0x10, 0xAC}, 11)[10], 0x74) << "0x8B with every bit turned";
}

TEST_F(VirtualSlaves, Scaler_acknowledges_debug_and_ISP_addresses) {
    EXPECT_EQ(Write(0x6A, 0x10, {0x01}), 0U);
    EXPECT_EQ(Read(0x94, 0x10, 1), Octets{0x01});
    EXPECT_EQ(comm.SetDebugSlave(0x7A), 0U);
    EXPECT_EQ(comm.GetDebugSlave(), 0x7A);
    EXPECT_EQ(Read(0x7A, 0x10, 1), Octets{0x01});
    unsigned char byte = 0;
    EXPECT_EQ(comm.I2CRead(0x6A, 0x10, 1, &byte), 0x5B01U);
    EXPECT_EQ(comm.AutoDetectSlaveAddr(), 0U);
    EXPECT_EQ(comm.GetDebugSlave(), 0x6A);
    unsigned char message[] = {0x10, 0x77};
    EXPECT_EQ(comm.I2CMasterCurrentWrite(0x6A, 2, message), 0U);
    EXPECT_EQ(Reg(0x10), 0x77);
    EXPECT_EQ(comm.I2CWordWrite(0x6A, 0x0410, 1, message), 0U);
    EXPECT_EQ(comm.ReadRegEx(0x0410, &byte), 0U);
    EXPECT_EQ(byte, 0x10);
}

TEST_F(VirtualSlaves, Configured_fault_makes_slave_silent) {
    SetFaults("nack 0xA1\n");
    unsigned char byte = 0;
    EXPECT_EQ(comm.I2CRead(0xA0, 0, 1, &byte), 0x5B01U);
    EXPECT_EQ(comm.I2CRead(0x6A, 0, 1, &byte), 0U);
    SetFaults("nack\n");
    EXPECT_EQ(comm.I2CRead(0x6A, 0, 1, &byte), 0x5A03U);
    SetFaults("busy reg 0x10 reads 1 value 2\n");
    EXPECT_EQ(comm.I2CRead(0x6A, 0, 1, &byte), 0x5A03U);
    SetFaults("refuse-open\n");
    EXPECT_EQ(comm.I2CRead(0x6A, 0, 1, &byte), 0x5A01U);
}

} // namespace
