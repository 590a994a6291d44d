// How the console tells the end of a run that a plug-in does not let end as it should: the real
// library with a plug-in that misbehaves.

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class PluginEnd : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directory(m_folder.Path("PlugIn"));
        fs::create_symlink(REAL_LIBRARY, m_library);
        fs::create_symlink(SCRIPTED_PLUGIN, m_folder.Path("PlugIn/libIsp.dylib"));
    }
    std::vector<std::string> Arguments(const std::vector<std::string> &own) const {
        std::vector<std::string> arguments{"run", "--lib", m_library};
        arguments.insert(arguments.end(), own.begin(), own.end());
        arguments.insert(arguments.end(), {"--isp", "--fw", m_firmware});
        return arguments;
    }
    ConsoleResult Run(const std::string &steps, const std::vector<std::string> &own = {}) const {
        const EnvGuard guard("PLUGIN_STEPS", steps);
        return RunConsole(Arguments(own));
    }
    static Json LastEvent(const std::string &out) {
        const auto begin = out.rfind('\n', out.size() - 2);
        return Json::parse(out.substr(begin == std::string::npos ? 0 : begin + 1));
    }

    TempFolder m_folder;
    std::string m_library = m_folder.Path("libScalerIsp.so");
    std::string m_firmware = m_folder.Write("fw.bin", "firmware");
    EnvGuard m_file{"PLUGIN_FILE", m_folder.Path("erased.txt")};
};

constexpr const char *kUnknown = "; the state of the device is unknown\n";

struct Row {
    const char *steps;
    const char *sentence; ///< between "ispctl: failed" and kUnknown
    Json event;           ///< what the result event holds
};

const Row kRows[] = {
    {"exit:0",
     ": the plug-in ended the process (exit status 0)",
     {{"code", nullptr}, {"ended", "exit"}, {"exit_status", 0}}},
    {"exit:3",
     ": the plug-in ended the process (exit status 3)",
     {{"code", nullptr}, {"ended", "exit"}, {"exit_status", 3}}},
    {"_exit:0",
     ": the plug-in ended the process (exit status 0)",
     {{"code", nullptr}, {"ended", "exit"}, {"exit_status", 0}}},
    {"_exit:255",
     ": the plug-in ended the process (exit status 255)",
     {{"code", nullptr}, {"ended", "exit"}, {"exit_status", 255}}},
#if !defined(__SANITIZE_ADDRESS__) // the C library leaks a little then
    {"unwind",
     ": the plug-in ended the process (exit status 0)",
     {{"code", nullptr}, {"ended", "exit"}, {"exit_status", 0}}},
#endif
    {"abort",
     ": SIGABRT ended the process of the library and its plug-ins",
     {{"code", nullptr}, {"ended", "signal"}, {"signal", "SIGABRT"}}},
    {"throw",
     " with -1: the plug-in failed or threw an exception, or a call inside the library failed",
     {{"code", -1}, {"name", "SCALER_ISP_REFUSED"}}},
    {"return:-1",
     " with -1: the plug-in failed or threw an exception, or a call inside the library failed",
     {{"code", -1}, {"name", "SCALER_ISP_REFUSED"}}},
    {"return:0x7001",
     " with 0x7001: error code of the plug-in (see its documentation)",
     {{"code", 0x7001}, {"name", nullptr}}},
    {"return:0xD67",
     " with 0xD67: error code of the plug-in (see its documentation)",
     {{"code", 0xD67}, {"name", nullptr}, {"source", "plug-in"}}},
};

TEST_F(PluginEnd, Every_abnormal_end_is_reported_and_fails_run) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.steps);
        const ConsoleResult result = Run(std::string("erase ") + row.steps);
        EXPECT_EQ(result.status, row.event.contains("ended") ? 7 : 1);
        EXPECT_THAT(result.err, HasSubstr(std::string("ispctl: failed") + row.sentence + kUnknown));
        EXPECT_THAT(result.err, Not(HasSubstr("nothing was done")));
    }
}

TEST_F(PluginEnd, Report_contains_last_progress) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.steps);
        std::string sentence = row.sentence;
        sentence.insert(sentence.find(':'), " at 42 %");
        EXPECT_THAT(Run(std::string("progress:42 ") + row.steps).err,
                    HasSubstr("ispctl: failed" + sentence + kUnknown));
    }
}

