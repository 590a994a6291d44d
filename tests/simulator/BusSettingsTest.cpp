// The settings of the virtual bus: under which names they are stored, and what they are at first.

#include "VirtualBusFixture.h"

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
    };
    for (const Row &row : rows) {
        EXPECT_NE(row.call(comm), 0U);
        EXPECT_THAT(Journal(), HasSubstr(row.reason));
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
