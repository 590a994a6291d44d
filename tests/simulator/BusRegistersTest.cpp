// Registers of all widths on the virtual bus, and what two bindings see of one device.

#include "VirtualBusFixture.h"

#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "scaler_isp/common/script/RegisterScript.h"
#include "scaler_isp/plugins/DeviceLibrary.h"
#include "support/CapturedOutput.h"

namespace {

using testing::HasSubstr;

TEST_F(VirtualBus, Register_is_0_at_first_and_keeps_written_value) {
    EXPECT_EQ(Reg(0x10), 0x00);
    EXPECT_EQ(comm.WriteReg(0x10, 0x5A), 0U);
    EXPECT_EQ(Reg(0x10), 0x5A);
    EXPECT_EQ(Reg(0x11), 0x00);
}

TEST_F(VirtualBus, Masked_write_clears_bits_and_then_sets_them) {
    comm.WriteReg(0x20, 0xC3);
    EXPECT_EQ(comm.WriteRegBit(0x20, 0xF0, 0x05), 0U);
    EXPECT_EQ(Reg(0x20), 0xC5);
    comm.WriteMcuReg(0x1234, 0xFF);
    comm.WriteMcuRegBit(0x1234, 0x0F, 0x30);
    unsigned char value = 0;
    comm.ReadMcuReg(0x1234, &value);
    EXPECT_EQ(value, 0x3F);
}

TEST_F(VirtualBus, First_256_registers_of_16_bits_are_those_of_8_bits) {
    comm.WriteRegEx(0x0033, 0x11);
    comm.WriteRegEx(0x0133, 0x22);
    EXPECT_EQ(Reg(0x33), 0x11);
    unsigned char value = 0;
    comm.ReadRegEx(0x0133, &value);
    EXPECT_EQ(value, 0x22);
}

TEST_F(VirtualBus, Address_mode_0_increments_and_wraps_and_mode_1_stays) {
    unsigned char data[] = {1, 2, 3};
    EXPECT_EQ(comm.WriteRegs(0xFE, 3, data, INC_TYPE_0), 0U);
    EXPECT_EQ(Reg(0xFE), 1);
    EXPECT_EQ(Reg(0xFF), 2);
    EXPECT_EQ(Reg(0x00), 3);
    EXPECT_EQ(comm.WriteRegs(0x40, 3, data, INC_TYPE_1), 0U);
    EXPECT_EQ(Reg(0x40), 3);
    EXPECT_EQ(Reg(0x41), 0);
    unsigned char read[3] = {};
    EXPECT_EQ(comm.ReadRegs(0x40, 3, read, INC_TYPE_1), 0U);
    EXPECT_EQ(Octets(read, read + 3), (Octets{3, 3, 3}));
    EXPECT_EQ(comm.ReadRegsEx(0xFFFF, 2, read, INC_TYPE_0), 0U);
    EXPECT_EQ(read[1], 3) << "16-bit addresses wrap to register 0";
    EXPECT_EQ(comm.ReadRegs(0x40, 3, read, STRUCT_ENUM_INC_TYPE(2)), 0x5B02U);
}

TEST_F(VirtualBus, Port_reads_register_selected_by_index) {
    EXPECT_EQ(comm.WritePortRegBit(0x60, 0x05, 0x00, 0xAB), 0U);
    EXPECT_EQ(Reg(0x60), 0x05);
    EXPECT_EQ(Reg(0x61), 0xAB);
    comm.WritePortRegBit(0x60, 0x06, 0xFF, 0x00);
    EXPECT_EQ(Reg(0x61), 0x00);
    comm.WritePortRegBit(0x60, 0x05, 0x0F, 0x40);
    EXPECT_EQ(Reg(0x61), 0x4B);
    comm.WritePortRegBitEx(0x0260, 0x0105, 0x00, 0x77);
    unsigned char value = 0;
    comm.ReadRegEx(0x0261, &value);
    EXPECT_EQ(value, 0x77);
}

TEST_F(VirtualBus, Registers_of_32_bits_are_little_endian) {
    EXPECT_EQ(comm.Write32BitRegEx(0xFFFF0000, 0x11223344), 0U);
    unsigned int word = 0;
    EXPECT_EQ(comm.Read32BitRegEx(0xFFFF0000, &word), 0U);
    EXPECT_EQ(word, 0x11223344U);
    unsigned char byte = 0;
    comm.Read32BitReg1Byte(0xFFFF0001, &byte);
    EXPECT_EQ(byte, 0x33);
    comm.Write32BitReg1Byte(0xFFFF0003, 0x99);
    comm.Read32BitRegEx(0xFFFF0000, &word);
    EXPECT_EQ(word, 0x99223344U);
    unsigned int words[] = {0xA1, 0xB2};
    comm.Write32BitRegsEx(0x100, 2, words, INC_TYPE_0);
    comm.Read32BitRegEx(0x104, &word);
    EXPECT_EQ(word, 0xB2U);
}

TEST_F(VirtualBus, Each_CPU_has_its_own_memory_and_CPU_0_uses_plain_calls) {
    comm.WriteDDRRegEx(0x80, 0xD0);
    comm.WriteDDRCPURegEx(0x80, 0xD1, STRUCT_ENUM_CPU_TYPE(1));
    unsigned int word = 0;
    comm.ReadDDRCPURegEx(0x80, &word, STRUCT_ENUM_CPU_TYPE(0));
    EXPECT_EQ(word, 0xD0U);
    comm.ReadDDRCPURegEx(0x80, &word, STRUCT_ENUM_CPU_TYPE(1));
    EXPECT_EQ(word, 0xD1U);
    unsigned int words[2] = {};
    comm.ReadDDRRegsEx(0x7C, 2, words, INC_TYPE_0);
    EXPECT_EQ(words[1], 0xD0U);
}

TEST_F(VirtualBus, System_devices_and_pwm2spi_have_separate_registers) {
    unsigned char data[] = {7, 8};
    const auto command = STRUCT_ENUM_SYS_DEVICE_CMD_TYPE(3);
    EXPECT_EQ(comm.WriteSysDevice(1, 0x10, 2, data, command), 0U);
    unsigned char read[2] = {};
    EXPECT_EQ(comm.ReadWordSysDevice(1, 0x0010, 2, read, command), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{7, 8}));
    comm.ReadSysDevice(2, 0x10, 2, read, command);
    EXPECT_EQ(Octets(read, read + 2), (Octets{0, 0}));
    EXPECT_EQ(comm.WritePWM2SPIReg(1, 0x10, 2, data), 0U);
    comm.ReadPWM2SPIReg(1, 0x11, 1, read);
    EXPECT_EQ(read[0], 8);
    unsigned short words[] = {0x1234, 0x5678};
    EXPECT_EQ(comm.WritePWM2SPIDev(1, 0xFF, 2, words), 0U);
    unsigned short word = 0;
    comm.ReadPWM2SPIDev(1, 0x00, 1, &word);
    EXPECT_EQ(word, 0x5678);
}

