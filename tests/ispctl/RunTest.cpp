#include <gmock/gmock.h>
#include <set>

#include "ConsoleProcess.h"
#include "support/TempFolder.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

struct Status {
    const char *result;
    int status;
};

TEST(Run, Exit_status_tells_the_kinds_of_failure_apart) {
    for (const Status &row : {Status{"0", 0},
                              {"1", 1},
                              {"0x100", 1},
                              {"-1", 4},
                              {"0x4003", 6},
                              {"0xD69", 1},
                              {"0x4002", 1}}) {
        EXPECT_EQ(RunScripted({}, {std::string("result:") + row.result}).status, row.status)
            << row.result;
    }
}

TEST(Run, Usage_error_exits_with_2_and_reason) {
    EXPECT_EQ(RunConsole({}).status, 2);
    EXPECT_EQ(RunConsole({"run"}).err,
              "ispctl: no arguments for the library; see ispctl run --help\n");
    EXPECT_EQ(RunConsole({"run"}).status, 2);
    EXPECT_EQ(RunConsole({"run", "--lib"}).status, 2);
    EXPECT_EQ(RunConsole({"run", "--virtual", "--lib", SCRIPTED_LIBRARY, "x"}).status, 2);
    EXPECT_EQ(RunConsole({"walk"}).status, 2);
    const ConsoleResult missing = RunConsole({"run", "--lib", "/no/such.so", "--isp"});
    EXPECT_EQ(missing.status, 2);
    EXPECT_THAT(missing.err,
                StartsWith("ispctl: cannot open the library: /no/such.so does not exist; "));
}

TEST(Run, File_without_entry_point_is_rejected_as_library) {
    TempFolder folder;
    const ConsoleResult result =
        RunConsole({"run", "--lib", folder.Write("no.so", "text"), "--isp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
}

TEST(Run, Rejected_arguments_never_reach_library) {
    const ConsoleResult result = RunScripted({}, {"out:called", ""});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("ispctl: argument 2 is empty"));
}

TEST(Run, Output_consists_of_messages_and_text_of_library) {
    const ConsoleResult result = RunScripted(
        {}, {"out:one\\n", "message:two", "err:three\\n", "message:four\\n", "out:five\\n"});
    EXPECT_EQ(result.out, "one\ntwo\nfour\nfive\n");
    EXPECT_EQ(result.err, "three\nispctl: success\n");
}

TEST(Run, Order_is_kept_if_both_streams_are_one) {
    const ConsoleResult result = RunScripted(
        {},
        {"out:a\\n", "err:b\\n", "message:c", "out:d\\n", "progress:50", "err:e\\n", "result:7"},
        ConsoleProcess::Output::OnePipe);
    EXPECT_EQ(result.out, "a\nb\nc\nd\nprogress 50 %\ne\nispctl: failed with 0x7 at 50 %: error "
                          "code of the plug-in (see its documentation); "
                          "the state of the device is unknown\n");
}

TEST(Run, Result_message_describes_code) {
    EXPECT_EQ(
        RunScripted({}, {"result:0x4003"}).err,
        "ispctl: failed with 0x4003: the firmware signature is invalid; nothing was "
        "done\nispctl: use the signature and the key that were delivered with this firmware\n");
    EXPECT_EQ(
        RunScripted({}, {"result:-1"}).err,
        "ispctl: failed with -1: the command line was refused; nothing was done\nispctl: read the "
        "message printed before the result; the page options.md says what each option needs\n");
    EXPECT_EQ(RunScripted({}, {"progress:100", "result:6"}).err,
              "progress 100 %\n"
              "ispctl: failed with 0x6: the plug-in does not offer the function of this action; "
              "the state of the device is unknown\n"
              "ispctl: use a plug-in that exports the function, or another action\n");
}

TEST(Run, Progress_outside_terminal_is_one_line_per_ten_percent) {
    const ConsoleResult result =
        RunScripted({}, {"progress:0", "progress:1", "progress:9", "progress:10", "progress:10",
                         "progress:25", "progress:99", "progress:100"});
    EXPECT_EQ(result.err, "progress 0 %\nprogress 10 %\nprogress 25 %\nprogress 99 %\n"
                          "progress 100 %\nispctl: success\n");
    EXPECT_EQ(result.out, "");
}

TEST(Run, Options_after_first_library_argument_go_to_library) {
    const ConsoleResult result = RunScripted({}, {"out:x\\n", "--json", "--virtual", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "x\n");
}

TEST(Run, Log_contains_times_and_all_events) {
    TempFolder folder;
    const std::string log = folder.Path("run.log");
    const ConsoleResult result =
        RunScripted({"--log", log}, {"out:a\\eb\\n", "progress:5", "err:no end", "message:m",
                                     "out:\\xFF\\n", "result:0xD67"});
    EXPECT_EQ(result.out, "a\\x1Bb\nm\n\\xFF\n");
    std::string text = folder.Read("run.log");
    std::vector<std::string> lines;
    std::set<std::string> runs;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos;
         text.erase(0, end + 1)) {
        const std::string line = text.substr(0, end);
        EXPECT_THAT(line.substr(0, 24),
                    MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}[.][0-9]{3}Z"));
        const std::size_t kind = line.find(' ', 25) + 1;
        EXPECT_THAT(line.substr(25, kind - 26), MatchesRegex("[0-9a-f]{16}/[0-9]+"));
        runs.insert(line.substr(25, kind - 26));
        lines.push_back(line.substr(kind));
    }
    EXPECT_THAT(lines, testing::ElementsAre(
                           StartsWith("library  /"), StartsWith("command  ispctl out:a\\eb\\n"),
                           "console  a\\x1Bb", "progress 5", "console  no end", "message  m",
                           "console  \\xFF",
                           "result   0xD67 the ISP plug-in PlugIn/libIsp.dylib cannot be loaded; "
                           "the state of the device is unknown",
                           HasSubstr("PlugIn/libIsp.dylib does not exist"),
                           HasSubstr("use --virtual for the virtual scaler")));
    EXPECT_EQ(runs.size(), 1U);
}

TEST(Run, Log_appends_to_existing_file) {
    TempFolder folder;
    const std::string log = folder.Path("run.log");
    RunScripted({"--log", log}, {"message:first"});
    RunScripted({"--log=" + log}, {"message:second"});
    EXPECT_THAT(folder.Read("run.log"), HasSubstr("message  first"));
    EXPECT_THAT(folder.Read("run.log"), HasSubstr("message  second"));
}

TEST(Run, Unwritable_log_ends_run_before_library_is_called) {
    const ConsoleResult result = RunScripted({"--log", "/no/such/folder/log"}, {"out:called"});
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "ispctl: cannot write the log /no/such/folder/log: "
                          "No such file or directory\n");
}

