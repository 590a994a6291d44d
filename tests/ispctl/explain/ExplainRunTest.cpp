// `ispctl explain` in a process of its own, the way a user calls it.

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Words = std::vector<std::string>;

constexpr std::size_t kCommandBytes = 546704;

class ExplainRun : public testing::Test {
  protected:
    ConsoleResult Explain(const Words &arguments) const {
        Words all{"explain"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunConsole(all, ConsoleProcess::Output::Pipes, m_folder.Path());
    }
    ConsoleResult ExplainLine(const Words &own, const Words &line) const {
        Words all{"--lib", REAL_LIBRARY};
        all.insert(all.end(), own.begin(), own.end());
        all.insert(all.end(), line.begin(), line.end());
        return Explain(all);
    }
    json JsonOf(const Words &line) const {
        return json::parse(ExplainLine({"--json"}, line).out);
    }
    std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder.Path()), {}));
    }

    TempFolder m_folder;
    std::string m_firmware = m_folder.Write("fw.bin", std::string(70000, 'x'));
    Words m_line{"--isp", "--comm", "3", "--fw", m_firmware};
};

TEST_F(ExplainRun, Shows_plan_picture_and_record) {
    const ConsoleResult result = ExplainLine({}, m_line);
    EXPECT_THAT(result.out, AllOf(HasSubstr("calls IspFlash of "), HasSubstr("0x000000  A A . ."),
                                  HasSubstr("A " + m_firmware + ": banks 0-1, 0x000000-0x01FFFF\n"),
                                  HasSubstr("enumActionType"), HasSubstr("ENUM_ACTION_ISP (4)"),
                                  Not(HasSubstr("\033"))));
    EXPECT_EQ(result.err, "");
}

TEST_F(ExplainRun, Findings_decide_about_the_status) {
    const ConsoleResult clean = ExplainLine({}, m_line);
    EXPECT_EQ(clean.status, 0);
    EXPECT_THAT(clean.out, HasSubstr("Findings\n  none\n"));
    Words unknown = m_line;
    unknown.push_back("--nosuchoption");
    const ConsoleResult result = ExplainLine({}, unknown);
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.out, HasSubstr("[unknown-option]"));
    EXPECT_EQ(JsonOf(unknown)["findings"][0]["name"], "unknown-option");
    EXPECT_EQ(JsonOf(unknown)["findings"][0]["class"], "error");
    EXPECT_EQ(JsonOf(unknown)["findings"][0]["argument"], m_line.size());
}

TEST_F(ExplainRun, Plan_has_the_steps_of_the_action) {
    const std::string load = "validate-line load-isp-plugin set-callbacks ";
    const std::string end = "unload-isp-plugin report ";
    const std::pair<Words, std::string> cases[] = {
        {m_line, load + "no-signature-check call-action " + end},
        {{"--dumpflash", "--dumplen", "1"}, load + "call-action " + end},
        {{"--erase"}, load + "call-nothing " + end},
        {{"--srstatus"}, load + "call-nothing " + end},
        {{"--sign", "--sw", "--dsmode", "2", "--keypair", "0", "--fw", m_firmware, "--signfile",
          m_folder.Path("s")},
         "validate-line load-sign-plugin sign report "},
        {{"--factoryisp"}, "validate-line "},
    };
    for (const auto &[line, expected] : cases) {
        std::string steps;
        const json document = JsonOf(line);
        for (const json &step : document["plan"]) {
            steps += step["step"].get<std::string>() + " ";
        }
        EXPECT_EQ(steps, expected);
    }
}

TEST_F(ExplainRun, Action_that_can_only_fail_has_no_success) {
    EXPECT_EQ(JsonOf({"--erase"})["plan"].back()["results"], json::array());
    EXPECT_EQ(JsonOf({"--srstatus"})["plan"].back()["results"][0]["code"], 0);
}

TEST_F(ExplainRun, All_shows_fields_with_defaults_too) {
    EXPECT_THAT(ExplainLine({}, m_line).out, Not(HasSubstr("ulProgStartBank")));
    EXPECT_THAT(ExplainLine({"--all"}, m_line).out, HasSubstr("ulProgStartBank"));
}

TEST_F(ExplainRun, Long_list_of_bytes_is_shortened_with_its_length) {
    std::string data = "0x11";
    for (int i = 1; i < 65; ++i) {
        data += ",0x22";
    }
    const auto run = [&](const std::string &list) {
        return ExplainLine({},
                           {"--ispuser", "--fw", m_firmware, "--flagaddr", "1", "--flagdata", list})
            .out;
    };
    EXPECT_THAT(run(data), HasSubstr("... (65 bytes)"));
    EXPECT_THAT(run(data.substr(0, data.size() - 5)), testing::Not(HasSubstr("... (64 bytes)")));
}

