// What the ISP plug-in of the virtual scaler says, word for word.

#include <filesystem>

#include <gmock/gmock.h>

#include "FileSizeLimit.h"
#include "VirtualPlugin.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

constexpr std::size_t kBank = 65536;
const std::wstring kOtherDevice =
    L" Another device can be chosen with SCALER_ISP_VIRTUAL_DEVICE.\n";

std::wstring Wide(const std::string &text) {
    return {text.begin(), text.end()};
}

class VirtualMessages : public testing::Test {
  protected:
    /// The only message of a call that fails.
    std::wstring Failure(const char *function, int code) {
        EXPECT_EQ(isp.Run(function, command), code);
        EXPECT_EQ(isp.messages.size(), 1U);
        return isp.messages.empty() ? L"" : isp.messages.front();
    }
    std::wstring Path(const std::string &name) const {
        return Wide(isp.folder.Path(name));
    }
    void UseFirmware(std::uint32_t bank = 0, std::uint32_t fileBank = 0) {
        command.Banks(bank, isp.folder.Write("a.bin", Firmware(kBank)), 1, fileBank);
    }

    VirtualIsp isp;
    Command command;
};

TEST_F(VirtualMessages, New_description_explains_every_key) {
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    EXPECT_EQ(isp.folder.Read("device/device.ini"),
              "# The virtual scaler. One key a line; numbers are decimal or begin with 0x.\n"
              "\n# What getscalertype and --infotype hpscaler report.\n"
              "scaler_type = VIRTUAL-1\n"
              "\n# What --infotype hpfwname reports.\n"
              "firmware_name = Virtual firmware\n"
              "\n# What --infotype hpmodelname reports.\n"
              "model = Virtual monitor\n"
              "\n# What --infotype hphwcid reports.\n"
              "hardware_id = VHW-0001\n"
              "\n# Version of the running firmware while the version area of the flash is erased.\n"
              "version = 1.00\n"
              "\n# Where a firmware keeps its version, in flash and in its file: text, ended by "
              "0x00 or 0xFF.\n"
              "version_address = 0xFFE0\n"
              "version_length = 16\n"
              "\n# Where the verify key of the next key generation lies, at most 1220 bytes: PEM, "
              "or the 65 bytes\n"
              "# of an uncompressed P-256 point.\n"
              "key_address = 0xFF0000\n"
              "key_length = 1220\n"
              "\n# ispcopy programs each bank a second time, this many banks higher.\n"
              "copy_bank = 128\n"
              "\n# Banks of 64 KiB in eeprom.bin, and where its version lies.\n"
              "eeprom_banks = 1\n"
              "eeprom_version_address = 0xFFE0\n"
              "eeprom_version_length = 16\n");
}

TEST_F(VirtualMessages, Default_description_can_be_read_again) {
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Scaler type: VIRTUAL-1\n"));
}

TEST_F(VirtualMessages, Modes_are_reported) {
    ASSERT_EQ(isp.Run("EnterISPModeExport", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"The scaler is in ISP mode\n"));
    ASSERT_EQ(isp.Run("ResetMCUExport", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"The MCU is reset; the scaler is in normal mode\n"));
}

TEST_F(VirtualMessages, Programmed_banks_are_reported_with_their_source) {
    UseFirmware(2);
    command->enumActionType = ENUM_ACTION_ISPCOPY;
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    const std::wstring source = Path("a.bin") + L", bank 0";
    EXPECT_THAT(isp.messages,
                ElementsAre(L"Bank 2: erased, written, verified (" + source + L")\n",
                            L"Bank 130: erased, written, verified (" + source + L", copy)\n",
                            L"Banks programmed: 2 of 2\n"));
}

TEST_F(VirtualMessages, Banks_with_user_flag_are_reported) {
    UseFirmware();
    command->enumActionType = ENUM_ACTION_ISPUSER;
    command->stFlagSetting.ulFlagAddr = kBank - 1;
    command->stFlagSetting.ulFlagCount = 2;
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Bank 0: erased, written, verified (" + Path("a.bin") +
                                              L", bank 0 and user flag)\n",
                                          L"Bank 1: erased, written, verified (user flag)\n",
                                          L"Banks programmed: 2 of 2\n"));
}

TEST_F(VirtualMessages, Factory_programming_says_that_flash_is_erased) {
    UseFirmware();
    command->enumActionType = ENUM_ACTION_FACTORYISP;
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.messages.front(), L"The complete flash is erased\n");
}

TEST_F(VirtualMessages, Unusable_maps_and_files_are_named) {
    UseFirmware(256);
    EXPECT_EQ(Failure("IspFlash", 0x5A04), L"Bank 256 lies outside: there are 256 banks\n");
    command->stMapFw.ulFwCount = 513;
    EXPECT_EQ(Failure("IspFlash", 0x5A0F), L"The bank map holds 513 banks, more than 512\n");
    command->stMapFw.ulFwCount = 0;
    UseFirmware(0, 1);
    EXPECT_EQ(Failure("IspFlash", 0x5A06),
              L"The firmware file ends before its bank 1: " + Path("a.bin") + L"\n");
    command->stMapFw.ulFwCount = 0;
    command.Banks(0, isp.folder.Path("none.bin"), 1);
    EXPECT_EQ(Failure("IspFlash", 0x5A05), L"The firmware file cannot be read: " +
                                               Path("none.bin") + L": No such file or directory\n");
}