TEST_F(VirtualBus, Second_binding_uses_same_device) {
    comm.WriteReg(0x10, 0x77);
    comm.FreeCommDllFile();
    EXPECT_THAT(m_folder.Read("device/registers.txt"),
                HasSubstr("bytes reg 0x0010: 77 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00\n"));
    EXPECT_EQ(Load(comm), 1);
    EXPECT_EQ(Reg(0x10), 0x77);
}

TEST_F(VirtualBus, Two_processes_keep_writes_of_each_other) {
    constexpr int kWrites = 100;
    const pid_t other = fork();
    ASSERT_NE(other, -1);
    const int first = other == 0 ? kWrites : 0;
    for (int i = first; i < first + kWrites; ++i) {
        comm.WriteReg(static_cast<unsigned char>(i), 0x5A);
    }
    if (other == 0) {
        _exit(0);
    }
    int state = -1;
    ASSERT_EQ(waitpid(other, &state, 0), other);
    EXPECT_EQ(state, 0);
    for (int i = 0; i < 2 * kWrites; ++i) {
        EXPECT_EQ(Reg(static_cast<unsigned char>(i)), 0x5A) << i;
    }
}

TEST_F(VirtualBus, Registers_are_loaded_from_edited_file) {
    m_folder.Write("device/registers.txt",
                   "# mine\nbytes reg 0x12: 0A 0B\ni2c_speed = 400\nbox native 0x1: 55\n");
    EXPECT_EQ(Reg(0x13), 0x0B);
    EXPECT_EQ(comm.GetI2CSpeed(), 400);
    unsigned char read[2] = {0xEE, 0xEE};
    EXPECT_EQ(comm.NativeRead(1, 2, read), 0U);
    EXPECT_EQ(Octets(read, read + 2), (Octets{0x55, 0x00}));
}

