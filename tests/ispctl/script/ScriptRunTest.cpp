#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;

class ScriptRun : public testing::Test {
  protected:
    ConsoleResult Run(const std::string &text) {
        const std::string script = m_folder.Write("a.script", text);
        return RunConsole(
            {"script", "run", "--lib", REAL_LIBRARY, "--comm", RECORDING_COMM, "--text", script});
    }
    TempFolder m_folder;
};

TEST_F(ScriptRun, Records_reach_library_and_reads_are_shown) {
    const ConsoleResult result = Run("const kPanel = 0x0120\nScalerStop\nWriteRegEx kPanel, 0x5A\n"
                                     "WriteRegs 0x10, 1, {0x11, 0x22}\nReadReg 0x33\n"
                                     "ReadRegs 0x44, 3, 0\nI2CRead 0xA0, 0x80\nScalerRun\n");
    EXPECT_EQ(result.err, "comm Initiallize\ncomm ScalerStop\ncomm WriteRegEx 120 5A\n"
                          "comm WriteRegs 10 2 1 11 22\ncomm ReadReg 33\ncomm ReadRegs 44 3 0\n"
                          "comm I2CRead A0 80 1\ncomm ScalerRun\nispctl: success\n");
    EXPECT_EQ(result.out, "0000  A1 A2 A3 A4 A5                                   .....\n");
    EXPECT_EQ(result.status, 0);
}

TEST_F(ScriptRun, Failing_call_ends_run_after_earlier_reads_are_shown) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "WriteReg");
    const ConsoleResult result = Run("ReadReg 1\nWriteReg 1, 2\nReadReg 3\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "0000  A1                                               .\n");
    EXPECT_EQ(result.err, "comm Initiallize\ncomm ReadReg 1\ncomm WriteReg 1 2\n"
                          "ispctl: failed with 0x9: status of the communication library\n");
}

TEST_F(ScriptRun, Status_that_is_also_a_result_of_library_has_both_meanings) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "WriteReg");
    const std::pair<const char *, const char *> rows[] = {
        {"1", "0x1: unknown opcode, or status 1 of the communication library"},
        {"2", "0x2: unsupported opcode, or status 2 of the communication library"},
        {"3", "0x3: a poll used up its tries, or status 3 of the communication library"},
        {"4", "0x4: status of the communication library"},
        {"6", "0x6: the communication library lacks a function that the script needs"}};
    for (const auto &[number, words] : rows) {
        const EnvGuard status("RECORDING_COMM_STATUS", number);
        const ConsoleResult result = Run("WriteReg 1, 2\n");
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr(std::string("ispctl: failed with ") + words));
    }
}

TEST_F(ScriptRun, Request_that_bus_rejects_is_named_by_line) {
    for (const char *function : {"I2CWrite", "I2CCurrentRead"}) {
        const EnvGuard fails("RECORDING_COMM_FAILS", function);
        const ConsoleResult result = Run("ScalerStop\nddc get 0x10\nScalerRun\n");
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr("ispctl: failed in line 2 (ddc): status 0x9"));
        EXPECT_THAT(result.err, testing::Not(HasSubstr("ScalerRun")));
    }
}

TEST_F(ScriptRun, Channel_that_cannot_be_selected_runs_no_script) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "SetCommByID");
    const std::string script = m_folder.Write("a.bin", "\x01");
    const ConsoleResult result = RunConsole({"script", "run", "--lib", REAL_LIBRARY, "--comm",
                                             RECORDING_COMM, "--channel", "6", script});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "comm Initiallize\ncomm SetCommByID 6\n"
                          "ispctl: cannot select channel 6 (status 0x9)\n");
}

TEST_F(ScriptRun, Library_that_cannot_be_used_is_usage_error) {
    const std::string script = m_folder.Write("a.bin", "\x01");
    const ConsoleResult name =
        RunConsole({"script", "run", "--lib", REAL_LIBRARY, "--comm", "/a\xFF", script});
    EXPECT_EQ(name.status, 2);
    EXPECT_THAT(name.err, HasSubstr("is not valid UTF-8"));
    const ConsoleResult library =
        RunConsole({"script", "run", "--lib", RECORDING_COMM, "--comm", RECORDING_COMM, script});
    EXPECT_EQ(library.status, 2);
    EXPECT_THAT(library.err, HasSubstr("is not a compatible ScalerIsp library: symbol "));
}