TEST_F(PluginEnd, Last_json_event_is_result_after_any_end) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.steps);
        const ConsoleResult result =
            Run(std::string("erase progress:42 out:last\\n ") + row.steps, {"--json"});
        const Json event = LastEvent(result.out);
        EXPECT_EQ(result.status, event["status"]);
        EXPECT_EQ(event["event"], "result");
        EXPECT_EQ(event["device"], "unknown");
        for (const auto &[key, value] : row.event.items()) {
            EXPECT_EQ(event[key], value) << key;
        }
        EXPECT_THAT(result.out, HasSubstr("{\"event\":\"console\",\"text\":\"last\\n\"}\n"));
    }
}

TEST_F(PluginEnd, Log_ends_with_known_result_after_crash) {
    Run("progress:42 exit:0", {"--log", m_folder.Path("log")});
    EXPECT_THAT(m_folder.Read("log"),
                HasSubstr("result   the plug-in ended the process (exit status 0); the state of "
                          "the device is unknown\n"));
}

TEST_F(PluginEnd, Plugin_that_returns_0_is_reported_as_success) {
    const ConsoleResult result = Run("erase progress:100");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, EndsWith("ispctl: success\n"));
    EXPECT_EQ(m_folder.Read("erased.txt"), "erased\n");
}

TEST_F(PluginEnd, Rejected_line_is_reported_as_without_effect) {
    const ConsoleResult result =
        RunConsole({"run", "--json", "--verbatim", "--lib", m_library, "--isp"});
    EXPECT_EQ(result.status, 4);
    const Json event = LastEvent(result.out);
    EXPECT_EQ(event["code"], -1);
    EXPECT_EQ(event["source"], "library");
    EXPECT_EQ(event["stage"], "validate");
    EXPECT_EQ(event["meaning"], "the command line was refused");
    EXPECT_EQ(event["device"], "untouched");
    EXPECT_THAT(RunConsole({"run", "--verbatim", "--lib", m_library, "--isp"}).err,
                HasSubstr("ispctl: failed with -1: the command line was refused; nothing was "
                          "done\n"));
}

TEST_F(PluginEnd, Missing_plugin_is_reported_as_without_effect) {
    fs::remove(m_folder.Path("PlugIn/libIsp.dylib"));
    const ConsoleResult result = Run("");
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.err, HasSubstr("cannot be loaded; nothing was done\n"
                                      "ispctl: there is no ISP plug-in:"));
    EXPECT_THAT(result.err, HasSubstr(m_folder.Path("PlugIn/libIsp.dylib")));
    EXPECT_THAT(result.err, HasSubstr("--virtual"));
}

TEST_F(PluginEnd, Escape_sequences_of_plugin_are_made_visible) {
    const ConsoleResult result = Run("out:\\e[2J\\n message:\\e]0;x");
    EXPECT_THAT(result.out, HasSubstr("\\x1B[2J\n\\x1B]0;x\n"));
    EXPECT_THAT(result.out, EndsWith("Success\n"));
}

TEST_F(PluginEnd, Plugin_continues_if_only_ispctl_is_killed) {
    const EnvGuard guard("PLUGIN_STEPS",
                         "progress:1 sleep:300 progress:2 out:text\\n message:m erase");
    {
        ConsoleProcess process(Arguments({}));
        ASSERT_TRUE(process.WaitForText("progress 1 %"));
        process.Signal(SIGKILL);
        EXPECT_EQ(process.Finish(), -SIGKILL);
    }
    for (int i = 0; i < 500 && !m_folder.Exists("erased.txt"); ++i) {
        ::usleep(10000);
    }
    EXPECT_TRUE(m_folder.Exists("erased.txt"));
}

TEST_F(PluginEnd, Second_interrupt_terminates_plugin) {
    const EnvGuard guard("PLUGIN_STEPS", "progress:1 sleep:1000 erase");
    ConsoleProcess process(Arguments({"--json"}));
    ASSERT_TRUE(process.WaitForText("\"percent\":1"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText("press Ctrl-C again"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
    const Json event = LastEvent(process.Out());
    EXPECT_EQ(event["event"], "result");
    EXPECT_EQ(event["code"], nullptr);
    EXPECT_EQ(event["ended"], "interrupt");
    EXPECT_EQ(event["percent"], 1);
    ::usleep(1200000);
    EXPECT_FALSE(m_folder.Exists("erased.txt"));
}

} // namespace