TEST_F(VirtualBus, Unreadable_line_is_reported_and_file_is_left_unchanged) {
    for (const char *line : {"spee = 1", "bytes reg 0x10", "bytes reg x: 00", "bytes reg 0x10: 100",
                             "bytes rex 0x10: 00", "i2c_speed 4"}) {
        const std::string text = std::string("\n") + line + "\n";
        m_folder.Write("device/registers.txt", text);
        EXPECT_EQ(comm.WriteReg(1, 1), 0x5B08U) << line;
        EXPECT_EQ(m_folder.Read("device/registers.txt"), text);
        EXPECT_THAT(Journal(), HasSubstr(std::string("-> 0x5B08 \"registers.txt, line 2 cannot be "
                                                     "understood: ") +
                                         line + "\"\n"));
    }
}

TEST_F(VirtualBus, Device_library_uses_same_registers) {
    const std::string file = VIRTUAL_DEVICE_FILE;
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(nxdLoadDeviceDllFile(std::wstring(file.begin(), file.end()).data()), 1);
              }),
              "");
    EXPECT_EQ(nxdInitialDev(), 0U);
    unsigned char data[] = {0x42};
    EXPECT_EQ(nxdI2CWrite(0x6A, 0x10, 1, data), 0U);
    EXPECT_EQ(Reg(0x10), 0x42);
    EXPECT_EQ(nxdGetDeviceCount(), 1U);
    EXPECT_NE(nxdSendUsbPacket, nullptr);
    EXPECT_NE(nxdReceiveUsbPacket, nullptr);
    EXPECT_EQ(nxdReleaseDev(), 0U);
    nxdFreeDeviceDllFile();
}

TEST_F(VirtualBus, Register_script_runs_on_bus) {
    unsigned char script[] = {2,                                // stop
                              3,  0x10, 0x0F,                   // register 0x10
                              4,  0x10, 0xF0, 0x01,             // its bits
                              5,  0x10,                         // read
                              20, 0x12, 0x34, 0,    2, 0, 8, 9, // two registers of 16 bits
                              21, 0x12, 0x34, 0,    2, 0,       // read
                              9,  0xA0, 0x08,                   // a byte of the EDID
                              1};                               // run
    unsigned char out[4] = {};
    unsigned int count = 0;
    EXPECT_EQ(RunCommand(script, sizeof script, &comm, out, &count), 0);
    EXPECT_EQ(count, 4U);
    EXPECT_EQ(Octets(out, out + 4), (Octets{0x01, 8, 9, 0x6B}));
}

TEST_F(VirtualBus, Busy_register_becomes_ready_after_its_reads) {
    SetFaults("busy mcu 0xF4 value 0x80 reads 2\n");
    comm.WriteMcuReg(0xF4, 0x01);
    unsigned char poll[] = {13, 0xF4, 0x80, 0x00, 0, 3, 0, 0};
    EXPECT_EQ(RunCommand(poll, sizeof poll, &comm, nullptr, nullptr), 0);
    SetFaults("busy mcu 0xF4 value 0x80 reads 3\n");
    comm.Initiallize();
    EXPECT_EQ(RunCommand(poll, sizeof poll, &comm, nullptr, nullptr), 3);
    unsigned char value = 0;
    comm.ReadMcuReg(0xF4, &value);
    EXPECT_EQ(value, 0x01);
}