#if !defined(__SANITIZE_ADDRESS__) // which turns the signal into an exit status
TEST_F(ScriptRun, Library_that_aborts_fails_run) {
    const EnvGuard aborts("RECORDING_COMM_ABORTS", "ScalerRun");
    const ConsoleResult result = Run("ScalerRun");
    EXPECT_EQ(result.status, 7);
    EXPECT_THAT(result.err, HasSubstr("SIGABRT ended the process"));
}
#endif

TEST_F(ScriptRun, First_errors_are_named_and_others_are_counted) {
    std::string text;
    for (int i = 0; i < 1003; ++i) {
        text += "Rubbish\n";
    }
    const ConsoleResult words = Run(text);
    EXPECT_EQ(words.status, 1);
    EXPECT_THAT(words.err, HasSubstr("a.script:1000:"));
    EXPECT_THAT(words.err, testing::Not(HasSubstr("a.script:1001:")));
    EXPECT_THAT(words.err, HasSubstr(": 3 more lines have errors"));
}

TEST_F(ScriptRun, Check_counts_problems_and_shows_notes) {
    const std::string many = m_folder.Write("many.bin", "\x01" + std::string(1500, '\x0A'));
    const ConsoleResult problems = RunConsole({"script", "check", many});
    EXPECT_EQ(problems.status, 1);
    EXPECT_THAT(problems.err, HasSubstr(many + ": offset 1000: opcode 10 is not supported\n"));
    EXPECT_THAT(problems.err, testing::Not(HasSubstr("offset 1001:")));
    EXPECT_THAT(problems.err, HasSubstr(many + ": 500 more problems\n"));
    const std::string skips = m_folder.Write(
        "skips.bin", std::string("\x17\x01\0\x02\x01\x1A\0\0\0\x01\0\0\0\x02\x63\x63\x01", 17));
    const ConsoleResult notes = RunConsole({"script", "check", skips});
    EXPECT_THAT(notes.err, HasSubstr(skips + ": note: offset 5: Write32BitRegEx follows"));
}

TEST_F(ScriptRun, Poll_without_match_is_described) {
    const ConsoleResult result = Run("PollMcuReg 1, 0xFF, 0, 2, 0");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("ispctl: failed with 0x3: a poll used up its tries"));
}

TEST_F(ScriptRun, Channel_is_selected_before_script_runs) {
    const std::string script = m_folder.Write("a.bin", "\x01");
    const ConsoleResult result = RunConsole({"script", "run", "--lib", REAL_LIBRARY, "--comm",
                                             RECORDING_COMM, "--channel", "6", script});
    EXPECT_EQ(result.err, "comm Initiallize\ncomm SetCommByID 6\ncomm ScalerRun\n"
                          "ispctl: success\n");
}

TEST_F(ScriptRun, Failed_initialisation_of_library_runs_no_script) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "Initiallize");
    const ConsoleResult result = Run("ScalerRun");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.err,
        "comm Initiallize\nispctl: cannot initialise the communication library (status 0x9)\n");
}

TEST_F(ScriptRun, Library_that_exits_fails_run) {
    const EnvGuard exits("RECORDING_COMM_EXITS", "ScalerRun");
    const ConsoleResult result = Run("ScalerStop\nScalerRun\nScalerStop");
    EXPECT_EQ(result.status, 7);
    EXPECT_EQ(
        result.err,
        "comm Initiallize\ncomm ScalerStop\ncomm ScalerRun\n"
        "ispctl: failed: the process ended (exit status 0) while the communication library was "
        "in use; the state of the device is unknown\n");
}

TEST_F(ScriptRun, Script_with_too_many_reads_is_rejected) {
    std::string text = "const kAll = 0xFFFF\n";
    for (int i = 0; i < 1100; ++i) {
        text += "ReadRegs 0x44, kAll, 0\n";
    }
    const ConsoleResult result = Run(text);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "ispctl: the script was not run: it reads 72088500 bytes, more than the "
                          "maximum of 67108864\n");
}

