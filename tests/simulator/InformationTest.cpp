#include <algorithm>

#include <gmock/gmock.h>

#include "VirtualPlugin.h"
#include "support/CapturedOutput.h"

namespace {

using testing::ElementsAre;

constexpr std::size_t kBank = 65536;

/// A firmware of one bank with a version text at the default version area.
std::string FirmwareOfVersion(const std::string &version) {
    std::string text = Firmware(kBank);
    text.replace(0xFFE0, 16, version + std::string(16 - version.size(), '\0'));
    return text;
}

void Program(VirtualIsp &isp, const std::string &firmware, std::uint32_t bank = 0) {
    Command command;
    command.Banks(bank, isp.folder.Write("programmed.bin", firmware), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
}

TEST(VirtualVersion, Reg_and_ddcci_locations_report_version_of_firmware) {
    VirtualIsp isp;
    for (const std::uint32_t location : {0U, 1U, 2U, 5U, 8U}) {
        Command command;
        command->enumVersionLocationType = ENUM_VERSION_LOCATION_TYPE(location);
        ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
        EXPECT_THAT(isp.messages, ElementsAre(L"Version: 1.00\n")) << "erased, from device.ini";
    }
    Program(isp, FirmwareOfVersion("2.31"));
    Command command;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: 2.31\n"));
}

TEST(VirtualVersion, Flash_location_reads_major_and_sub_in_given_mode) {
    VirtualIsp isp;
    std::string firmware = Firmware(kBank);
    firmware.replace(0x1000, 4,
                     "\x01\x0C"
                     "AB");
    Program(isp, firmware);
    Command command;
    command->enumVersionLocationType = ENUM_VER_LOC_FLASH;
    auto &place = command->stReadVersionFromFlash;
    place.ulVerAddr = 0x1000;
    place.ulTotalVerLen = 4;
    place.ulMajorVerLen = 2;
    place.ulSubVerLen = 1;
    place.enumRecordVerMode = 1;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: 1.12.65\n"));
    place.enumRecordVerMode = 2;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: 01.0C.41\n"));
    place.ulVerAddr = 0x1002;
    place.ulTotalVerLen = 2;
    place.ulSubVerLen = 0;
    place.enumRecordVerMode = 0;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: AB\n"));
}

TEST(VirtualVersion, Erased_flash_has_no_version) {
    VirtualIsp isp;
    Command command;
    command->enumVersionLocationType = ENUM_VER_LOC_FLASH;
    EXPECT_EQ(isp.Run("RecordFWVersion", command), 0x5A0A);
    command->stReadVersionFromFlash.ulTotalVerLen = 4;
    command->stReadVersionFromFlash.ulMajorVerLen = 4;
    EXPECT_EQ(isp.Run("RecordFWVersion", command), 0x5A0A);
    command->stReadVersionFromFlash.ulVerAddr = 0xFFFFFE;
    EXPECT_EQ(isp.Run("RecordFWVersion", command), 0x5A04);
}

TEST(VirtualVersion, Firmware_file_location_reads_file_and_not_device) {
    VirtualIsp isp;
    Command command;
    command->enumVersionLocationType = ENUM_VER_LOC_FWBIN;
    EXPECT_EQ(isp.Run("RecordFWVersion", command), 0x5A0A) << "no file in the map";
    command.Banks(0, isp.folder.Write("a.bin", FirmwareOfVersion("7.0")), 1);
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version of the firmware file: 7.0\n"));
    command->enumVersionLocationType = ENUM_VER_LOC_FWBINCMD;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages,
                ElementsAre(L"Version of the firmware file: 7.0\n", L"Version: 1.00\n"));
}

TEST(VirtualVersion, Copy_location_compares_both_images) {
    VirtualIsp isp;
    Program(isp, FirmwareOfVersion("2.0"), 0);
    Program(isp, FirmwareOfVersion("1.0"), 128);
    Command command;
    command->enumVersionLocationType = ENUM_VER_LOC_COPYDIFFER;
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: 2.0\n", L"Version of the copy: 1.0\n",
                                          L"Banks whose copy differs: 1\n"));
}

