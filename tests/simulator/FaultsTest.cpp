#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/time.h>

#include "VirtualPlugin.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t kBank = 65536;
const std::string kErasedBank(kBank, '\xFF');

/// A device with an old firmware in banks 0..3 and a command that programs a new one.
class VirtualFaults : public testing::Test {
  protected:
    VirtualFaults() {
        Command old;
        old.Banks(0, isp.folder.Write("old.bin", oldFirmware), 4);
        EXPECT_EQ(isp.Run("IspFlash", old), 0);
        command.Banks(0, isp.folder.Write("new.bin", newFirmware), 4);
    }

    VirtualIsp isp;
    Command command;
    const std::string oldFirmware = Firmware(4 * kBank, 1);
    const std::string newFirmware = Firmware(4 * kBank, 2);
};

TEST_F(VirtualFaults, Failing_bank_returns_configured_code_and_stays_unchanged) {
    isp.SetFaults("# a comment\n\n  fail-bank 2 code 0x1234  \n");
    EXPECT_EQ(isp.Run("IspFlash", command), 0x1234);
    EXPECT_EQ(isp.messages.back(), L"Bank 2: fails, as faults.txt asks for\n");
    EXPECT_LT(isp.progress.back(), 100);
    EXPECT_EQ(isp.Dump(0, 4 * kBank),
              newFirmware.substr(0, 2 * kBank) + oldFirmware.substr(2 * kBank));
}

TEST_F(VirtualFaults, Flipped_bit_is_found_by_verify_and_stays_in_flash) {
    isp.SetFaults("flip-bit 1\n");
    EXPECT_EQ(isp.Run("IspFlash", command), 0x5A08);
    EXPECT_THAT(isp.messages.back(),
                testing::StartsWith(L"Bank 1: verify fails at offset 0x0000: written 0x"));
    std::string bank = newFirmware.substr(kBank, kBank);
    bank[0] ^= 1;
    EXPECT_EQ(isp.Dump(0, 4 * kBank),
              newFirmware.substr(0, kBank) + bank + oldFirmware.substr(2 * kBank));
}

TEST_F(VirtualFaults, Power_loss_leaves_bank_half_programmed) {
    isp.SetFaults("power-loss 2\n");
    EXPECT_EQ(isp.Run("IspFlash", command), 0x5A09);
    EXPECT_EQ(isp.Dump(0, 4 * kBank), newFirmware.substr(0, 2 * kBank + kBank / 2) +
                                          kErasedBank.substr(kBank / 2) +
                                          oldFirmware.substr(3 * kBank));
    isp.SetFaults("");
    EXPECT_EQ(isp.Run("IspFlash", command), 0) << "the next run repairs the device";
    EXPECT_EQ(isp.Dump(0, 4 * kBank), newFirmware);
}

TEST_F(VirtualFaults, Slow_device_delays_each_bank) {
    isp.SetFaults("slow 20\n");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(4 * 20));
}

TEST_F(VirtualFaults, Slow_device_delays_in_spite_of_signals) {
    const auto previous = std::signal(SIGALRM, [](int) {});
    const itimerval soon{{0, 0}, {0, 20000}};
    isp.SetFaults("slow 60\n");
    const auto start = std::chrono::steady_clock::now();
    setitimer(ITIMER_REAL, &soon, nullptr);
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(4 * 60));
    std::signal(SIGALRM, previous);
}

TEST_F(VirtualFaults, Device_that_does_not_open_fails_every_function) {
    isp.SetFaults("refuse-open\n");
    const std::string path = isp.folder.Path("device/faults.txt");
    const std::wstring faults(path.begin(), path.end());
    for (const char *function :
         {"IspFlash", "RecordFWVersion", "DumpFlash", "GetUserDefinedInfoFromDDCCI", "IspEeprom",
          "EnterISPModeExport", "ResetMCUExport", "GetScalerType"}) {
        EXPECT_EQ(isp.Run(function, command), 0x5A01) << function;
        EXPECT_THAT(isp.messages,
                    ElementsAre(L"The device refuses to open, as " + faults + L" asks for\n"));
    }
    isp.SetFaults("");
    EXPECT_EQ(isp.Dump(0, 4 * kBank), oldFirmware);
}