TEST_F(VirtualMessages, Power_loss_is_reported) {
    isp.SetFaults("power-loss 0\n");
    UseFirmware();
    EXPECT_EQ(Failure("IspFlash", 0x5A09),
              L"Bank 0: the power is lost, as faults.txt asks for; half of the bank is written\n");
}

TEST_F(VirtualMessages, Eeprom_reports_banks_and_refusals) {
    command->enumEdpIspMode = 2;
    EXPECT_EQ(Failure("IspEeprom", 0x5A0A), L"The EEPROM holds no version\n");
    command->enumEdpIspMode = 3;
    EXPECT_EQ(Failure("IspEeprom", 0x5A0C),
              L"EEPROM mode 3 is unknown: there are 1 (isp) and 2 (readver)\n");
    command->enumEdpIspMode = 1;
    EXPECT_EQ(Failure("IspEeprom", 0x5A0E),
              L"There is nothing to program: the bank map is empty\n");
    UseFirmware();
    ASSERT_EQ(isp.Run("IspEeprom", command), 0);
    EXPECT_EQ(isp.messages.back(), L"EEPROM banks programmed: 1\n");
    EXPECT_THAT(isp.progress, ElementsAre(0, 33, 66, 99, 100));
}

TEST_F(VirtualMessages, Dump_reports_range_and_failures) {
    isp.Dump(0x10, 0x20);
    EXPECT_THAT(isp.messages,
                ElementsAre(L"0x20 bytes from 0x10 written to " + Path("dump.bin") + L"\n"));
    command->stDumpFlash.ulDumpLen = 2;
    const std::wstring full = L"/dev/full";
    std::copy(full.begin(), full.end(), command->stDumpFlash.wszDumpFile);
    EXPECT_THAT(Failure("DumpFlash", 0x5A0D),
                StartsWith(L"The dump file cannot be written: /dev/full: "));
    command->stDumpFlash.ulDumpAddr = 0xFFFFFF;
    EXPECT_EQ(Failure("DumpFlash", 0x5A04),
              L"Outside the flash: 0x2 bytes at 0xFFFFFF, but it ends at 0x1000000\n");
}

TEST_F(VirtualMessages, Key_in_flash_is_reported_or_missed) {
    const auto getKey = isp.plugin.Get<decltype(GetKeyFromFlash)>("GetKeyFromFlash");
    unsigned char key[1220] = {};
    EXPECT_EQ(getKey(command.Get(), key), 0x5A0B);
    EXPECT_EQ(getKey(command.Get(), nullptr), 0x5A0F);
    command.Banks(255, isp.folder.Write("key.bin", "a key"), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(getKey(command.Get(), key), 0);
    EXPECT_EQ(isp.messages.back(), L"Key read from the flash: 5 bytes\n");
}

TEST_F(VirtualMessages, Missing_key_or_buffer_is_named) {
    const auto getKey = isp.plugin.Get<decltype(GetKeyFromFlash)>("GetKeyFromFlash");
    unsigned char key[1220] = {};
    getKey(command.Get(), key);
    getKey(command.Get(), nullptr);
    EXPECT_THAT(isp.messages, ElementsAre(L"There is no key in the flash at 0xFF0000\n",
                                          L"GetKeyFromFlash: no buffer\n"));
}

TEST_F(VirtualMessages, Unknown_information_is_named) {
    command->enumUserDefinedInfoType = 5;
    EXPECT_EQ(Failure("GetUserDefinedInfoFromDDCCI", 0x5A0C),
              L"Information 5 is unknown: there are 1 to 4\n");
}

TEST_F(VirtualMessages, Device_directory_that_cannot_be_made_is_named) {
    const EnvGuard nowhere("SCALER_ISP_VIRTUAL_DEVICE", isp.folder.Write("file", "") + "/device");
    EXPECT_EQ(Failure("GetScalerType", 0x5A01), L"The device's directory cannot be made: " +
                                                    Path("file/device/") + L": Not a directory." +
                                                    kOtherDevice);
}

TEST_F(VirtualMessages, Flash_file_that_is_a_directory_is_named) {
    isp.folder.Write("device/flash.bin/in-the-way", "");
    EXPECT_EQ(Failure("GetScalerType", 0x5A01), L"The flash file cannot be opened: " +
                                                    Path("device/flash.bin") +
                                                    L": Is a directory." + kOtherDevice);
}

TEST_F(VirtualMessages, Faults_file_that_is_a_directory_is_named) {
    isp.folder.Write("device/faults.txt/in-the-way", "");
    EXPECT_EQ(Failure("GetScalerType", 0x5A03),
              L"faults.txt cannot be read: " + Path("device/faults.txt") + L": Is a directory\n");
}

TEST_F(VirtualMessages, Description_that_cannot_be_written_is_named) {
    const FileSizeLimit limit(0);
    ASSERT_EQ(isp.Run("GetScalerType", command), 0x5A01);
    EXPECT_THAT(isp.messages.back(), StartsWith(L"The device's description cannot be written: "));
    EXPECT_THAT(isp.messages.back(), EndsWith(L": File too large." + kOtherDevice));
}

TEST_F(VirtualMessages, Journal_that_cannot_be_written_is_named_and_call_succeeds) {
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    std::filesystem::remove(isp.folder.Path("device/journal.txt"));
    isp.folder.Write("device/journal.txt/in-the-way", "");
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    EXPECT_THAT(isp.messages,
                ElementsAre(L"The journal cannot be written: " + Path("device/journal.txt") + L"\n",
                            L"Scaler type: VIRTUAL-1\n"));
}

} // namespace
