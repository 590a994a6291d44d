// The console on the virtual scaler, the way an integrator uses it.

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Words = std::vector<std::string>;

constexpr std::size_t kBank = 65536;

class VirtualRun : public testing::Test {
  protected:
    static ConsoleResult Run(const Words &arguments) {
        return RunConsole(With(arguments));
    }
    static Words With(const Words &arguments) {
        Words all{"run", "--virtual"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }
    void SetFaults(const std::string &text) const {
        m_folder.Write("device/faults.txt", text);
    }

    TempFolder m_folder;
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.MakeFolder("device")};
    std::string m_bytes = std::string(kBank, 'a') + std::string(kBank, 'b') + "the end";
    std::string m_firmware = m_folder.Write("my firmware.bin", m_bytes);
};

TEST_F(VirtualRun, Dump_returns_programmed_firmware) {
    const ConsoleResult programmed = Run({"--isp", "--fw", m_firmware});
    EXPECT_EQ(programmed.status, 0);
    EXPECT_THAT(programmed.out, EndsWith("Success\n"));
    EXPECT_THAT(programmed.err, StartsWith("ispctl: virtual scaler: no hardware is touched\n"));
    EXPECT_THAT(programmed.err, EndsWith("progress 100 %\nispctl: success\n"));

    const std::string dump = m_folder.Path("dump.bin");
    EXPECT_EQ(Run({"--dumpflash", "--dumpaddr", "0", "--dumplen", std::to_string(3 * kBank),
                   "--dumpname", dump})
                  .status,
              0);
    EXPECT_EQ(m_folder.Read("dump.bin"), m_bytes + std::string(3 * kBank - m_bytes.size(), '\xFF'));
}

// A chip's directory, too, may hold the virtual scaler; its device is next to the library then.
TEST_F(VirtualRun, Doctor_names_device_that_cannot_be_written) {
    const std::string chip = m_folder.MakeFolder("chip/PlugIn") + "/..";
    fs::copy_file(REAL_LIBRARY, chip + "/libScalerIsp.so");
    fs::copy_file(fs::path(ISPCTL_EXECUTABLE).parent_path() / "../virtual/PlugIn/libIsp.dylib",
                  chip + "/PlugIn/libIsp.dylib");
    const Words lines[] = {{"doctor", "--virtual"}, {"doctor", "--lib", chip + "/libScalerIsp.so"}};
    for (const Words &line : lines) {
        EXPECT_THAT(RunConsole(line).out, HasSubstr("virtual scaler can keep its device"));
        const std::string blocked = m_firmware + "/device"; // below a file
        const EnvGuard device("SCALER_ISP_VIRTUAL_DEVICE", blocked);
        const ConsoleResult result = RunConsole(line);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.out, HasSubstr(blocked));
        EXPECT_THAT(result.out, HasSubstr("set SCALER_ISP_VIRTUAL_DEVICE"));
    }
}

TEST_F(VirtualRun, Double_dash_before_arguments_is_removed) {
    EXPECT_EQ(Run({"--", "--isp", "--fw", m_firmware}).status, 0);
}

TEST_F(VirtualRun, Json_progress_rises_and_result_is_last_event) {
    const ConsoleResult result = Run({"--json", "--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 0);
    std::istringstream lines(result.out);
    int percent = -1;
    int messages = 0;
    std::string console;
    nlohmann::json event;
    for (std::string line; std::getline(lines, line);) {
        event = nlohmann::json::parse(line);
        if (event["event"] == "progress") {
            EXPECT_GE(event["percent"].get<int>(), percent);
            percent = event["percent"];
        } else if (event["event"] == "message") {
            ++messages;
        } else if (event["event"] == "console") {
            console += event["text"];
        }
    }
    EXPECT_EQ(percent, 100);
    EXPECT_GE(messages, 3);
    EXPECT_EQ(console, "\033[32mSuccess\n\033[m");
    EXPECT_EQ(event["event"], "result");
    EXPECT_EQ(event["code"], 0);
}

TEST_F(VirtualRun, Failing_bank_returns_code_of_plugin) {
    SetFaults("fail-bank 1 code 0x7003\n");
    const ConsoleResult result = Run({"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, EndsWith("Fail! Error Code: 0x7003\n"));
    EXPECT_THAT(result.err,
                testing::ContainsRegex("ispctl: failed with 0x7003 at [0-9]+ %: error "
                                       "code of the plug-in \\(see its documentation\\); "
                                       "the state of the device is unknown\n"));
}

TEST_F(VirtualRun, First_interrupt_lets_programming_finish) {
    SetFaults("slow 200\n");
    ConsoleProcess process(With({"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("progress 0 %"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_THAT(process.Err(), HasSubstr("stopping now can leave the device without firmware"));
    EXPECT_THAT(process.Out(), EndsWith("Success\n"));
}

TEST_F(VirtualRun, Second_interrupt_stops_programming) {
    SetFaults("slow 20000\n");
    ConsoleProcess process(With({"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("progress 0 %"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText("press Ctrl-C again"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
}

TEST_F(VirtualRun, Terminal_shows_progress_bar) {
    if (!ConsoleProcess::CanHaveTerminal()) {
        GTEST_SKIP() << "no terminal can be made here";
    }
    const ConsoleResult result =
        RunConsole(With({"--isp", "--fw", m_firmware}), ConsoleProcess::Output::Terminal);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("[########################################] 100 %\r\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("progress")));
}

#ifdef HAS_SIGN_PLUGIN
TEST_F(VirtualRun, Modified_firmware_is_rejected_before_programming) {
    const std::string signature = m_folder.Path("firmware.sig");
    const Words signedWith{"--sw", "--dsmode", "2",          "--keypair", "0",
                           "--fw", m_firmware, "--signfile", signature};
    const auto run = [&](const char *action) {
        Words arguments = signedWith;
        arguments.insert(arguments.begin(), action);
        return Run(arguments);
    };
    ASSERT_EQ(run("--sign").status, 0);
    ASSERT_EQ(run("--verify").status, 0);
    m_bytes[70000] = 'X';
    m_folder.Write("my firmware.bin", m_bytes);

    const ConsoleResult refused = run("--isp");

    EXPECT_EQ(refused.status, 6);
    EXPECT_THAT(refused.err,
                HasSubstr("ispctl: failed with 0x4003: the firmware signature is invalid; "
                          "the state of the device is unknown\n"));
    EXPECT_THAT(m_folder.Read("device/journal.txt"), Not(HasSubstr("IspFlash")));
}
#endif

TEST_F(VirtualRun, Moved_ispctl_finds_its_libraries) {
    const fs::path library = REAL_LIBRARY;
    fs::create_directories(m_folder.Path("moved/bin"));
    fs::create_directories(m_folder.Path("moved/lib"));
    fs::copy_file(ISPCTL_EXECUTABLE, m_folder.Path("moved/bin/ispctl"));
    fs::copy_file(library, m_folder.Path("moved/lib/") + library.filename().string());
    const std::string command =
        m_folder.Path("moved/bin/ispctl") + " run --verbatim --isp --fw no.bin 2>&1";
    std::FILE *pipe = ::popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::array<char, 4096> buffer{};
    const std::size_t length = std::fread(buffer.data(), 1, buffer.size(), pipe);
    ::pclose(pipe);
    EXPECT_THAT(std::string(buffer.data(), length),
                StartsWith("File open fail! " + m_folder.Path("moved/lib/no.bin")));
}

} // namespace
