// Usage errors of every command with --json: the result event, whatever cannot be parsed.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ConsoleProcess.h"

namespace {

using testing::HasSubstr;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

struct Row {
    Words arguments;
    const char *meaning; ///< a part
};

const Row kRows[] = {
    {{"run", "--json"}, "no arguments for the library"},
    {{"run", "--virtul", "--json"}, "did you mean --virtual?"},
    {{"run", "--json", "--virtul"}, "did you mean --virtual?"},
    {{"run", "--virtul", "--log", "x", "--json"}, "did you mean --virtual?"},
    {{"run", "--json", "--virtual", "--lib", "x", "--isp"}, "--lib"},
    {{"run", "--json", "--allow", "no-efect", "--isp"}, "did you mean no-effect?"},
    {{"run", "--json", "--allow", "ispctl-option", "--isp"}, "ispctl-option cannot be accepted"},
    {{"run", "--json", "--lib", "/no/lib.so", "--isp"}, "/no/lib.so does not exist"},
    {{"run", "--dry-run", "--json"}, "no arguments for the library"},
    {{"explain", "--json"}, "no arguments for the library"},
    {{"explain", "--virtul", "--json"}, "did you mean --virtual?"},
    {{"explain", "--json", "--decode", "x", "--isp"}, "--decode"},
    {{"explain", "--json", "--lib", "/no/lib.so", "--isp"}, "/no/lib.so does not exist"},
    {{"doctor", "--json", "--virtul"}, "did you mean --virtual?"},
    {{"doctor", "--json", "more"}, "more"},
    {{"paths", "--jsn", "--json"}, "did you mean --json?"},
    {{"script", "--json"}, "subcommand"},
    {{"rnu", "--json"}, "did you mean run?"},
    {{"foo", "--json"}, "there is no command foo"},
    {{"run", "--json", "--virtual", "--backup", "", "--isp"}, "must not be empty"},
    {{"run", "--json", "--log", "", "--isp"}, "must not be empty"},
    {{"explain", "--json", "--html", "", "--isp"}, "must not be empty"},
    {{"run", "--json", "--log", "--virtual", "--isp"}, "its value is missing: --virtual is taken"},
    {{"run", "--json", "--station", "--isp"}, "a file of that name is ./--isp"},
    {{"run", "--json", "--backup", "-isp", "--fw"}, "its value is missing: -isp"},
    {{"run", "--json", "--chip", "--isp"}, "its value is missing: --isp"},
    {{"explain", "--json", "--svg", "--virtual", "--isp"}, "its value is missing: --virtual"},
    {{"edid", "-o", "--json", "x"}, "its value is missing: --json"},
    {{"doctor", "--json", "--virtual=yes"}, "--virtual takes no value"},
    {{"--virtual", "run", "--json"}, "--virtual is no option of ispctl itself: options follow"},
    {{"run", "--json", "--log", "-", "--isp"}, "./- is one named -"},
    {{"run", "--json", "--station", "-", "--isp"}, "./- is one named -"},
    {{"run", "--json", "--station", "x", "--wait", "10s", "--isp"}, "such as --wait 10"},
    {{"run", "--json", "--station", "x", "--wait", "2 min", "--isp"}, "such as --wait 120"},
    {{"run", "--json", "--station", "x", "--wait", "soon", "--isp"}, "such as --wait 10"},
    {{"run", "--json", "--station", "x", "--wait", "-1", "--isp"}, "0 to 86400 seconds"},
    {{"explain", "--json", "--svg", "-", "--isp"}, "name a file for --svg"},
    {{"explain", "--json", "--html", "-", "--svg", "-", "--isp"}, "for one of them"},
    {{"explain", "--json", "--record", "-", "--isp"}, "FILE.sign"},
    {{"run", "--json", "--log", "x", "--station", "x", "--isp"}, "another option names it"},
    {{"run", "--json", "--log", "/fw.bin", "--isp", "--fw=/fw.bin"}, "/fw.bin is not written"},
    {{"edid", "--json"}, "name FILE"},
    {{"edid", "--json", "--fix-checksum", "x"}, "--fix-checksum needs -o OUT"},
    {{"edid", "--json", "-o", "y", "x", "x"}, "-o writes one EDID"},
    {{"edid", "--json", "-o", "-", "x"}, "name a file for -o"},
    {{"edid", "--json", "--virtual", "x"}, "name either FILE or a communication library"},
    {{"edid", "--json", "--text", "x"}, "--text"},
    {{"edid", "--json", "--version"}, "ispctl --version"},
    {{"check-plugin", "--json"}, "FILE"},
    {{"log", "summary", "--json"}, "FILE"},
    {{"script", "check", "--json", "-"}, "--json"},
    {{"--json"}, ""},
};

TEST(UsageErrors, Result_event_ends_output_of_every_command_with_json) {
    for (const Row &row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        const ConsoleResult result = RunConsole(row.arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.err, "");
        const Json event = Json::parse(result.out, nullptr, false);
        ASSERT_TRUE(event.is_object()) << result.out;
        EXPECT_EQ(event["event"], "result");
        EXPECT_EQ(event["status"], 2);
        EXPECT_EQ(event["source"], "ispctl");
        EXPECT_THAT(event["meaning"], HasSubstr(row.meaning));
    }
}

TEST(UsageErrors, Misspelt_option_before_library_arguments_keeps_json) {
    const ConsoleResult result =
        RunConsole({"run", "--lib", REAL_LIBRARY, "--verbatm", "--json", "--resetmcu"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(Json::parse(result.out, nullptr, false)["findings"][0]["name"], "ispctl-option");
}

TEST(UsageErrors, Json_after_library_arguments_is_not_an_option_of_ispctl) {
    EXPECT_EQ(RunConsole({"run", "--lib", REAL_LIBRARY, "--resetmcu", "--json"}).out, "");
    EXPECT_EQ(RunConsole({"run", "--lib", REAL_LIBRARY, "--", "--json"}).out, "");
}

TEST(UsageErrors, Standard_output_is_empty_without_json) {
    for (const Words &arguments : {Words{"run"}, Words{"explain"}, Words{"doctor", "more"},
                                   Words{"rnu"}, Words{"run", "--virtul"}}) {
        const ConsoleResult result = RunConsole(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
    }
}

} // namespace
