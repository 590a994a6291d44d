// Every function of the virtual bus that moves bytes: which ones, and from where to where.

#include "VirtualBusFixture.h"

#include "VirtualPlugin.h"

namespace {

constexpr unsigned char kScaler = 0x6A;
constexpr auto kSame = INC_TYPE_1; // the address stays the same
constexpr auto kNext = INC_TYPE_0;

/// Registers of the scaler, also those that need 16 bits.
Octets Registers(CNxComm &comm, unsigned short addr) {
    Octets bytes(2, 0xEE);
    EXPECT_EQ(comm.ReadRegsEx(addr, 2, bytes.data(), kNext), 0U);
    return bytes;
}

struct TransferRow {
    const char *name;
    unsigned int (*call)(CNxComm &, unsigned char *);
    unsigned short addr; ///< where the bytes are
    Octets bytes;        ///< those there, or those that are read
};

TEST_F(VirtualBus, I2C_writes_store_bytes_at_sub_address) {
    const TransferRow rows[] = {
        {"I2CWrite",
         [](CNxComm &c, unsigned char *d) { return c.I2CWrite(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
        {"I2CWriteByte",
         [](CNxComm &c, unsigned char *d) { return c.I2CWriteByte(kScaler, 0x10, d[1]); },
         0x10,
         {2, 0}},
        {"I2CWordWrite",
         [](CNxComm &c, unsigned char *d) { return c.I2CWordWrite(kScaler, 0x0410, 2, d); },
         0x0410,
         {1, 2}},
        {"I2CWriteEx",
         [](CNxComm &c, unsigned char *d) { return c.I2CWriteEx(kScaler, 0x10, 2, d, kSame); },
         0x10,
         {2, 0}},
        {"I2CWordWriteEx",
         [](CNxComm &c, unsigned char *d) { return c.I2CWordWriteEx(kScaler, 0x410, 2, d, kSame); },
         0x0410,
         {2, 0}},
        {"I2CMasterWrite",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterWrite(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
        {"I2CMasterWriteByte",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterWriteByte(kScaler, 0x10, d[1]); },
         0x10,
         {2, 0}},
        {"I2CMasterWriteEx",
         [](CNxComm &c, unsigned char *d) {
             return c.I2CMasterWriteEx(kScaler, 0x10, 2, d, kSame);
         },
         0x10,
         {2, 0}},
        {"I2CMasterWordWrite",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterWordWrite(kScaler, 0x410, 2, d); },
         0x0410,
         {1, 2}},
        {"I2CMasterWordWriteEx",
         [](CNxComm &c, unsigned char *d) {
             return c.I2CMasterWordWriteEx(kScaler, 0x410, 2, d, kSame);
         },
         0x0410,
         {2, 0}},
        {"I2CMasterCurrentWriteEx, whose first byte is the sub-address",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterCurrentWriteEx(kScaler, 3, d); },
         0x01,
         {2, 3}},
        {"I2CMasterCurrentWrite of nothing",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterCurrentWrite(kScaler, 0, d); },
         0x00,
         {0, 0}},
        {"I2CSlaveWrite",
         [](CNxComm &c, unsigned char *d) { return c.I2CSlaveWrite(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
    };
    for (const TransferRow &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(comm.ResetFirmware(), 0U);
        unsigned char data[] = {1, 2, 3};
        EXPECT_EQ(row.call(comm, data), 0U);
        EXPECT_EQ(Registers(comm, row.addr), row.bytes);
    }
}

TEST_F(VirtualBus, I2C_reads_return_bytes_at_sub_address) {
    const TransferRow rows[] = {
        {"I2CWordRead",
         [](CNxComm &c, unsigned char *d) { return c.I2CWordRead(kScaler, 0x0410, 2, d); },
         0x0410,
         {1, 2}},
        {"I2CReadEx",
         [](CNxComm &c, unsigned char *d) { return c.I2CReadEx(kScaler, 0x10, 2, d, kSame); },
         0x10,
         {1, 1}},
        {"I2CWordReadEx",
         [](CNxComm &c, unsigned char *d) { return c.I2CWordReadEx(kScaler, 0x410, 2, d, kSame); },
         0x0410,
         {1, 1}},
        {"I2CMasterRead",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterRead(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
        {"I2CMasterReadEx",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterReadEx(kScaler, 0x10, 2, d, kSame); },
         0x10,
         {1, 1}},
        {"I2CMasterWordRead",
         [](CNxComm &c, unsigned char *d) { return c.I2CMasterWordRead(kScaler, 0x410, 2, d); },
         0x0410,
         {1, 2}},
        {"I2CMasterWordReadEx",
         [](CNxComm &c, unsigned char *d) {
             return c.I2CMasterWordReadEx(kScaler, 0x410, 2, d, kSame);
         },
         0x0410,
         {1, 1}},
        {"I2CSlaveRead",
         [](CNxComm &c, unsigned char *d) { return c.I2CSlaveRead(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
        {"I2CStretchRead",
         [](CNxComm &c, unsigned char *d) { return c.I2CStretchRead(kScaler, 0x10, 2, d); },
         0x10,
         {1, 2}},
    };
    for (const TransferRow &row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(comm.ResetFirmware(), 0U);
        unsigned char data[] = {1, 2};
        comm.WriteRegsEx(row.addr, 2, data, kNext);
        Octets read(2, 0xEE);
        EXPECT_EQ(row.call(comm, read.data()), 0U);
        EXPECT_EQ(read, row.bytes);
    }
}

TEST_F(VirtualBus, Current_reads_continue_where_last_transfer_ended) {
    unsigned char data[] = {1, 2, 3, 4, 5, 6};
    comm.WriteRegs(0x10, 6, data, kNext);
    Read(kScaler, 0x10, 1);
    unsigned char read[5] = {};
    EXPECT_EQ(comm.I2CCurrentRead(kScaler, 1, read), 0U);
    EXPECT_EQ(comm.I2CCurrentReadEx(kScaler, 1, read + 1), 0U);
    EXPECT_EQ(comm.I2CMasterCurrentRead(kScaler, 1, read + 2), 0U);
    EXPECT_EQ(comm.I2CMasterCurrentReadEx(kScaler, 1, read + 3), 0U);
    // The binding calls the plain function instead.
    const OpenLibrary library(VIRTUAL_COMM_FILE);
    const auto masterReadEx =
        library.Get<unsigned int(unsigned char, unsigned short, unsigned char *)>(
            "I2CMasterCurrentReadEx");
    EXPECT_EQ(masterReadEx(kScaler, 1, read + 4), 0U);
    EXPECT_EQ(Octets(read, read + 5), (Octets{2, 3, 4, 5, 6}));
}

TEST_F(VirtualBus, Segments_of_EDID_are_written_and_read_with_address_mode) {
    m_folder.Write("device/edid.bin", std::string(512, '\0'));
    unsigned char data[] = {1, 2};
    EXPECT_EQ(comm.I2CWriteSegment(0x60, 1, 0xA0, 0x10, 2, data), 0U);
    EXPECT_EQ(m_folder.Read("device/edid.bin").substr(256 + 0x0F, 4), std::string("\0\1\2\0", 4));
    unsigned char read[2] = {};
    EXPECT_EQ(comm.I2CReadSegmentEx(0x60, 1, 0xA0, 0x10, 2, read, kSame), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 1}));
    EXPECT_EQ(comm.I2CWriteSegment(0x60, 1, kScaler, 0, 2, data), 0x5B01U);
    EXPECT_EQ(comm.I2CWrite(0x60, 0, 1, data), 0U) << "the pointer alone";
    EXPECT_EQ(comm.I2CRead(0x60, 0, 1, read), 0x5B01U) << "it can only be written";
}

TEST_F(VirtualBus, Registers_of_16_bits_are_written_with_address_mode_and_masks) {
    unsigned char data[] = {1, 2};
    EXPECT_EQ(comm.WriteRegsEx(0x0410, 2, data, kNext), 0U);
    EXPECT_EQ(Registers(comm, 0x0410), (Octets{1, 2}));
    EXPECT_EQ(comm.WriteRegsEx(0x0420, 2, data, kSame), 0U);
    EXPECT_EQ(Registers(comm, 0x0420), (Octets{2, 0}));
    EXPECT_EQ(comm.WriteRegEx(0x0430, 0xC3), 0U);
    EXPECT_EQ(comm.WriteRegBitEx(0x0430, 0xF0, 0x05), 0U);
    EXPECT_EQ(Registers(comm, 0x0430), (Octets{0xC5, 0}));
}

TEST_F(VirtualBus, Continuous_MCU_registers_are_first_256_of_65536) {
    unsigned char data[] = {1, 2};
    unsigned char read[2] = {};
    EXPECT_EQ(comm.WriteMcuRegs(0x0110, 2, data, kNext), 0U);
    EXPECT_EQ(comm.ReadMcuRegs(0x0110, 2, read, kNext), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 2}));
    EXPECT_EQ(comm.ReadMcuRegs(0x0110, 2, read, kSame), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 1}));
    EXPECT_EQ(comm.ReadContinuousMcuReg(0x10, 2, read, kNext), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{0, 0}));
    EXPECT_EQ(comm.WriteContinuousMcuReg(0xFF, 2, data, kNext), 0U);
    EXPECT_EQ(comm.ReadMcuRegs(0x00FF, 2, read, kNext), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 0}));
    EXPECT_EQ(comm.ReadContinuousMcuReg(0xFF, 2, read, kNext), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 2})) << "8-bit addresses wrap to register 0";
}

