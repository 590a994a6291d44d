// What `ispctl run` does for stations, on the virtual scaler.

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "ConsoleProcess.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "station/Sha256.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

constexpr std::size_t kBank = 65536;

class StationRun : public testing::Test {
  protected:
    /// All tests share the lock of one device, and never two run at once.
    Words Line(const Words &own, const Words &arguments) const {
        Words all{"run", "--virtual"};
        all.insert(all.end(), own.begin(), own.end());
        all.insert(all.end(), {"--", "--comm", "17"});
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }
    ConsoleResult Run(Words own, const Words &arguments) const {
        own.insert(own.begin(), {"--wait", "120", "--station", m_station});
        return RunConsole(Line(own, arguments));
    }
    std::vector<json> Records() const {
        std::vector<json> records;
        std::istringstream lines(m_folder.Read("line.jsonl"));
        for (std::string line; std::getline(lines, line);) {
            records.push_back(json::parse(line));
        }
        return records;
    }
    bool HasCopies() const {
        return fs::directory_iterator(m_temporary) != fs::directory_iterator();
    }
    std::string Flash(std::size_t bank, std::size_t count) const {
        return m_folder.Read("device/flash.bin").substr(bank * kBank, count * kBank);
    }

    TempFolder m_folder;
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.MakeFolder("device")};
    std::string m_temporary = m_folder.MakeFolder("t");
    EnvGuard m_tmpdir{"TMPDIR", m_temporary};
    std::string m_station = m_folder.Path("line.jsonl");
    std::string m_bytes = std::string(kBank, 'a') + std::string(kBank, 'b');
    std::string m_firmware = m_folder.Write("monitor.bin", m_bytes);
};

TEST_F(StationRun, Record_has_result_files_and_tags) {
    const ConsoleResult result =
        Run({"--tag", "serial=4711", "--tag", "station=A B"}, {"--isp", "--fw", m_firmware});
    ASSERT_EQ(result.status, 0) << result.err;
    ASSERT_EQ(Records().size(), 1U);
    const json record = Records().front();
    EXPECT_EQ(record["status"], 0);
    EXPECT_EQ(record["code"], 0);
    EXPECT_EQ(record["source"], "library");
    EXPECT_EQ(record["stage"], "done");
    EXPECT_EQ(record["percent"], 100);
    EXPECT_EQ(record["tags"], json({{"serial", "4711"}, {"station", "A B"}}));
    EXPECT_EQ(record["argv"].back(), m_firmware);
    EXPECT_THAT(record["run"].get<std::string>(), testing::MatchesRegex("[0-9a-f]{16}"));
    EXPECT_EQ(record["backup"], json::array());
    const json &firmware = record["files"][0];
    EXPECT_EQ(firmware["role"], "fw");
    EXPECT_EQ(firmware["path"], m_firmware);
    EXPECT_EQ(firmware["size"], m_bytes.size());
    EXPECT_EQ(firmware["sha256"], ispctl::Sha256Of(m_bytes));
    EXPECT_EQ(record["files"][1]["role"], "library");
    EXPECT_EQ(record["files"][2]["role"], "isp-plugin");
}

TEST_F(StationRun, Record_has_keys_and_settings_file) {
    const std::string key = m_folder.Write("key.pem", "key");
    const std::string settings = m_folder.Write("own.ini", "[ISP_Fw]\n");
    Run({"--verbatim"}, {"--isp", "--fw", m_firmware, "--vkfile", key, "--nextvkfile",
                         m_folder.Path("none"), "--settingfile", settings});
    const json files = Records().at(0)["files"];
    ASSERT_GE(files.size(), 4U);
    EXPECT_EQ(files[1]["role"], "vkfile");
    EXPECT_EQ(files[1]["sha256"], ispctl::Sha256Of("key"));
    EXPECT_EQ(files[2]["role"], "nextvkfile");
    EXPECT_THAT(files[2]["problem"].get<std::string>(), HasSubstr("none"));
    EXPECT_EQ(files[3]["role"], "settingfile");
    EXPECT_EQ(files[3]["sha256"], ispctl::Sha256Of("[ISP_Fw]\n"));
}

TEST_F(StationRun, Refused_line_has_record) {
    EXPECT_EQ(Run({}, {"--isp", "--bnak", "3", "--fw", m_firmware}).status, 4);
    EXPECT_EQ(Records().at(0)["status"], 4);
    EXPECT_EQ(Records().at(0)["stage"], "check");
    EXPECT_EQ(Records().at(0)["code"], nullptr);
}

