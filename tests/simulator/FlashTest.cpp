#include <algorithm>
#include <random>
#include <stdexcept>

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "FileSizeLimit.h"
#include "VirtualPlugin.h"

namespace {

using testing::ElementsAre;

constexpr std::size_t kBank = 65536;
const std::string kErasedBank(kBank, '\xFF');

std::string Padded(std::string text) {
    text.resize((text.size() + kBank - 1) / kBank * kBank, '\xFF');
    return text;
}

TEST(VirtualFlash, New_device_is_erased_and_creates_its_files) {
    VirtualIsp isp;
    EXPECT_EQ(isp.Dump(0, kBank), kErasedBank);
    EXPECT_EQ(isp.Dump(0xFFFFF0, 16), std::string(16, '\xFF'));
    EXPECT_EQ(isp.folder.Read("device/flash.bin"), "");
    EXPECT_EQ(isp.folder.Read("device/eeprom.bin"), "");
    EXPECT_THAT(isp.folder.Read("device/device.ini"),
                testing::HasSubstr("scaler_type = VIRTUAL-1\n"));
}

TEST(VirtualFlash, Programming_writes_padded_file_at_its_bank) {
    VirtualIsp isp;
    const std::string firmware = Firmware(2 * kBank + 1234);
    Command command;
    command->enumActionType = ENUM_ACTION_ISP;
    command.Banks(3, isp.folder.Write("a.bin", firmware), 3);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.Dump(3 * kBank, 3 * kBank), Padded(firmware));
    EXPECT_EQ(isp.Dump(0, 3 * kBank), kErasedBank + kErasedBank + kErasedBank);
    EXPECT_EQ(isp.Dump(6 * kBank, kBank), kErasedBank);
    EXPECT_EQ(isp.folder.Read("device/flash.bin"), isp.Dump(0, 6 * kBank));
}

TEST(VirtualFlash, Random_programming_agrees_with_array) {
    VirtualIsp isp;
    std::mt19937 random(20260101);
    std::string model(16 * kBank, '\xFF');
    for (int round = 0; round < 20; ++round) {
        const auto banks = std::size_t{1 + random() % 3};
        const auto bank = std::size_t{random() % (16 - banks)};
        const std::string firmware =
            Firmware(banks * kBank - random() % kBank, static_cast<std::size_t>(round));
        Command command;
        command->enumActionType = round % 2 == 0 ? ENUM_ACTION_ISP : ENUM_ACTION_ISPDIFF;
        command.Banks(static_cast<std::uint32_t>(bank), isp.folder.Write("a.bin", firmware),
                      static_cast<std::uint32_t>(banks));
        ASSERT_EQ(isp.Run("IspFlash", command), 0);
        model.replace(bank * kBank, banks * kBank, Padded(firmware));
        ASSERT_EQ(isp.Dump(0, 16 * kBank), model) << "round " << round;
    }
}

TEST(VirtualFlash, Progress_never_falls_and_has_three_steps_per_bank) {
    VirtualIsp isp;
    Command command;
    command.Banks(0, isp.folder.Write("a.bin", Firmware(7 * kBank)), 7);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.progress.size(), 1U + 7 * 3 + 1);
    EXPECT_TRUE(std::is_sorted(isp.progress.begin(), isp.progress.end()));
    EXPECT_EQ(isp.progress.front(), 0);
    EXPECT_EQ(isp.progress.back(), 100);
    EXPECT_EQ(std::count(isp.progress.begin(), isp.progress.end(), 100), 1);
}

TEST(VirtualFlash, Null_callbacks_are_accepted) {
    VirtualIsp isp;
    isp.plugin.Get<decltype(SetUIFunction)>("SetUIFunction")(nullptr, nullptr, nullptr);
    Command command;
    command.Banks(0, isp.folder.Write("a.bin", Firmware(10)), 1);
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.Run("IspFlash", command.Banks(256, "x", 1)), 0x5A04);
}

TEST(VirtualFlash, Differential_programming_touches_only_banks_that_differ) {
    VirtualIsp isp;
    std::string firmware = Firmware(4 * kBank);
    Command command;
    command->enumActionType = ENUM_ACTION_ISPDIFF;
    command.Banks(1, isp.folder.Write("a.bin", firmware), 4);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    firmware[2 * kBank + 5] ^= 1;
    isp.folder.Write("a.bin", firmware);
    // A touched bank 1, 2 or 4 would end the run.
    isp.SetFaults("fail-bank 1 code 1\nfail-bank 2 code 1\nfail-bank 4 code 1\n");
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_THAT(isp.messages,
                ElementsAre(L"Bank 1: unchanged\n", L"Bank 2: unchanged\n",
                            testing::StartsWith(L"Bank 3: erased, written, verified ("),
                            L"Bank 4: unchanged\n", L"Banks programmed: 1 of 4\n"));
    EXPECT_THAT(isp.progress, ElementsAre(0, 24, 49, 57, 66, 74, 99, 100));
    EXPECT_EQ(isp.Dump(kBank, 4 * kBank), firmware);
}

