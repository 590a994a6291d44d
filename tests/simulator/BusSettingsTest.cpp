// The settings of the virtual bus: under which names they are stored, and what they are at first.

#include "VirtualBusFixture.h"

#include "FileSizeLimit.h"

namespace {

using testing::HasSubstr;

constexpr const char *kNewState = "# The virtual bus. Remove this file and its registers are new.\n"
                                  "comm_id = 0x0\n"
                                  "debug_mode = 0x0\n"
                                  "debug_port = 0x0\n"
                                  "debug_port_mode = 0x0\n"
                                  "debug_port_over_aux = 0x0\n"
                                  "debug_slave = 0x6A\n"
                                  "edid_address = 0x0\n"
                                  "flash_config = 0x0\n"
                                  "ftdi_get_ack = 0x1\n"
                                  "i2c_speed = 0x64\n"
                                  "isp_continuous_slave = 0x94\n"
                                  "isp_slave = 0x94\n"
                                  "master_speed = 0x0\n"
                                  "register_address = 0x0\n"
                                  "removed = 0x0\n"
                                  "scaler_stopped = 0x0\n"
                                  "smbus_data_type = 0x0\n"
                                  "sniffer_started = 0x0\n"
                                  "special_comm_type = 0x0\n"
                                  "usb_mode = 0x0\n"
                                  "vcp_blue_gain = 0x32\n"
                                  "vcp_colour_preset = 0x5\n"
                                  "vcp_contrast = 0x32\n"
                                  "vcp_green_gain = 0x32\n"
                                  "vcp_input_source = 0x11\n"
                                  "vcp_luminance = 0x4B\n"
                                  "vcp_power_mode = 0x1\n"
                                  "vcp_red_gain = 0x32\n"
                                  "vcp_version = 0x202\n"
                                  "vcp_volume = 0x1E\n"
                                  "waiting_0 = 0x0\n"
                                  "waiting_1 = 0x0\n";

TEST_F(VirtualBus, New_device_has_every_setting_with_default) {
    EXPECT_EQ(comm.WriteReg(0x21, 0x5A), 0U);
    EXPECT_EQ(
        m_folder.Read("device/registers.txt"),
        kNewState +
            std::string("bytes reg 0x0020: 00 5A 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"));
}

TEST_F(VirtualBus, Setters_store_under_names_of_file) {
    struct Row {
        unsigned int (*set)(CNxComm &);
        const char *lines;
    };
    const Row rows[] = {
        {[](CNxComm &c) { return c.SetCommByID(STRUCT_ENUM_COMM_ID(3)); }, "\ncomm_id = 0x3\n"},
        {[](CNxComm &c) { return c.SetSpecialCommType(STRUCT_ENUM_SPECIAL_COMM_TYPE(3)); },
         "\nspecial_comm_type = 0x3\n"},
        {[](CNxComm &c) { return c.SetDebugSlave(0x30); }, "\ndebug_slave = 0x30\n"},
        {[](CNxComm &c) { return c.SetIspSlave(0x32); }, "\nisp_slave = 0x32\n"},
        {[](CNxComm &c) { return c.SetIspContinuousSlave(0x34); },
         "\nisp_continuous_slave = 0x34\n"},
        {[](CNxComm &c) { return c.SetDebugMode(STRUCT_ENUM_DEBUG_TYPE(3)); },
         "\ndebug_mode = 0x3\n"},
        {[](CNxComm &c) { return c.SetI2CSpeed(400); }, "\ni2c_speed = 0x190\n"},
        {[](CNxComm &c) {
             return c.SetWaitingMode({{5, 6}});
         },
         "\nwaiting_0 = 0x5\nwaiting_1 = 0x6\n"},
        {[](CNxComm &c) { return c.SetSMBUSDataType(7); }, "\nsmbus_data_type = 0x7\n"},
        {[](CNxComm &c) { return c.SetFTDIGetAck(0); }, "\nftdi_get_ack = 0x0\n"},
        {[](CNxComm &c) { return c.SetI2CoverAUXDebugPort(); }, "\ndebug_port_over_aux = 0x1\n"},
        {[](CNxComm &c) { return c.SetI2CDebugPort(8, 9); },
         "\ndebug_port = 0x8\ndebug_port_mode = 0x9\ndebug_port_over_aux = 0x0\n"},
        {[](CNxComm &c) { return c.I2CMasterInitial(STRUCT_ENUM_IIC_MASTER_SPEED(2)); },
         "\nmaster_speed = 0x2\n"},
        {[](CNxComm &c) { return c.SetNewVexmiraUSBMode(STRUCT_ENUM_NEW_VEXMIRAUSB_MODE(1)); },
         "\nusb_mode = 0x1\n"},
        {[](CNxComm &c) { return c.ConfigProgramFlash(4); }, "\nflash_config = 0x4\n"},
        {[](CNxComm &c) { return c.ScalerStop(); }, "\nscaler_stopped = 0x1\n"},
        {[](CNxComm &c) { return c.ScalerRun(); }, "\nscaler_stopped = 0x0\n"},
        {[](CNxComm &c) { return c.AuxSnifferStart(); }, "\nsniffer_started = 0x1\n"},
        {[](CNxComm &c) { return c.AutoDetectSlaveAddr(); }, "\ndebug_slave = 0x6A\n"},
        {[](CNxComm &c) { return c.RemoveDevice(); }, "\nremoved = 0x1\n"},
        {[](CNxComm &c) { return c.Initiallize(); }, "\nremoved = 0x0\n"},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(row.set(comm), 0U) << row.lines;
        EXPECT_THAT(m_folder.Read("device/registers.txt"), HasSubstr(row.lines));
    }
}

TEST_F(VirtualBus, Pages_have_64_bytes) {
    EXPECT_EQ(comm.GetI2CPageLength(), 64);
    EXPECT_EQ(comm.GetNativePageLength(), 64);
}

TEST_F(VirtualBus, Functions_without_effect_are_recorded) {
    wchar_t line[] = L"--isp \u00fc";
    EXPECT_EQ(comm.AdjustOption(), 0U);
    EXPECT_EQ(comm.ReleaseDev(), 0U);
    comm.SetCmdLine(line);
    EXPECT_EQ(Journal(), "AdjustOption -> 0x0\n"
                         "ReleaseDev -> 0x0\n"
                         "SetCmdLine commandLine=\"--isp \xC3\xBC\"\n");
}

TEST_F(VirtualBus, Failures_are_recorded_with_their_reason) {
    struct Row {
        unsigned int (*call)(CNxComm &);
        const char *reason;
    };
    const Row rows[] = {
        {[](CNxComm &c) { return c.SetCommByIndex(2); }, "0x5B04 \"There is no channel 2\""},
        {[](CNxComm &c) {
             int info = 0;
             return c.GetCommFile(reinterpret_cast<STRUCT_COMM_INFO *>(&info));
         },
         "0x5B05 \"The virtual bus has no channel file\""},
        {[](CNxComm &c) { return c.SelectUsbByIndex(1); },
         "0x5B04 \"There is one USB device, with the index 0\""},
        {[](CNxComm &c) {
             unsigned char data[1];
             return c.ReadAuxSniffer(1, data);
         },
         "0x5B06 \"AuxSnifferStart was not called\""},
        {[](CNxComm &c) {
             unsigned char id[] = "OTHER";
             return c.CheckSnifferBoardCustomerId(id, 5);
         },
         "0x5B04 \"The customer of the virtual board is VIRTUAL\""},
        {[](CNxComm &c) {
             unsigned char data[1];
             return c.ReadRegs(0, 1, data, STRUCT_ENUM_INC_TYPE(7));
         },
         "0x5B02 \"Address mode 0x7\""},
        {[](CNxComm &c) {
             unsigned char message[] = {0x82, 0x01, 0x10};
             return c.DDCCIWrite(0x6E, 0x51, 3, message);
         },
         "0x5B03 \"A DDC/CI message is 0x51, 0x80 + length, its bytes and a checksum\""},
        {[](CNxComm &c) {
             unsigned char message[] = {0x82, 0x01, 0x10, 0xAD};
             return c.DDCCIWrite(0x6E, 0x51, 4, message);
         },
         "0x5B03 \"The checksum of the DDC/CI message is 0xAD, expected 0xAC\""},
        {[](CNxComm &c) {
             c.RemoveDevice();
             return c.ScalerStop();
         },
         "0x5B07 \"The device was removed\""},
    };
    for (const Row &row : rows) {
        EXPECT_NE(row.call(comm), 0U);
        EXPECT_THAT(Journal(), HasSubstr(row.reason));
    }
}

TEST_F(VirtualBus, Device_files_that_are_directories_are_reported) {
    unsigned char byte = 0;
    m_folder.Write("device/edid.bin/in-the-way", "");
    EXPECT_EQ(comm.I2CRead(0xA0, 0, 1, &byte), 0x5B09U);
    EXPECT_THAT(Journal(), HasSubstr("0x5B09 \"edid.bin cannot be read: Is a directory\""));
    m_folder.Write("device/faults.txt/in-the-way", "");
    EXPECT_EQ(comm.I2CRead(0xA0, 0, 1, &byte), 0x5A03U);
    EXPECT_THAT(Journal(), HasSubstr("0x5A03 \"faults.txt cannot be read: "));
}

TEST_F(VirtualBus, Registers_file_that_is_a_directory_is_reported) {
    m_folder.Write("device/registers.txt/in-the-way", "");
    EXPECT_EQ(comm.WriteReg(1, 1), 0x5B09U);
    EXPECT_THAT(Journal(), HasSubstr("0x5B09 \"registers.txt cannot be opened: Is a directory\""));
}

TEST_F(VirtualBus, Full_disk_is_reported_and_keeps_registers) {
    comm.WriteReg(1, 1);
    {
        const FileSizeLimit limit(600);
        unsigned char data[64] = {1, 2, 3};
        EXPECT_EQ(comm.NativeWrite(1, 64, data), 0x5B09U);
    }
    EXPECT_THAT(Journal(), HasSubstr("0x5B09 \"registers.txt cannot be written: File too large\""));
    EXPECT_EQ(Reg(1), 1);
}

TEST_F(VirtualBus, Device_directory_that_cannot_be_made_fails_every_call) {
    const EnvGuard nowhere("SCALER_ISP_VIRTUAL_DEVICE", m_folder.Write("file", "") + "/device");
    EXPECT_EQ(comm.WriteReg(1, 1), 0x5A01U);
    EXPECT_EQ(comm.Initiallize(), 0x5A01U);
}

TEST_F(VirtualBus, Usb_packets_are_stored_by_request_value_and_index) {
    unsigned char data[] = {1, 2, 3};
    EXPECT_EQ(comm.SendUsbPacket(0x40, 1, 2, 3, data), 0U);
    EXPECT_THAT(m_folder.Read("device/registers.txt"),
                HasSubstr("box usb 0x40 0x0001 0x0002: 01 02 03\n"));
}

TEST_F(VirtualBus, Capabilities_list_commands_and_features) {
    std::string text;
    for (unsigned char offset = 0;; offset = static_cast<unsigned char>(offset + 32)) {
        unsigned char request[] = {0x83, 0xF3, 0x00, offset,
                                   static_cast<unsigned char>(0x6E ^ 0x51 ^ 0x83 ^ 0xF3 ^ offset)};
        ASSERT_EQ(comm.DDCCIWrite(0x6E, 0x51, 5, request), 0U);
        unsigned char answer[38] = {};
        ASSERT_EQ(comm.DDCCIRead(0x6E, 0x51, 38, answer), 0U);
        const int length = (answer[1] & 0x7F) - 3;
        ASSERT_GE(length, 0);
        if (length == 0) {
            break;
        }
        text.append(answer + 5, answer + 5 + length);
    }
    EXPECT_EQ(text,
              "(prot(monitor)type(lcd)model(VIRTUAL-1)cmds(01 02 03 0C E3 F3)vcp(04 10 12 14 16 18 "
              "1A 60 62 D6 DF)mccs_ver(2.2))");
}

TEST_F(VirtualBus, Removed_device_rejects_every_kind_of_transfer) {
    using Data = unsigned char *;
    unsigned int (*const calls[])(CNxComm &, Data) = {
        [](CNxComm &c, Data d) { return c.ReadReg(0, d); },
        [](CNxComm &c, Data) { return c.WriteReg(0, 1); },
        [](CNxComm &c, Data) {
            unsigned int word = 0;
            return c.Read32BitRegEx(0, &word);
        },
        [](CNxComm &c, Data) { return c.Write32BitRegEx(0, 1); },
        [](CNxComm &c, Data d) { return c.I2CWrite(0x6A, 0, 1, d); },
        [](CNxComm &c, Data d) { return c.NativeWrite(1, 1, d); },
        [](CNxComm &c, Data d) { return c.NativeRead(1, 1, d); },
        [](CNxComm &c, Data d) { return c.WriteFlashData(0, 1, d); },
        [](CNxComm &c, Data d) { return c.ReadFlashData(0, 1, d); },
        [](CNxComm &c, Data d) { return c.ReadAuxSniffer(1, d); },
        [](CNxComm &c, Data) { return c.AuxSnifferStart(); },
        [](CNxComm &c, Data) { return c.AutoDetectSlaveAddr(); },
        [](CNxComm &c, Data) { return c.ScalerStop(); },
        [](CNxComm &c, Data) { return c.ScalerRun(); },
        [](CNxComm &c, Data) { return c.EnterIspMode(0); },
    };
    comm.AuxSnifferStart();
    comm.RemoveDevice();
    for (std::size_t i = 0; i < std::size(calls); ++i) {
        unsigned char data[4] = {};
        EXPECT_EQ(calls[i](comm, data), 0x5B07U) << i;
    }
}

TEST_F(VirtualBus, Mode_that_cannot_be_written_is_reported) {
    comm.Initiallize();
    m_folder.Write("device/mode.txt/in-the-way", "");
    EXPECT_EQ(comm.EnterIspMode(0), 0x5A07U);
    EXPECT_THAT(
        Journal(),
        HasSubstr("EnterIspMode mode=0x0 -> 0x5A07 \"The device's mode cannot be written: "));
}

} // namespace