TEST_F(ExplainRun, Json_names_records_as_in_the_header) {
    const json document = JsonOf(m_line);
    EXPECT_EQ(document["accepted"], true);
    EXPECT_EQ(document["arguments"], json(m_line));
    EXPECT_EQ(document["records"]["command"]["stMapFw"]["ulFwCount"], 2);
    EXPECT_EQ(document["records"]["command"]["stMapFw"]["stFwBank"][1]["wszFwPath"], m_firmware);
    EXPECT_EQ(document["records"]["sign"]["szFwFile"], "");
    EXPECT_EQ(document["fields"]["command"]["enumCommID"],
              json({{"offset", 28}, {"bytes", "03000000"}, {"text", "3"}, {"default", false}}));
    EXPECT_EQ(document["flash"]["banks"][1]["bank"], 1);
}

TEST_F(ExplainRun, Refused_line_has_status_4_and_no_record) {
    const ConsoleResult result =
        ExplainLine({"--json", "--record", "r"}, {"--isp", "--fw", "/no/such/file"});
    EXPECT_EQ(result.status, 4);
    const json document = json::parse(result.out);
    EXPECT_EQ(document["status"], 4);
    EXPECT_EQ(document["accepted"], false);
    EXPECT_THAT(document["printed"], HasSubstr("/no/such/file"));
    EXPECT_EQ(document["records"], json::object());
    EXPECT_FALSE(m_folder.Exists("r"));
    EXPECT_THAT(result.err, HasSubstr("nothing was written for --record"));
}

TEST_F(ExplainRun, Line_that_cannot_be_passed_has_a_reason) {
    for (const std::string argument : {"\"quoted\"", "\xFF"}) {
        const ConsoleResult result = ExplainLine({"--json"}, {"--isp", "--fw", argument});
        EXPECT_EQ(result.status, 4);
        const json document = json::parse(result.out);
        EXPECT_THAT(document["reason"], HasSubstr("argument 3"));
        EXPECT_EQ(document["command_line"], nullptr);
    }
}

TEST_F(ExplainRun, Overlap_of_a_refused_line_is_drawn) {
    const json document =
        JsonOf({"--isp", "--fw", m_firmware, "--fw1", m_firmware, "--bank1", "1"});
    EXPECT_EQ(document["accepted"], false);
    EXPECT_EQ(document["flash"]["overlaps"], json::array({1}));
}

TEST_F(ExplainRun, Boot_firmware_is_drawn_as_a_file_of_its_own) {
    const json document = JsonOf({"--isp", "--factory", "--newboot", "--hw", "--dsmode", "1",
                                  "--boot", m_firmware, "--fw", m_firmware, "--bank", "8"});
    ASSERT_EQ(document["accepted"], true) << document["printed"];
    EXPECT_EQ(document["flash"]["banks"][0]["boot"], true);
    EXPECT_EQ(document["flash"]["banks"][2]["bank"], 8);
    EXPECT_EQ(document["flash"]["banks"][2]["boot"], false);
}

TEST_F(ExplainRun, Written_record_is_decoded_to_the_same_values) {
    const ConsoleResult written = ExplainLine({"--json", "--record", "r"}, m_line);
    EXPECT_EQ(m_folder.Read("r").size(), kCommandBytes);
    EXPECT_EQ(m_folder.Read("r.sign").size(), 1840U);
    const json records = json::parse(written.out)["records"];
    const ConsoleResult command = Explain({"--json", "--decode", "r"});
    EXPECT_EQ(command.status, 0);
    EXPECT_EQ(json::parse(command.out)["records"]["command"], records["command"]);
    EXPECT_EQ(json::parse(command.out)["flash"], json::parse(written.out)["flash"]);
    EXPECT_EQ(json::parse(Explain({"--json", "--decode", "r.sign"}).out)["records"]["sign"],
              records["sign"]);
}

TEST_F(ExplainRun, Diff_shows_what_another_line_changes) {
    ExplainLine({"--record", "r"}, m_line);
    EXPECT_THAT(ExplainLine({"--diff", "r"}, m_line).out, HasSubstr("\n0 fields differ from r\n"));
    Words other = m_line;
    other[2] = "4";
    EXPECT_THAT(ExplainLine({"--diff", "r"}, other).out,
                HasSubstr("\n1 field differs from r\n  0x001C command enumCommID\n    here: 4\n"
                          "    file: 3\n"));
    EXPECT_THAT(Explain({"--decode", "r.sign", "--diff", "r.sign"}).out,
                HasSubstr("0 fields differ"));
    EXPECT_EQ(Explain({"--decode", "r.sign", "--diff", "r"}).status, 8);
}