TEST_F(ScriptRun, Script_with_problem_is_not_run) {
    const ConsoleResult result = Run("ScalerRun\nbytes {3, 1}");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, m_folder.Path("a.script") +
                              ": offset 1: WriteReg needs 3 bytes, only 2 left\n"
                              "ispctl: the script was not run\n");
}

TEST_F(ScriptRun, Usage_error_exits_with_2) {
    const std::string script = m_folder.Write("a.bin", "\x01");
    EXPECT_EQ(RunConsole({"script"}).status, 2);
    EXPECT_EQ(RunConsole({"script", "walk"}).status, 2);
    EXPECT_EQ(RunConsole({"script", "list"}).status, 2);
    EXPECT_EQ(RunConsole({"script", "list", "/no/file"}).status, 8);
    EXPECT_EQ(RunConsole({"script", "run", script}).err,
              "ispctl: no communication library: use --comm LIB or --virtual\n");
    EXPECT_EQ(RunConsole({"script", "run", "--virtual", "--comm", "x", script}).status, 2);
    const ConsoleResult missing =
        RunConsole({"script", "run", "--lib", REAL_LIBRARY, "--comm", "/no/comm", script});
    EXPECT_EQ(missing.status, 5);
    EXPECT_THAT(missing.err, HasSubstr("ispctl: cannot load /no/comm"));
}

TEST_F(ScriptRun, Named_pipe_without_writer_is_unreadable) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const ConsoleResult result = RunConsole({"script", "check", pipe});
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.err, "ispctl: cannot read " + pipe + ": nobody writes to this pipe\n");
}

TEST_F(ScriptRun, Assembled_file_replaces_older_one_whole) {
    const std::string text = m_folder.Write("a.script", "WriteReg 0x10, 0x20\n");
    const std::string bytes = m_folder.Write("a.bin", "before");
    const std::string older = m_folder.Path("older");
    std::filesystem::create_hard_link(bytes, older);
    EXPECT_EQ(RunConsole({"script", "assemble", text, "-o", bytes}).status, 0);
    EXPECT_EQ(m_folder.Read("a.bin"), "\x03\x10\x20");
    EXPECT_EQ(m_folder.Read("older"), "before"); // never truncated
    EXPECT_EQ(RunConsole({"script", "assemble", text, "-o", m_folder.Path("no/a")}).status, 8);
}

TEST_F(ScriptRun, Assembled_bytes_never_replace_their_text) {
    const std::string text = m_folder.Write("a.script", "WriteReg 0x10, 0x20\n");
    EXPECT_EQ(RunConsole({"script", "assemble", text, "-o", text}).status, 2);
    EXPECT_EQ(m_folder.Read("a.script"), "WriteReg 0x10, 0x20\n");
    EXPECT_EQ(RunConsole({"script", "assemble", text, "-o", "-"}).out, "\x03\x10\x20");
}

TEST_F(ScriptRun, Assembled_script_passes_list_and_check) {
    const std::string text = m_folder.Write("a.script", "WriteReg 0x10, 0x20\nReadReg 1 // read\n");
    const std::string bytes = m_folder.Path("a.bin");
    EXPECT_EQ(RunConsole({"script", "assemble", text}).out, "0x03, 0x10, 0x20,\n0x05, 0x01,\n");
    EXPECT_EQ(RunConsole({"script", "assemble", text, "-o", bytes}).status, 0);
    EXPECT_EQ(m_folder.Read("a.bin"), "\x03\x10\x20\x05\x01");
    EXPECT_EQ(RunConsole({"script", "list", bytes}).out,
              "WriteReg addr = 0x10, value = 0x20\nReadReg addr = 0x01\n");
    for (const std::vector<std::string> &file :
         {std::vector<std::string>{bytes}, std::vector<std::string>{"--text", text}}) {
        std::vector<std::string> arguments = {"script", "check"};
        arguments.insert(arguments.end(), file.begin(), file.end());
        const ConsoleResult check = RunConsole(arguments);
        EXPECT_EQ(check.out, "5 bytes, 2 records, 1 bytes read, 0 problems\n");
        EXPECT_EQ(check.status, 0);
    }
}