TEST_F(StationRun, Usage_errors_name_their_reason) {
    const struct {
        Words own;
        Words arguments;
        const char *reason;
    } rows[] = {
        {{"--tag", "serial"}, {"--isp"}, "KEY=VALUE"},
        {{"--tag", "=1"}, {"--isp"}, "KEY=VALUE"},
        {{"--tag", "serial="}, {"--isp"}, "is empty"},
        {{"--tag", "a=" + std::string(5000, '1')}, {"--isp"}, "a tag has at most"},
        {{"--tag", "a b=1"}, {"--isp"}, "letters, digits"},
        {{"--tag", "a=1", "--tag", "a=2"}, {"--isp"}, "given twice"},
        {{"--tag", "a=\x1b[2J"}, {"--isp"}, "control characters"},
        {{"--wait", "-1"}, {"--isp"}, "--wait"},
        {{"--backup", "d"}, {"--resetmcu"}, "an action that programs"},
        {{"--backup", "d", "--verbatim"}, {"--isp"}, "--verbatim"},
        {{"--private-copy", "--verbatim"}, {"--isp"}, "--verbatim"},
        {{"--private-copy", "--no-private-copy"}, {"--isp"}, "--no-private-copy"},
    };
    for (const auto &row : rows) {
        Words own = row.own;
        own.insert(own.begin(), {"--station", m_station});
        const ConsoleResult result = RunConsole(Line(own, row.arguments));
        EXPECT_EQ(result.status, 2) << row.reason;
        EXPECT_THAT(result.err, HasSubstr(row.reason));
    }
    EXPECT_EQ(RunConsole(Line({"--tag", "a=1"}, {"--isp", "--fw", m_firmware})).status, 2);
    EXPECT_FALSE(m_folder.Exists("device/flash.bin"));
}

TEST_F(StationRun, Options_of_library_process_are_unknown_to_users) {
    const std::string mine = m_folder.Path("mine");
    for (const Words &own : {Words{"--private-directory", mine}, Words{"--run-id", "../other"}}) {
        EXPECT_NE(Run(own, {"--isp", "--fw", m_firmware}).status, 0) << own[0];
    }
    EXPECT_FALSE(m_folder.Exists("mine"));
    EXPECT_FALSE(m_folder.Exists("device/journal.txt"));
}

TEST_F(StationRun, Unwritable_station_file_ends_run_before_plugin_is_called) {
    for (const std::string &file : {std::string("/dev/full"), m_folder.Path("no/such")}) {
        const ConsoleResult result =
            RunConsole(Line({"--station", file}, {"--isp", "--fw", m_firmware}));
        EXPECT_EQ(result.status, 8);
        EXPECT_THAT(result.err, HasSubstr(file));
    }
    EXPECT_FALSE(m_folder.Exists("device/journal.txt"));
}

TEST_F(StationRun, Second_run_on_interface_names_first_or_waits_for_it) {
    m_folder.Write("device/faults.txt", "slow 20000\n"); // until it is stopped
    const Words line =
        Line({"--wait", "120", "--station", m_station}, {"--isp", "--fw", m_firmware});
    ConsoleProcess first(line);
    ASSERT_TRUE(first.WaitForText("progress 0 %"));
    const ConsoleResult second =
        RunConsole(Line({"--station", m_station}, {"--isp", "--fw", m_firmware}));
    EXPECT_EQ(second.status, 8);
    EXPECT_THAT(second.err, ContainsRegex("in use by process [0-9]+ .*since 20.*, station file " +
                                          m_station + "; --wait SECONDS"));
    ConsoleProcess waiting(line);
    ASSERT_TRUE(waiting.WaitForText("waiting for at most 120 s"));
    m_folder.Write("device/faults.txt", "");
    first.Signal(SIGINT);
    ASSERT_TRUE(first.WaitForText("press Ctrl-C again"));
    first.Signal(SIGINT);
    EXPECT_EQ(first.Finish(), 130);
    EXPECT_EQ(waiting.Finish(), 0);
    ASSERT_EQ(Records().size(), 3U);
    EXPECT_EQ(Records()[0]["stage"], "lock");
    EXPECT_EQ(Records()[2]["status"], 0);
}