TEST(Run, Hint_points_out_file_in_current_directory) {
    TempFolder here;
    here.Write("fw.bin", "x");
    const ConsoleResult result =
        RunConsole({"run", "--lib", SCRIPTED_LIBRARY, "--isp", "--fw", "fw.bin"},
                   ConsoleProcess::Output::Pipes, here.Path());
    EXPECT_THAT(result.err, testing::AllOf(HasSubstr("[relative-path-elsewhere]"),
                                           HasSubstr(here.Path("fw.bin"))));
}

TEST(Run, Relative_library_path_starts_at_current_directory) {
    TempFolder here;
    const ConsoleResult result =
        RunConsole({"run", "--lib", "lib.so", "--isp"}, ConsoleProcess::Output::Pipes, here.Path());
    EXPECT_THAT(result.err, HasSubstr(here.Path("lib.so")));
}

TEST(Run, Output_before_crash_of_plugin_is_shown) {
    constexpr const char *kEnd = "ispctl: failed: SIGABRT ended the process of the library and "
                                 "its plug-ins; the state of the device is unknown";
    constexpr const char *kAdvice = "ispctl: run the same command again before the device is "
                                    "switched off or disconnected";
    const ConsoleResult plain = RunScripted({}, {"err:last words", "abort"});
    EXPECT_EQ(plain.status, 7);
    EXPECT_EQ(plain.err, std::string("last words\n") + kEnd + "\n" + kAdvice + "\n");
    for (const char *pause : {"sleep:0", "sleep:50", "sleep:400"}) {
        const ConsoleResult json = RunScripted({"--json"}, {"err:last words", pause, "abort"});
        EXPECT_EQ(json.status, 7);
        EXPECT_THAT(json.out, StartsWith("{\"event\":\"console\",\"text\":\"last words\"}\n"
                                         "{\"event\":\"result\",\"status\":7,\"code\":null,"));
        EXPECT_EQ(json.err, "");
    }
    if (!ConsoleProcess::CanHaveTerminal()) {
        GTEST_SKIP() << "no terminal can be made here";
    }
    EXPECT_THAT(
        RunScripted({}, {"progress:100", "out:last words\\n", "abort"},
                    ConsoleProcess::Output::Terminal)
            .out,
        EndsWith("last words\r\nispctl: failed: SIGABRT ended the process of the library and its "
                 "plug-ins; the\r\n  state of the device is unknown\r\nispctl: run the same "
                 "command again before the device is switched off or\r\n  "
                 "disconnected\r\n"));
}

TEST(Run, Crash_after_result_fails_run) {
    const ConsoleResult result = RunScripted({}, {"atexit:3", "result:0"});
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(result.err,
              "ispctl: failed: the library returned success; after that the plug-in ended the "
              "process (exit status 3); the state of the device is unknown\n"
              "ispctl: run the same command again before the device is switched off or "
              "disconnected\n");
}

TEST(Run, Version_and_help_exit_with_0) {
    EXPECT_THAT(RunConsole({"--version"}).out, MatchesRegex("ispctl [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_EQ(RunConsole({"--version"}).status, 0);
    const ConsoleResult help = RunConsole({"run", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, HasSubstr("ispctl run --virtual --isp --fw"));
    EXPECT_THAT(help.out, HasSubstr("ispctl run --json"));
}

TEST(Run, Real_library_rejects_line_and_prints_reason) {
    const ConsoleResult result = RunConsole({"run", "--verbatim", "--verify", "--erase"});
    EXPECT_EQ(result.status, 4);
    EXPECT_EQ(result.out, "Action type undefined or more than one type!\n");
    EXPECT_THAT(result.err, HasSubstr("ispctl: failed with -1: the command line was refused; "
                                      "nothing was done\n"));
}

} // namespace
