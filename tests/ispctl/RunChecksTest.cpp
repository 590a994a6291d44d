// What ispctl run does with findings about its command line: the real library and the virtual
// scaler.

#include <fstream>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using Json = nlohmann::json;
using Words = std::vector<std::string>;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RunChecks : public testing::Test {
  protected:
    ConsoleResult Run(const Words &own, const Words &line) const {
        Words arguments{"run", "--virtual"};
        arguments.insert(arguments.end(), own.begin(), own.end());
        arguments.insert(arguments.end(), line.begin(), line.end());
        return RunConsole(arguments, ConsoleProcess::Output::Pipes, m_folder.Path());
    }
    bool WasCalled() const {
        return m_folder.Exists("device/journal.txt");
    }
    static Json LastEvent(const ConsoleResult &result) {
        const auto begin = result.out.rfind('\n', result.out.size() - 2);
        return Json::parse(result.out.substr(begin == std::string::npos ? 0 : begin + 1));
    }

    TempFolder m_folder;
    std::string m_firmware = m_folder.Write("monitor.bin", std::string(1000, 'f'));
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.MakeFolder("device")};
};

TEST_F(RunChecks, Error_stops_the_run_with_the_word_underlined_and_the_line_corrected) {
    const ConsoleResult result = Run({}, {"--isp", "--bnak", "3", "--fw", m_firmware});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("error: there is no option --bnak"));
    EXPECT_THAT(result.err, HasSubstr("[unknown-option]\n"));
    EXPECT_THAT(result.err, HasSubstr("\n        ^~~~~~\n"));
    EXPECT_THAT(result.err,
                HasSubstr("ispctl run --virtual --isp --bank 3 --fw " + m_firmware + "\n"));
    EXPECT_FALSE(WasCalled());
}

TEST_F(RunChecks, Allow_accepts_only_the_findings_that_it_names) {
    const Words line{"--isp", "--fw", m_firmware, "--dumpaddr", "5", "--bnak"};
    EXPECT_EQ(Run({"--allow", "no-effect"}, line).status, 4);
    EXPECT_FALSE(WasCalled());
    EXPECT_EQ(Run({"--allow", "no-effect,unknown-option"}, line).status, 0);
    EXPECT_TRUE(WasCalled());
}

TEST_F(RunChecks, Verbatim_passes_the_line_unchecked) {
    const ConsoleResult result = Run({"--verbatim"}, {"--isp", "--fw", m_firmware, "--bnak"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, Not(HasSubstr("unknown-option")));
    EXPECT_TRUE(WasCalled());
}

TEST_F(RunChecks, Warning_is_reported_and_the_run_continues) {
    const ConsoleResult result = Run({}, {"--isp", "--fw", m_firmware, "--bank", "010"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, StartsWith("warning: "));
    EXPECT_THAT(result.err, HasSubstr("[octal-number]"));
    EXPECT_TRUE(WasCalled());
}

TEST_F(RunChecks, Option_of_ispctl_after_the_arguments_never_reaches_the_library) {
    for (const char *option : {"--virtual", "--json", "--help", "--log", "--lib"}) {
        const ConsoleResult result = Run({}, {"--isp", "--fw", m_firmware, option});
        EXPECT_EQ(result.status, 4) << option;
        EXPECT_THAT(result.err, HasSubstr("[ispctl-option]")) << option;
    }
    EXPECT_FALSE(WasCalled());
}

TEST_F(RunChecks, Misspelt_option_of_ispctl_opens_no_other_library) {
    const ConsoleResult result =
        RunConsole({"run", "--virtul", "--lib", REAL_LIBRARY, "--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("--virtual"));
    EXPECT_FALSE(WasCalled());
}

TEST_F(RunChecks, Json_ends_with_a_result_that_holds_the_findings) {
    const ConsoleResult result =
        Run({"--json"}, {"--isp", "--fw", m_firmware, "--signfile", m_firmware});
    EXPECT_EQ(result.status, 4);
    const Json event = LastEvent(result);
    EXPECT_EQ(event["event"], "result");
    EXPECT_EQ(event["status"], 4);
    EXPECT_EQ(event["code"], nullptr);
    EXPECT_EQ(event["source"], "ispctl");
    EXPECT_EQ(event["stage"], "check");
    EXPECT_EQ(event["device"], "untouched");
    ASSERT_EQ(event["findings"].size(), 1U);
    const Json &finding = event["findings"][0];
    EXPECT_EQ(finding["name"], "unverified-signature");
    EXPECT_EQ(finding["class"], "error");
    EXPECT_EQ(finding["option"], "--signfile");
    EXPECT_EQ(finding["argument"], 3);
}

TEST_F(RunChecks, Json_has_a_result_for_every_way_not_to_call_the_library) {
    struct Row {
        Words arguments;
        int status;
        const char *stage;
    };
    const Row rows[] = {
        {{"run", "--json"}, 2, "usage"},
        {{"run", "--json", "--lib"}, 2, "usage"},
        {{"run", "--json", "--lib", "/no/lib.so", "--isp", "--fw", m_firmware}, 2, "open"},
        {{"run", "--json", "--virtual", "--isp", "--fw", ""}, 4, "check"},
        {{"run", "--json", "--virtual", "--isp"}, 4, "check"},
        {{"run", "--json", "--virtual", "--log", "/no/log", "--isp", "--fw", m_firmware}, 8, "log"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        const ConsoleResult result = RunConsole(row.arguments);
        EXPECT_EQ(result.status, row.status);
        const Json event = LastEvent(result);
        EXPECT_EQ(event["event"], "result");
        EXPECT_EQ(event["status"], row.status);
        EXPECT_EQ(event["stage"], row.stage);
        EXPECT_NE(result.err, "");
    }
    EXPECT_FALSE(WasCalled());
}

TEST_F(RunChecks, Misspelt_argument_of_ispctl_is_answered_with_the_nearest_one) {
    const std::vector<std::pair<Words, const char *>> rows = {
        {{"explian"}, "explian: did you mean explain?"},
        {{"--versoin"}, "--versoin: did you mean --version?"},
        {{"edid", "--txt", "x"}, "--txt: did you mean --text?"},
        {{"script", "lists", "x"}, "lists: did you mean list?"},
        {{"doctor", "--jsno"}, "--jsno: did you mean --json?"},
        {{"run", "--allow", "no-efect", "--isp"}, "did you mean no-effect?"},
    };
    for (const auto &[arguments, question] : rows) {
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(result.status, 2) << question;
        EXPECT_THAT(result.err, HasSubstr(question));
    }
}

TEST_F(RunChecks, Dry_run_explains_and_calls_nothing) {
    const ConsoleResult result = Run({"--dry-run"}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("IspFlash"));
    EXPECT_FALSE(WasCalled());
}

TEST_F(RunChecks, Code_of_the_plugin_has_the_words_of_its_maker) {
    m_folder.Write("device/faults.txt", "flip-bit 0\n");
    const ConsoleResult result = Run({"--json"}, {"--isp", "--fw", m_firmware});
    EXPECT_EQ(result.status, 1);
    const Json event = LastEvent(result);
    EXPECT_EQ(event["source"], "plug-in");
    EXPECT_EQ(event["meaning"], "what was read back differs from what was written");
    EXPECT_THAT(event["advice"][0].get<std::string>(), StartsWith("program again"));
}

} // namespace