TEST_F(VirtualBus, System_devices_have_registers_of_16_bits) {
    unsigned char data[] = {1, 2};
    unsigned char read[2] = {};
    const auto command = STRUCT_ENUM_SYS_DEVICE_CMD_TYPE(0);
    EXPECT_EQ(comm.WriteWordSysDevice(1, 0x0110, 2, data, command), 0U);
    EXPECT_EQ(comm.ReadWordSysDevice(1, 0x0110, 2, read, command), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{1, 2}));
    EXPECT_EQ(comm.ReadSysDevice(1, 0x10, 2, read, command), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{0, 0}));
}

TEST_F(VirtualBus, Words_are_moved_with_address_mode) {
    using Words = std::vector<unsigned int>;
    unsigned int data[] = {0x01020304, 0xA0B0C0D0};
    Words read(2);
    EXPECT_EQ(comm.Write32BitRegsEx(0x100, 2, data, kSame), 0U);
    EXPECT_EQ(comm.Read32BitRegsEx(0x100, 2, read.data(), kNext), 0U);
    EXPECT_EQ(read, (Words{0xA0B0C0D0, 0}));
    EXPECT_EQ(comm.Read32BitRegsEx(0x100, 2, read.data(), kSame), 0U);
    EXPECT_EQ(read, (Words{0xA0B0C0D0, 0xA0B0C0D0}));
    EXPECT_EQ(comm.Read32BitRegsEx(0x100, 2, read.data(), STRUCT_ENUM_INC_TYPE(2)), 0x5B02U);
    EXPECT_EQ(comm.WriteDDRRegsEx(0x200, 2, data, kNext), 0U);
    EXPECT_EQ(comm.ReadDDRRegEx(0x204, &read[0]), 0U);
    EXPECT_EQ(read[0], 0xA0B0C0D0U);
    const auto cpu = STRUCT_ENUM_CPU_TYPE(2);
    EXPECT_EQ(comm.WriteDDRCPURegsEx(0x200, 2, data, kNext, cpu), 0U);
    EXPECT_EQ(comm.ReadDDRCPURegsEx(0x200, 2, read.data(), kNext, cpu), 0U);
    EXPECT_EQ(read, (Words{0x01020304, 0xA0B0C0D0}));
    EXPECT_EQ(comm.ReadDDRCPURegsEx(0x200, 2, read.data(), kSame, cpu), 0U);
    EXPECT_EQ(read, (Words{0x01020304, 0x01020304}));
    const std::string state = m_folder.Read("device/registers.txt");
    EXPECT_THAT(state, testing::HasSubstr("bytes ddr2 0x0200: 04 03 02 01 D0 C0 B0 A0 00"));
    EXPECT_THAT(state, testing::HasSubstr("bytes reg32 0x0100: D0 C0 B0 A0 00"));
}

TEST_F(VirtualBus, Native_target_returns_what_was_sent_to_it) {
    unsigned char data[] = {1, 2};
    EXPECT_EQ(comm.NativeWrite(0x1F, 2, data), 0U);
    unsigned char read[3] = {9, 9, 9};
    EXPECT_EQ(comm.NativeRead(0x1F, 3, read), 0U);
    EXPECT_EQ(Octets(read, read + 3), (Octets{1, 2, 0}));
    EXPECT_EQ(comm.NativeRead(0x1E, 1, read), 0U);
    EXPECT_EQ(read[0], 0);
    EXPECT_THAT(m_folder.Read("device/registers.txt"),
                testing::HasSubstr("box native 0x1F: 01 02\n"));
}

} // namespace