TEST(VirtualFlash, Ispcopy_programs_second_image_at_copy_bank) {
    VirtualIsp isp;
    const std::string firmware = Firmware(kBank);
    Command command;
    command->enumActionType = ENUM_ACTION_ISPCOPY;
    command.Banks(2, isp.folder.Write("a.bin", firmware), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(isp.Dump(2 * kBank, kBank), firmware);
    EXPECT_EQ(isp.Dump(130 * kBank, kBank), firmware);
}

TEST(VirtualFlash, Factory_programming_erases_all_other_banks) {
    VirtualIsp isp;
    Command command;
    command.Banks(9, isp.folder.Write("a.bin", Firmware(kBank)), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    Command factory;
    factory->enumActionType = ENUM_ACTION_FACTORYISP;
    factory.Banks(0, isp.folder.Path("a.bin"), 1);
    ASSERT_EQ(isp.Run("IspFlash", factory), 0);
    EXPECT_EQ(isp.Dump(0, kBank), Firmware(kBank));
    EXPECT_EQ(isp.Dump(9 * kBank, kBank), kErasedBank);
}

TEST(VirtualFlash, User_flag_overwrites_firmware_and_crosses_banks) {
    VirtualIsp isp;
    std::string firmware = Firmware(kBank);
    Command command;
    command->enumActionType = ENUM_ACTION_ISPUSER;
    command.Banks(0, isp.folder.Write("a.bin", firmware), 1);
    command->stFlagSetting.ulFlagAddr = kBank - 2;
    command->stFlagSetting.ulFlagCount = 3;
    command->stFlagSetting.ucFlagData[0] = 0x11;
    command->stFlagSetting.ucFlagData[1] = 0x22;
    command->stFlagSetting.ucFlagData[2] = 0x33;
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    firmware.replace(kBank - 2, 2, "\x11\x22");
    EXPECT_EQ(isp.Dump(0, kBank), firmware);
    EXPECT_EQ(isp.Dump(kBank, 3), "\x33\xFF\xFF");
}

TEST(VirtualFlash, User_flag_without_firmware_keeps_remaining_bytes_of_bank) {
    VirtualIsp isp;
    Command command;
    command.Banks(0, isp.folder.Write("a.bin", Firmware(kBank)), 1);
    ASSERT_EQ(isp.Run("IspFlash", command), 0);
    Command flag;
    flag->enumActionType = ENUM_ACTION_ISPUSER;
    flag->stFlagSetting.ulFlagAddr = 0x100;
    flag->stFlagSetting.ulFlagCount = 1;
    flag->stFlagSetting.ucFlagData[0] = 0xFE;
    ASSERT_EQ(isp.Run("IspFlash", flag), 0);
    std::string expected = Firmware(kBank);
    expected[0x100] = '\xFE';
    EXPECT_EQ(isp.Dump(0, kBank), expected);
}

TEST(VirtualFlash, Empty_bank_map_fails) {
    VirtualIsp isp;
    Command command;
    EXPECT_EQ(isp.Run("IspFlash", command), 0x5A0E);
    EXPECT_THAT(isp.messages, ElementsAre(L"There is nothing to program: the bank map is empty\n"));
}

TEST(VirtualFlash, Invalid_map_or_file_leaves_flash_unchanged) {
    VirtualIsp isp;
    const std::string good = isp.folder.Write("good.bin", Firmware(kBank));
    struct Row {
        const char *name;
        std::uint32_t bank;
        std::string path;
        std::uint32_t fileBank;
        int code;
    };
    const Row rows[] = {
        {"bank outside the flash", 256, good, 0, 0x5A04},
        {"file that shrank", 1, good, 1, 0x5A06},
        {"no such file", 1, isp.folder.Path("none.bin"), 0, 0x5A05},
        {"folder", 1, isp.folder.MakeFolder("sub"), 0, 0x5A05},
    };
    for (const Row &row : rows) {
        Command command;
        command.Banks(0, good, 1).Banks(row.bank, row.path, 1, row.fileBank);
        EXPECT_EQ(isp.Run("IspFlash", command), row.code) << row.name;
        EXPECT_EQ(isp.messages.size(), 1U) << row.name;
        EXPECT_EQ(isp.folder.Read("device/flash.bin"), "") << row.name;
    }
    Command command;
    command->stMapFw.ulFwCount = 513;
    EXPECT_EQ(isp.Run("IspFlash", command), 0x5A0F);
}

TEST(VirtualFlash, Full_disk_leaves_bank_erased_and_other_banks_unchanged) {
    VirtualIsp isp;
    const std::string firmware = Firmware(3 * kBank);
    Command command;
    command.Banks(0, isp.folder.Write("a.bin", firmware), 3);
    {
        const FileSizeLimit limit(2 * kBank + 1000);
        EXPECT_EQ(isp.Run("IspFlash", command), 0x5A07);
    }
    const std::string flash = isp.folder.Path("device/flash.bin");
    EXPECT_THAT(isp.messages.back(),
                testing::StartsWith(L"The flash cannot be written: " +
                                    std::wstring(flash.begin(), flash.end()) + L": "));
    EXPECT_EQ(isp.Dump(0, 3 * kBank), firmware.substr(0, 2 * kBank) + kErasedBank);
    EXPECT_EQ(isp.folder.Read("device/flash.bin").size(), 2 * kBank);
}

TEST(VirtualFlash, Full_disk_while_filling_gap_leaves_flash_file_contiguous) {
    VirtualIsp isp;
    Command command;
    command.Banks(9, isp.folder.Write("a.bin", Firmware(kBank)), 1);
    {
        const FileSizeLimit limit(3 * kBank);
        EXPECT_EQ(isp.Run("IspFlash", command), 0x5A07);
    }
    EXPECT_EQ(isp.folder.Read("device/flash.bin"), "");
}

TEST(VirtualFlash, Unwritable_dump_returns_its_own_code) {
    VirtualIsp isp;
    Command command;
    command->stDumpFlash.ulDumpLen = 100;
    const std::wstring name = L"/dev/full";
    std::copy(name.begin(), name.end(), command->stDumpFlash.wszDumpFile);
    EXPECT_EQ(isp.Run("DumpFlash", command), 0x5A0D);
    Command outside;
    outside->stDumpFlash.ulDumpAddr = 0xFFFFFF;
    outside->stDumpFlash.ulDumpLen = 2;
    EXPECT_EQ(isp.Run("DumpFlash", outside), 0x5A04);
    outside->stDumpFlash.ulDumpAddr = 0xFFFFFFFF;
    outside->stDumpFlash.ulDumpLen = 0xFFFFFFFF;
    EXPECT_EQ(isp.Run("DumpFlash", outside), 0x5A04);
}

TEST(VirtualFlash, Relative_dump_name_starts_at_current_directory) {
    VirtualIsp isp;
    const TempFolder here;
    const CurrentFolderGuard guard(here.Path());
    Command command;
    command->stDumpFlash.ulDumpLen = 5;
    const std::wstring name = L"gr\u00fc\u00df.bin";
    std::copy(name.begin(), name.end(), command->stDumpFlash.wszDumpFile);
    ASSERT_EQ(isp.Run("DumpFlash", command), 0);
    EXPECT_EQ(here.Read("gr\xC3\xBC\xC3\x9F.bin"), "\xFF\xFF\xFF\xFF\xFF");
}

TEST(VirtualFlash, Full_path_field_is_read_up_to_260_characters) {
    VirtualIsp isp;
    // 260 characters exactly: the field has no terminator, the bytes after it are not zero.
    std::string path = isp.folder.MakeFolder(std::string(100, 'd')) + "/";
    path += std::string(260 - path.size(), 'f');
    ASSERT_EQ(path.size(), 260U);
    isp.folder.Write(path.substr(isp.folder.Path().size()), Firmware(10));
    Command command;
    command.Banks(0, path, 1);
    std::fill_n(reinterpret_cast<unsigned char *>(&command->stMapFw.stFwBank[0]) + 1052, 4, 'x');
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
}

TEST(VirtualFlash, Null_record_is_rejected) {
    VirtualIsp isp;
    EXPECT_EQ(isp.plugin.Get<decltype(IspFlash)>("IspFlash")(nullptr), 0x5A0F);
    Command command;
    EXPECT_EQ(isp.plugin.Get<decltype(GetKeyFromFlash)>("GetKeyFromFlash")(command.Get(), nullptr),
              0x5A0F);
}

TEST(VirtualFlash, Exception_of_callback_does_not_leave_plugin) {
    VirtualIsp isp;
    isp.onProgress = [](int percent) {
        if (percent > 50) {
            throw std::runtime_error("host");
        }
    };
    Command command;
    command.Banks(0, isp.folder.Write("a.bin", Firmware(2 * kBank)), 2);
    EXPECT_EQ(isp.Run("IspFlash", command), 0x5AFF);
    isp.onProgress = nullptr;
    EXPECT_EQ(isp.Run("IspFlash", command), 0) << "the device was closed and opens again";
}

TEST(VirtualFlash, Closed_plugin_is_unloaded) {
    {
        VirtualIsp isp;
        isp.Dump(0, 1);
    }
    EXPECT_EQ(dlopen(VIRTUAL_ISP_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST(VirtualFlash, Device_directory_is_in_library_directory_without_variable) {
    const EnvGuard noDevice("SCALER_ISP_VIRTUAL_DEVICE", std::nullopt);
    const TempFolder folder;
    const TempFolder plugins;
    std::string bytes;
    {
        std::FILE *file = std::fopen(VIRTUAL_ISP_FILE, "rb");
        ASSERT_NE(file, nullptr);
        for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
            bytes += static_cast<char>(c);
        }
        std::fclose(file);
    }
    const OpenLibrary plugin(folder.Write("PlugIn/libIsp.dylib", bytes));
    Command command;
    EXPECT_EQ(plugin.Get<decltype(GetScalerType)>("GetScalerType")(command.Get()), 0);
    EXPECT_EQ(folder.Read("VirtualScaler/journal.txt"), "GetScalerType\n");
}

} // namespace