TEST_F(VirtualFaults, Unreadable_line_of_faults_fails_run) {
    for (const char *line :
         {"fail-bank 2", "fail-bank 2 code", "fail-bank 2 code 0", "fail-bank 256 code 1",
          "fail-bank 2 code 0x80000000", "fail-bank two code 1", "flip-bit", "flip-bit 0x",
          "flip-bit 1 2", "power-loss -1", "slow", "slow 1x", "slow 60001", "refuse-open now",
          "nonsense", "flip-bit 1 # no comment here"}) {
        isp.SetFaults("# first\n" + std::string(line) + "\n");
        EXPECT_EQ(isp.Run("IspFlash", command), 0x5A03) << line;
        const std::string text(line);
        EXPECT_THAT(isp.messages, ElementsAre(L"faults.txt, line 2 cannot be understood: " +
                                              std::wstring(text.begin(), text.end()) + L"\n"));
        EXPECT_THAT(isp.progress, IsEmpty());
    }
    isp.SetFaults("");
    EXPECT_EQ(isp.Dump(0, 4 * kBank), oldFirmware);
}

// In place of a file of the device, each of these would wait, or never end.
TEST_F(VirtualFaults, File_of_the_device_that_is_no_regular_file_fails_the_call) {
    const std::string device = isp.folder.Path("device/");
    const struct {
        const char *name;
        const char *function;
        int code;
    } kFiles[] = {
        {"faults.txt", "IspFlash", 0x5A03},     {"device.ini", "IspFlash", 0x5A01},
        {"flash.bin", "IspFlash", 0x5A01},      {"eeprom.bin", "IspFlash", 0x5A01},
        {"mode.txt", "ResetMCUExport", 0x5A07},
    };
    for (const auto &file : kFiles) {
        const std::string path = device + file.name;
        for (const bool isPipe : {true, false}) {
            SCOPED_TRACE(file.name);
            std::filesystem::remove(path);
            if (isPipe) {
                ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
            } else {
                std::filesystem::create_symlink("/dev/zero", path);
            }
            // A mode can be written to a device: nothing of it is read.
            const bool isAccepted = !isPipe && file.code == 0x5A07;
            EXPECT_EQ(isp.Run(file.function, command), isAccepted ? 0 : file.code);
            if (!isAccepted) {
                ASSERT_FALSE(isp.messages.empty());
                EXPECT_THAT(isp.messages.back(), HasSubstr(L"it is not a regular file"));
            }
        }
        std::filesystem::remove(path);
    }
}

TEST_F(VirtualFaults, Journal_that_is_a_pipe_is_not_waited_for) {
    const std::string path = isp.folder.Path("device/journal.txt");
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
    ASSERT_FALSE(isp.messages.empty());
    EXPECT_THAT(isp.messages.front(), HasSubstr(L"The journal cannot be written"));
    std::filesystem::remove(path);
}

TEST_F(VirtualFaults, Second_host_gets_error_device_in_use) {
    static VirtualIsp *self;
    static int code;
    self = &isp;
    code = 0;
    isp.onProgress = [](int percent) {
        if (percent == 0) {
            Command second;
            code = self->plugin.Get<int(Setting *)>("GetScalerType")(second.Get());
        }
    };
    EXPECT_EQ(isp.Run("IspFlash", command), 0);
    EXPECT_EQ(code, 0x5A01);
}

TEST_F(VirtualFaults, Unreadable_description_is_not_replaced_by_defaults) {
    std::remove(isp.folder.Path("device/device.ini").c_str());
    isp.folder.MakeFolder("device/device.ini");
    EXPECT_EQ(isp.Run("GetScalerType", command), 0x5A01);
    EXPECT_THAT(isp.messages,
                ElementsAre(testing::StartsWith(L"The device's description cannot be read: ")));
}

TEST_F(VirtualFaults, Error_in_description_contains_line_number) {
    isp.folder.Write("device/device.ini", "model = A\ncolour = red\n");
    EXPECT_EQ(isp.Run("GetScalerType", command), 0x5A02);
    EXPECT_THAT(isp.messages,
                ElementsAre(L"device.ini, line 2 cannot be understood: colour = red\n"));
}

} // namespace