TEST_F(StationRun, Firmware_exchanged_during_run_is_not_programmed) {
    m_folder.Write("device/faults.txt", "slow 400\n");
    ConsoleProcess process(
        Line({"--wait", "120", "--station", m_station}, {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("progress 0 %"));
    EXPECT_TRUE(HasCopies());
    m_folder.Write("monitor.bin", std::string(2 * kBank, 'X'));
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_EQ(Flash(0, 2), m_bytes);
    EXPECT_FALSE(HasCopies());
    EXPECT_THAT(process.Err(), HasSubstr("private copy of " + m_firmware +
                                         ": 131072 bytes, SHA-256 " + ispctl::Sha256Of(m_bytes)));
    EXPECT_THAT(process.Out(), HasSubstr("(" + m_firmware + ", bank 1)"));
    EXPECT_THAT(process.Out(), Not(HasSubstr(m_temporary)));
}

TEST_F(StationRun, No_private_copy_runs_on_files_themselves) {
    ASSERT_EQ(Run({"--no-private-copy"}, {"--isp", "--fw", m_firmware}).status, 0);
    EXPECT_FALSE(Records().at(0)["files"][0].contains("copy"));
    EXPECT_EQ(Records().at(0)["files"][0]["sha256"], ispctl::Sha256Of(m_bytes));
}

TEST_F(StationRun, Copies_are_removed_after_second_interrupt) {
    m_folder.Write("device/faults.txt", "slow 20000\n");
    ConsoleProcess process(Line({"--private-copy"}, {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("progress 0 %"));
    ASSERT_TRUE(HasCopies());
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText("press Ctrl-C again"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
    EXPECT_FALSE(HasCopies());
}

TEST_F(StationRun, Copy_that_cannot_be_made_ends_run_with_8) {
    const EnvGuard nowhere("TMPDIR", m_folder.Path("no/such"));
    const ConsoleResult result = Run({}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr("private copies"));
    EXPECT_EQ(Records().at(0)["stage"], "files");
    EXPECT_FALSE(m_folder.Exists("device/journal.txt"));
}

TEST_F(StationRun, Path_too_long_for_library_ends_run_with_8) {
    const std::string folder = m_folder.MakeFolder(std::string(200, 'l'));
    const std::string deep = folder + "/" + std::string(60, 'd');
    fs::create_directory(deep);
    const ConsoleResult backup = Run({"--backup", deep}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(backup.status, 8);
    EXPECT_THAT(backup.err, HasSubstr("--backup a directory with a shorter path"));
    const EnvGuard tmpdir("TMPDIR", deep);
    const ConsoleResult copies = Run({}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(copies.status, 8);
    EXPECT_THAT(copies.err, HasSubstr("TMPDIR to a directory with a shorter path"));
    EXPECT_FALSE(m_folder.Exists("device/journal.txt"));
}

TEST_F(StationRun, Backup_holds_what_was_programmed_over) {
    ASSERT_EQ(Run({}, {"--isp", "--fw", m_firmware}).status, 0);
    const std::string other = m_folder.Write("other.bin", std::string(kBank, 'o'));
    const std::string last = m_folder.Write("last.bin", "last");
    const std::string log = m_folder.Path("log");
    const ConsoleResult result =
        Run({"--backup", m_folder.Path("backups"), "--log", log},
            {"--isp", "--fw", other, "--bank", "1", "--fw1", last, "--bank1", "9"});
    ASSERT_EQ(result.status, 0) << result.err;
    const json backups = Records().at(1)["backup"];
    ASSERT_EQ(backups.size(), 2U);
    const auto content = [&](std::size_t index) {
        const std::string path = backups[index]["path"];
        return m_folder.Read("backups/" + fs::path(path).filename().string());
    };
    EXPECT_EQ(content(0), std::string(kBank, 'b'));
    EXPECT_EQ(content(1), std::string(kBank, '\xFF'));
    EXPECT_EQ(backups[0]["sha256"], ispctl::Sha256Of(content(0)));
    EXPECT_EQ(backups[1]["address"], 9 * kBank);
    EXPECT_THAT(m_folder.Read("log"), HasSubstr(backups[0]["path"].get<std::string>()));
    EXPECT_EQ(Flash(1, 1), std::string(kBank, 'o'));
}

TEST_F(StationRun, Failed_backup_ends_run_before_programming) {
    m_folder.Write("device/faults.txt", "refuse-open\n");
    const ConsoleResult result =
        Run({"--backup", m_folder.Path("backups")}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("nothing was programmed"));
    EXPECT_EQ(Records().at(0)["stage"], "backup");
    EXPECT_EQ(Records().at(0)["hex"], "0x5A01");
    EXPECT_THAT(m_folder.Read("device/journal.txt"), Not(HasSubstr("IspFlash")));
    EXPECT_TRUE(fs::is_empty(m_folder.Path("backups")));
}

TEST_F(StationRun, Signal_during_backup_ends_run_before_programming) {
    m_folder.Write("device/faults.txt", "slow 800\n");
    for (const int signal : {SIGINT, SIGTERM}) {
        const std::string backups = m_folder.Path("backups" + std::to_string(signal));
        ConsoleProcess process(Line({"--wait", "120", "--station", m_station, "--backup", backups},
                                    {"--isp", "--fw", m_firmware}));
        ASSERT_TRUE(process.WaitForText("backup: reading"));
        process.Signal(signal);
        EXPECT_EQ(process.Finish(), 130);
        EXPECT_THAT(process.Err(), HasSubstr("nothing was programmed"));
        const json record = Records().back();
        EXPECT_EQ(record["status"], 130);
        EXPECT_EQ(record["stage"], "backup");
        EXPECT_EQ(record["backup"].size(), 1U); // the read is finished
        EXPECT_FALSE(fs::is_empty(backups));
        EXPECT_FALSE(HasCopies());
    }
    EXPECT_THAT(m_folder.Read("device/journal.txt"), Not(HasSubstr("IspFlash")));
}

TEST_F(StationRun, Process_killed_inside_backup_leaves_no_partial_file) {
    m_folder.Write("device/faults.txt", "slow 20000\n");
    const std::string backups = m_folder.MakeFolder("backups");
    const std::string other = m_folder.Write("backups/0123456789abcdef-bank-0-1.bin", "other run");
    ConsoleProcess process(Line({"--wait", "120", "--station", m_station, "--backup", backups},
                                {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("-bank-0-1.bin\n"));
    const std::string text = process.Err();
    const std::size_t at = text.find(" into ") + 6;
    const std::string file = text.substr(at, text.find('\n', at) - at);
    m_folder.Write("backups/" + fs::path(file).filename().string(), "part");
    ASSERT_TRUE(fs::exists(file));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText("press Ctrl-C again"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(other));
}

TEST_F(StationRun, Backup_that_nobody_follows_is_last_call) {
    m_folder.Write("device/faults.txt", "slow 800\n");
    ConsoleProcess process(
        Line({"--wait", "120", "--station", m_station, "--backup", m_folder.Path("backups")},
             {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(process.WaitForText("progress 0 %")); // of the backup
    process.Signal(SIGKILL);
    EXPECT_EQ(process.Finish(), -SIGKILL);
    m_folder.Write("device/faults.txt", "");
    // Waits for the end of the library's process, which holds the lock.
    ASSERT_EQ(Run({}, {"--resetmcu"}).status, 0);
    EXPECT_THAT(m_folder.Read("device/journal.txt"), HasSubstr("DumpFlash"));
    EXPECT_THAT(m_folder.Read("device/journal.txt"), Not(HasSubstr("IspFlash")));
}

TEST_F(StationRun, Backup_fits_firmware_that_was_exchanged_during_wait) {
    m_folder.Write("device/faults.txt", "slow 2000\n");
    const std::string other = m_folder.Write("other.bin", "other");
    ConsoleProcess first(
        Line({"--wait", "120", "--station", m_station}, {"--isp", "--fw", other, "--bank", "9"}));
    ASSERT_TRUE(first.WaitForText("progress 0 %"));
    ConsoleProcess second(
        Line({"--wait", "120", "--station", m_station, "--backup", m_folder.Path("backups")},
             {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(second.WaitForText("waiting for at most"));
    const std::string bytes(4 * kBank, 'n');
    m_folder.Write("monitor.bin", bytes);
    m_folder.Write("device/faults.txt", "");
    EXPECT_EQ(first.Finish(), 0);
    EXPECT_EQ(second.Finish(), 0) << second.Err();
    EXPECT_EQ(Records().back()["backup"][0]["size"], 4 * kBank);
    EXPECT_EQ(Flash(0, 4), bytes);
}

TEST_F(StationRun, Firmware_that_grew_too_large_during_wait_ends_run) {
    m_folder.Write("device/faults.txt", "slow 2000\n");
    const std::string other = m_folder.Write("other.bin", "other");
    ConsoleProcess first(
        Line({"--wait", "120", "--station", m_station}, {"--isp", "--fw", other, "--bank", "9"}));
    ASSERT_TRUE(first.WaitForText("progress 0 %"));
    ConsoleProcess second(
        Line({"--wait", "120", "--station", m_station}, {"--isp", "--fw", m_firmware}));
    ASSERT_TRUE(second.WaitForText("waiting for at most"));
    fs::resize_file(m_firmware, (SCALER_ISP_MAX_BANKS + 1) * kBank);
    EXPECT_EQ(first.Finish(), 0);
    EXPECT_EQ(second.Finish(), 4);
    EXPECT_THAT(second.Err(), HasSubstr("with the files as they are now"));
    EXPECT_EQ(Records().back()["stage"], "files");
}

TEST_F(StationRun, Backup_into_file_ends_run_with_8) {
    const ConsoleResult result = Run({"--backup", m_firmware}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr(m_firmware + " is not a directory"));
    EXPECT_FALSE(m_folder.Exists("device/journal.txt"));
}

TEST_F(StationRun, Result_event_has_run_id_of_record) {
    const ConsoleResult result = Run({"--json"}, {"--isp", "--fw", m_firmware});
    const std::string last = result.out.substr(result.out.rfind("{\"event\":\"result\""));
    EXPECT_EQ(json::parse(last)["run"], Records().at(0)["run"]);
}

} // namespace