TEST_F(ScriptRun, Errors_name_file_line_and_column) {
    const std::string text = m_folder.Write("a.script", "ScalerRun\nWriteReg 1\n");
    const ConsoleResult result = RunConsole({"script", "assemble", text});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, text + ":2:1: missing operand value of WriteReg\n");
}

TEST_F(ScriptRun, All_errors_of_text_are_reported_at_once) {
    const std::string text = m_folder.Write("a.script", "WriteReg 1\nScalerRun\nWait x\n");
    for (const char *command : {"assemble", "list", "check"}) {
        const ConsoleResult result = RunConsole({"script", command, text});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, text + ":1:1: missing operand value of WriteReg\n" + text +
                                  ":3:6: unknown constant x\n");
    }
}

TEST_F(ScriptRun, Text_and_bytes_need_no_option) {
    const std::string text = m_folder.Write("a.script", "WriteReg 1, 2\n");
    const std::string bytes = m_folder.Write("a.bin", "\x03\x01\x02");
    for (const std::string &file : {text, bytes}) {
        EXPECT_EQ(RunConsole({"script", "check", file}).out,
                  "3 bytes, 1 records, 0 bytes read, 0 problems\n");
        EXPECT_EQ(RunConsole({"script", "list", file}).out, "WriteReg addr = 0x01, value = 0x02\n");
    }
    const ConsoleResult forced = RunConsole({"script", "check", "--binary", text});
    EXPECT_EQ(forced.status, 1);
    EXPECT_THAT(forced.err, HasSubstr("offset 0: unknown opcode 0x57"));
}

TEST_F(ScriptRun, Bytes_with_problems_say_why_they_are_no_text) {
    const std::string file = m_folder.Write("a.script", "Wait 1\n\x01");
    const ConsoleResult result = RunConsole({"script", "check", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("was read as bytes, because its byte 7"));
    EXPECT_THAT(result.err, HasSubstr("--text"));
}

TEST_F(ScriptRun, Request_reaches_bus_between_records) {
    const ConsoleResult result = Run("ReadReg 1\nddc set 0x10 50\nReadReg 2\nddc get 0x10\n");
    EXPECT_EQ(result.out, "0000  A1                                               .\n"
                          "0000  A2                                               .\n");
    EXPECT_EQ(result.err,
              "comm Initiallize\ncomm ReadReg 1\ncomm I2CWrite 6E 51 6 84 03 10 00 32 9A\n"
              "comm ReadReg 2\ncomm I2CWrite 6E 51 4 82 01 10 AC\ncomm I2CCurrentRead 6E B\n"
              "ispctl: failed in line 4 (ddc): the display sends no DDC/CI answer\n");
    EXPECT_EQ(result.status, 1);
}

TEST_F(ScriptRun, Request_has_no_bytes) {
    const std::string text = m_folder.Write("a.script", "ScalerRun\n  ddc get 0x10\n");
    for (const char *command : {"assemble", "list"}) {
        const ConsoleResult result = RunConsole({"script", command, text});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err,
                  text + ":2:3: no record can express ddc; ispctl script run sends it\n");
    }
    EXPECT_EQ(RunConsole({"script", "check", text}).out,
              "1 bytes, 1 records, 1 DDC/CI requests, 0 bytes read, 0 problems\n");
}

TEST_F(ScriptRun, Status_comes_with_words_beside_library) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "WriteReg");
    const std::string comm = m_folder.Path("libComm.dylib");
    std::filesystem::copy_file(RECORDING_COMM, comm);
    m_folder.Write("libComm.codes", "9 the cable is not connected | connect it\n");
    const std::string script = m_folder.Write("a.script", "WriteReg 1, 2\n");
    const ConsoleResult result =
        RunConsole({"script", "run", "--lib", REAL_LIBRARY, "--comm", comm, script});
    EXPECT_THAT(result.err,
                HasSubstr("ispctl: failed with 0x9: status of the communication library: the "
                          "cable is not connected; connect it\n"));
}

} // namespace