TEST_F(ExplainRun, Hostile_record_is_decoded) {
    m_folder.Write("r", std::string(kCommandBytes, '\xFF'));
    const ConsoleResult result = Explain({"--json", "--decode", "r"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(json::parse(result.out)["flash"]["overlaps"], json::array({4294967295U}));
    EXPECT_EQ(Explain({"--decode", "r", "--html", "h", "--svg", "s"}).status, 0);
}

TEST_F(ExplainRun, File_that_is_no_record_has_status_8) {
    m_folder.Write("short", "x");
    m_folder.MakeFolder("folder");
    for (const std::string file : {"short", "missing", "folder", "/dev/zero", "/dev/null"}) {
        for (const Words &own : {Words{"--decode", file}, Words{"--json", "--decode", file}}) {
            const ConsoleResult result = Explain(own);
            EXPECT_EQ(result.status, 8) << file;
            if (own.front() == "--json") {
                EXPECT_EQ(json::parse(result.out)["status"], 8) << file;
                EXPECT_EQ(json::parse(result.out)["stage"], "files") << file;
            } else {
                EXPECT_EQ(result.out, "");
            }
            EXPECT_THAT(result.err, AllOf(StartsWith("ispctl: "), HasSubstr(file)));
        }
        EXPECT_EQ(ExplainLine({"--diff", file}, m_line).status, 8) << file;
    }
}

TEST_F(ExplainRun, Dash_writes_picture_or_page_to_standard_output) {
    ASSERT_EQ(ExplainLine({"--svg", "a.svg", "--html", "a.html", "--record", "r"}, m_line).status,
              0);
    const std::size_t before = FilesInFolder();
    EXPECT_EQ(ExplainLine({"--svg", "-"}, m_line).out, m_folder.Read("a.svg"));
    EXPECT_EQ(ExplainLine({"--html", "-"}, m_line).out, m_folder.Read("a.html"));
    EXPECT_EQ(Explain({"--decode", "r", "--svg", "-"}).out, m_folder.Read("a.svg"));
    EXPECT_EQ(FilesInFolder(), before);
}

TEST_F(ExplainRun, File_that_cannot_be_written_leaves_none_behind) {
    const std::size_t before = FilesInFolder();
    const ConsoleResult result =
        ExplainLine({"--svg", "a.svg", "--html", "missing/a.html", "--record", "r"}, m_line);
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr("missing/a.html cannot be written"));
    const ConsoleResult event = ExplainLine({"--json", "--html", "missing/a.html"}, m_line);
    EXPECT_EQ(json::parse(event.out)["stage"], "files");
    EXPECT_EQ(FilesInFolder(), before);
    if (fs::exists("/dev/full")) {
        EXPECT_EQ(ExplainLine({"--html", "/dev/full"}, m_line).status, 8);
    }
}

TEST_F(ExplainRun, Sentences_are_wrapped_to_80_columns_without_a_terminal) {
    std::istringstream lines(ExplainLine({}, {"--erase", "--zzzzzz"}).out);
    int sentences = 0;
    for (std::string line; std::getline(lines, line);) {
        const bool hasPath = line.find('/') != std::string::npos; // is never broken
        EXPECT_TRUE(line.size() <= 80 || hasPath) << line;
        sentences += line.starts_with("     ") ? 1 : 0;
    }
    EXPECT_GT(sentences, 10);
}

TEST_F(ExplainRun, Corrected_line_is_null_unless_it_corrects_everything) {
    EXPECT_EQ(JsonOf({"--isp", "--fww", m_firmware})["corrected"],
              json({"--isp", "--fw", m_firmware}));
    EXPECT_EQ(JsonOf({"--isp", "--fww", m_firmware, "--zzzzzz"})["corrected"], nullptr);
    EXPECT_EQ(JsonOf(m_line)["corrected"], nullptr);
}

TEST_F(ExplainRun, Usage_errors_have_status_2) {
    EXPECT_EQ(Explain({}).status, 2);
    EXPECT_EQ(Explain({"--decode", "r", "--isp"}).status, 2);
    EXPECT_EQ(Explain({"--lib", "/no/such/library", "--isp"}).status, 2);
    EXPECT_EQ(Explain({"--lib", "x", "--virtual", "--isp"}).status, 2);
}

TEST_F(ExplainRun, Library_without_parser_is_named) {
    const ConsoleResult result = Explain({"--lib", SCRIPTED_LIBRARY, "--isp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("cannot explain a line: it has no _ZN15CCpIspArgsParse"));
}

TEST_F(ExplainRun, Library_that_ends_its_process_is_reported) {
    const ConsoleResult result = Explain({"--lib", ENDING_LIBRARY, "--isp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("the library cannot be examined"));
    const ConsoleResult event = Explain({"--json", "--lib", ENDING_LIBRARY, "--isp"});
    EXPECT_EQ(json::parse(event.out)["stage"], "open");
}

TEST_F(ExplainRun, Terminal_has_colours_unless_NO_COLOR_is_set) {
    if (!ConsoleProcess::CanHaveTerminal()) {
        GTEST_SKIP() << "no terminal can be made here";
    }
    Words arguments{"explain", "--lib", REAL_LIBRARY};
    arguments.insert(arguments.end(), m_line.begin(), m_line.end());
    const auto output = ConsoleProcess::Output::Terminal;
    {
        const EnvGuard on("NO_COLOR", std::nullopt);
        EXPECT_THAT(RunConsole(arguments, output).out, HasSubstr("\033[1;32mA\033[m"));
    }
    const EnvGuard off("NO_COLOR", "1");
    EXPECT_THAT(RunConsole(arguments, output).out,
                AllOf(HasSubstr("0x000000  A A"), Not(HasSubstr("\033"))));
}

} // namespace