TEST_F(VirtualBus, Journal_records_arguments_and_status) {
    unsigned char data[] = {0x01, 0xAB};
    unsigned char value = 0;
    wchar_t path[] = L"/a \u00fc";
    comm.WriteReg(0x10, 0x5A);
    comm.ReadReg(0x10, &value);
    comm.WriteRegs(0x20, 2, data, INC_TYPE_1);
    comm.I2CWrite(0x12, 0, 2, data);
    comm.SetConfigFilePath(path);
    comm.GetDebugSlave();
    comm.GetDeviceCount();
    comm.ScalerRun();
    EXPECT_EQ(Journal(), "WriteReg addr=0x10 value=0x5A -> 0x0\n"
                         "ReadReg addr=0x10 value=0x5A -> 0x0\n"
                         "WriteRegs addr=0x20 length=0x2 data=[01 AB] inc=0x1 -> 0x0\n"
                         "I2CWrite slave=0x12 sub=0x0 length=0x2 -> 0x5B01 "
                         "\"No slave answers at 0x12\"\n"
                         "SetSettingFilePath path=\"/a \xC3\xBC\"\n"
                         "GetDebugSlave -> 0x6A\n"
                         "GetDeviceCount -> 0x1\n"
                         "ScalerRun -> 0x0\n");
}

TEST_F(VirtualBus, Journal_shows_first_32_bytes_of_data) {
    unsigned char data[33] = {};
    comm.ReadRegs(0, 33, data, INC_TYPE_0);
    std::string zeros;
    for (int i = 0; i < 32; ++i) {
        zeros += "00 ";
    }
    EXPECT_EQ(Journal(), "ReadRegs addr=0x0 length=0x21 data=[" + zeros + "..] inc=0x0 -> 0x0\n");
}

TEST_F(VirtualBus, Functions_without_status_record_failure_in_journal) {
    wchar_t name[256] = L"untouched";
    comm.GetCommName(name, 7);
    EXPECT_STREQ(name, L"untouched");
    SetFaults("refuse-open\n");
    EXPECT_EQ(comm.GetDebugSlave(), 0);
    EXPECT_EQ(Journal(),
              "GetCommName index=0x7 -> 0x5B04 \"There is no channel 7\"\n"
              "GetDebugSlave -> 0x5A01 \"The device refuses to open, as faults.txt asks for\"\n");
}

TEST_F(VirtualBus, File_of_the_device_that_is_a_pipe_fails_the_call) {
    unsigned char value = 0;
    ASSERT_EQ(comm.ReadReg(1, &value), 0U); // creates the device
    for (const char *name : {"registers.txt", "edid.bin"}) {
        SCOPED_TRACE(name);
        const std::string path = m_folder.Path("device/") + name;
        std::filesystem::remove(path);
        ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
        EXPECT_EQ(comm.I2CRead(0xA0, 0, 1, &value), 0x5B09U);
        EXPECT_THAT(Journal(), HasSubstr("it is not a regular file"));
        std::filesystem::remove(path);
    }
}

TEST_F(VirtualBus, Null_pointer_is_rejected_unless_length_is_0) {
    EXPECT_EQ(comm.ReadReg(1, nullptr), 0x5B02U);
    EXPECT_EQ(comm.I2CWrite(0xA0, 0, 1, nullptr), 0x5B02U);
    EXPECT_EQ(comm.I2CWrite(0xA0, 0, 0, nullptr), 0U);
    EXPECT_EQ(comm.GetCommFile(nullptr), 0x5B02U);
}

} // namespace
