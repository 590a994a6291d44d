// Channel, modes, flash, USB and the AUX sniffer of the virtual bus.

#include "VirtualBusFixture.h"

#include <cstring>
#include <cwchar>

#include "VirtualPlugin.h"

namespace {

TEST_F(VirtualBus, Bus_has_one_channel) {
    EXPECT_EQ(comm.Initiallize(), 0U);
    EXPECT_EQ(comm.GetCommCount(), 1);
    wchar_t name[256];
    comm.GetCommName(name, 0);
    EXPECT_STREQ(name, L"Virtual bus");
    wchar_t names[1][256];
    comm.GetAllCommName(names);
    EXPECT_STREQ(names[0], L"Virtual bus");
    EXPECT_EQ(comm.SetCommByIndex(0), 0U);
    EXPECT_EQ(comm.SetCommByIndex(1), 0x5B04U);
    EXPECT_EQ(comm.GetCommID(), 0U);
    EXPECT_EQ(comm.SetCommByID(STRUCT_ENUM_COMM_ID(6)), 0U);
    EXPECT_EQ(comm.GetCommID(), 6U);
    int info = 0;
    EXPECT_EQ(comm.GetCommFile(reinterpret_cast<STRUCT_COMM_INFO *>(&info)), 0x5B05U);
}

TEST_F(VirtualBus, Getters_return_values_that_were_set) {
    comm.SetIspSlave(0x12);
    comm.SetIspContinuousSlave(0x14);
    comm.SetDebugMode(STRUCT_ENUM_DEBUG_TYPE(3));
    comm.SetSpecialCommType(STRUCT_ENUM_SPECIAL_COMM_TYPE(4));
    EXPECT_EQ(comm.GetI2CSpeed(), 100);
    comm.SetI2CSpeed(400);
    comm.SetWaitingMode({{5, 0xFFFFFFFF}});
    comm.SetSMBUSDataType(7);
    EXPECT_EQ(comm.SetFTDIGetAck(0), 0U);
    EXPECT_EQ(comm.GetIspSlave(), 0x12);
    EXPECT_EQ(comm.GetIspContinuousSlave(), 0x14);
    EXPECT_EQ(comm.GetDebugMode(), 3U);
    EXPECT_EQ(comm.GetSpecialCommType(), 4U);
    EXPECT_EQ(comm.GetI2CSpeed(), 400);
    EXPECT_EQ(comm.GetWaitingMode().ulWords[0], 5U);
    EXPECT_EQ(comm.GetWaitingMode().ulWords[1], 0xFFFFFFFFU);
    EXPECT_EQ(comm.GetSMBUSDataType(), 7U);
    EXPECT_EQ(comm.GetFTDIGetAckStatus(), 0U);
    EXPECT_EQ(comm.SetAuxMode({{1, 2}}), 0U);
    EXPECT_EQ(comm.SetI2CDebugPort(1, 2), 0U);
    EXPECT_EQ(comm.SetI2CoverAUXDebugPort(), 0U);
    EXPECT_EQ(comm.I2CMasterInitial(STRUCT_ENUM_IIC_MASTER_SPEED(2)), 0U);
    EXPECT_NE(comm.GetDeviceHandler(), nullptr);
}

TEST_F(VirtualBus, Flash_is_shared_with_isp_plugin) {
    OpenLibrary isp(VIRTUAL_ISP_FILE);
    m_folder.Write("fw.bin", std::string(65536, 'f'));
    Command command;
    command->enumActionType = ENUM_ACTION_ISP;
    command.Banks(1, m_folder.Path("fw.bin"), 1);
    ASSERT_EQ(isp.Get<int(Setting *)>("IspFlash")(command.Get()), 0);
    unsigned char data[3] = {};
    EXPECT_EQ(comm.ReadFlashData(0xFFFF, 3, data), 0U);
    EXPECT_EQ(Octets(data, data + 3), (Octets{0xFF, 'f', 'f'}));
    unsigned char fresh[] = {1, 2};
    EXPECT_EQ(comm.WriteFlashData(0x10000, 2, fresh), 0U);
    EXPECT_EQ(comm.WriteFlashData(0x30000, 2, fresh), 0U);
    const std::string flash = m_folder.Read("device/flash.bin");
    EXPECT_EQ(flash.size(), 0x30002U);
    EXPECT_EQ(flash.substr(0x10000, 3), "\x01\x02"
                                        "f");
    EXPECT_EQ(flash.substr(0x2FFFF), "\xFF\x01\x02");
    EXPECT_EQ(comm.ReadFlashData(0xFFFFFF, 2, data), 0x5A04U);
}

TEST_F(VirtualBus, Modes_are_shared_with_isp_plugin) {
    EXPECT_EQ(comm.EnterIspMode(0), 0U);
    EXPECT_EQ(m_folder.Read("device/mode.txt"), "isp\n");
    EXPECT_EQ(comm.CompleteIspFlowInISPBoard(), 0U);
    EXPECT_EQ(m_folder.Read("device/mode.txt"), "normal\n");
    EXPECT_EQ(comm.AutoEnterIspMode(0), 0U);
    comm.WriteReg(1, 2);
    EXPECT_EQ(comm.ScalerStop(), 0U);
    EXPECT_EQ(comm.ResetFirmware(), 0U);
    EXPECT_EQ(m_folder.Read("device/mode.txt"), "normal\n");
    EXPECT_EQ(Reg(1), 0);
    EXPECT_THAT(m_folder.Read("device/registers.txt"), testing::HasSubstr("scaler_stopped = 0x0"));
}

TEST_F(VirtualBus, Removed_device_fails_calls_until_it_is_initialised) {
    EXPECT_EQ(comm.GetDeviceCount(), 1U);
    EXPECT_EQ(comm.RemoveDevice(), 0U);
    EXPECT_EQ(comm.GetDeviceCount(), 0U);
    unsigned char byte = 0;
    EXPECT_EQ(comm.ReadReg(0, &byte), 0x5B07U);
    EXPECT_EQ(comm.I2CRead(0xA0, 0, 1, &byte), 0x5B07U);
    EXPECT_EQ(comm.ReadFlashData(0, 1, &byte), 0x5B07U);
    EXPECT_EQ(comm.Initiallize(), 0U);
    EXPECT_EQ(comm.ReadReg(0, &byte), 0U);
}

TEST_F(VirtualBus, Usb_packets_are_received_with_values_they_were_sent_with) {
    wchar_t path[256];
    EXPECT_EQ(comm.GetUsbDevicePath(0, path), 0U);
    EXPECT_EQ(comm.SelectUsbByDevicePath(path), 0U);
    path[0] = L'x';
    EXPECT_EQ(comm.SelectUsbByDevicePath(path), 0x5B04U);
    EXPECT_EQ(comm.SelectUsbByIndex(1), 0x5B04U);
    EXPECT_EQ(comm.GetUsbDevicePath(1, path), 0x5B04U);
    EXPECT_EQ(path[0], L'x');
    unsigned char data[] = {1, 2, 3};
    EXPECT_EQ(comm.SendUsbPacket(0x40, 1, 2, 3, data), 0U);
    unsigned char read[4] = {9, 9, 9, 9};
    EXPECT_EQ(comm.ReceiveUsbPacket(0x40, 1, 2, 4, read), 0U);
    EXPECT_EQ(Octets(read, read + 4), (Octets{1, 2, 3, 0}));
    EXPECT_EQ(comm.ReceiveUsbPacket(0x40, 1, 3, 1, read), 0U);
    EXPECT_EQ(read[0], 0);
}

TEST_F(VirtualBus, Sniffer_must_be_started_and_captures_nothing) {
    unsigned char data[] = {1, 2};
    EXPECT_EQ(comm.ReadAuxSniffer(2, data), 0x5B06U);
    EXPECT_EQ(comm.AuxSnifferStart(), 0U);
    EXPECT_EQ(comm.ReadAuxSniffer(2, data), 0U);
    EXPECT_EQ(Octets(data, data + 2), (Octets{0, 0}));
    unsigned short first = 1;
    unsigned short second = 2;
    EXPECT_EQ(comm.GetAuxSnifferConfigPara(first, second), 0U);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 0);
    unsigned char id[] = "VIRTUAL";
    EXPECT_EQ(comm.CheckSnifferBoardCustomerId(id, 7), 0U);
    EXPECT_EQ(comm.CheckSnifferBoardCustomerId(id, 6), 0x5B04U);
    EXPECT_EQ(comm.NeedSetMcuDefault(), 0U);
}

} // namespace