TEST(VirtualVersion, Comparever_skips_device_of_same_version) {
    VirtualIsp isp;
    Program(isp, FirmwareOfVersion("3.1"));
    std::string same = FirmwareOfVersion("3.1");
    same[0] ^= 1;
    Command command;
    command->bCompareVersion = 1;
    command.Banks(0, isp.folder.Write("a.bin", same), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.messages.back(), L"The device holds this version; nothing is programmed\n");
    EXPECT_EQ(isp.progress.back(), 100);
    EXPECT_EQ(isp.Dump(0, kBank), FirmwareOfVersion("3.1"));

    isp.folder.Write("a.bin", FirmwareOfVersion("3.2"));
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.messages.front(),
              L"Version of the firmware file: 3.2; version of the device: 3.1\n");
    EXPECT_EQ(isp.Dump(0, kBank), FirmwareOfVersion("3.2"));
}

TEST(VirtualDevice, Userdefinedinfo_prints_information_of_given_type) {
    VirtualIsp isp;
    Command command;
    const char *expected[] = {"VIRTUAL-1\n", "Virtual firmware\n", "Virtual monitor\n",
                              "VHW-0001\n"};
    for (std::uint32_t type = 1; type <= 4; ++type) {
        command->enumUserDefinedInfoType = type;
        EXPECT_EQ(OutputOf([&] { EXPECT_EQ(isp.Run("GetUserDefinedInfoFromDDCCI", command), 0); }),
                  expected[type - 1]);
    }
    for (const std::uint32_t type : {0U, 5U}) {
        command->enumUserDefinedInfoType = type;
        EXPECT_EQ(isp.Run("GetUserDefinedInfoFromDDCCI", command), 0x5A0C);
    }
}

TEST(VirtualDevice, Device_reports_edited_description) {
    VirtualIsp isp;
    isp.folder.Write("device/device.ini", "# mine\nscaler_type = Own type\nversion=9.9\n");
    Command command;
    ASSERT_EQ(isp.Run("GetScalerType", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Scaler type: Own type\n"));
    ASSERT_EQ(isp.Run("RecordFWVersion", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"Version: 9.9\n"));
}

TEST(VirtualDevice, Device_stores_mode_switches) {
    VirtualIsp isp;
    Command command;
    ASSERT_EQ(isp.Run("EnterISPModeExport", command), 0);
    EXPECT_EQ(isp.folder.Read("device/mode.txt"), "isp\n");
    ASSERT_EQ(isp.Run("ResetMCUExport", command), 0);
    EXPECT_EQ(isp.folder.Read("device/mode.txt"), "normal\n");
}

TEST(VirtualDevice, Eeprom_is_programmed_and_reports_its_version) {
    VirtualIsp isp;
    Command command;
    command->enumEdpIspMode = 2;
    EXPECT_EQ(isp.Run("IspEeprom", command), 0x5A0A);
    command->enumEdpIspMode = 1;
    EXPECT_EQ(isp.Run("IspEeprom", command), 0x5A0E);
    command.Banks(0, isp.folder.Write("e.bin", FirmwareOfVersion("E5")), 1);
    ASSERT_EQ(isp.Run("IspEeprom", command), 0);
    EXPECT_EQ(isp.folder.Read("device/eeprom.bin"), FirmwareOfVersion("E5"));
    EXPECT_EQ(isp.folder.Read("device/flash.bin"), "");
    command->enumEdpIspMode = 2;
    ASSERT_EQ(isp.Run("IspEeprom", command), 0);
    EXPECT_THAT(isp.messages, ElementsAre(L"EEPROM version: E5\n"));
    command->enumEdpIspMode = 0;
    EXPECT_EQ(isp.Run("IspEeprom", command), 0x5A0C);
    command->enumEdpIspMode = 1;
    EXPECT_EQ(isp.Run("IspEeprom", command.Banks(1, isp.folder.Path("e.bin"), 1)), 0x5A04);
}

TEST(VirtualDevice, Key_from_flash_is_read_from_key_area) {
    VirtualIsp isp;
    const auto getKey = isp.plugin.Get<decltype(GetKeyFromFlash)>("GetKeyFromFlash");
    Command command;
    std::string key(1220 + 16, '\0');
    auto *buffer = reinterpret_cast<unsigned char *>(key.data());
    EXPECT_EQ(getKey(command.Get(), buffer), 0x5A0B);

    Program(isp, "a key", 255);
    ASSERT_EQ(getKey(command.Get(), buffer), 0);
    EXPECT_EQ(key, "a key" + std::string(1220 + 16 - 5, '\0'));

    Program(isp, Firmware(kBank), 255);
    ASSERT_EQ(getKey(command.Get(), buffer), 0);
    EXPECT_EQ(key, Firmware(1220) + std::string(16, '\0')) << "no byte more than 1,220";
}

} // namespace
