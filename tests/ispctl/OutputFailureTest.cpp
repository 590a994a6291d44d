// What the console does when it cannot write, cannot open and cannot start what it needs.

#include <gmock/gmock.h>

#include "ShellRun.h"
#include "support/TempFolder.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char *kFull = "ispctl: standard output could not be written completely: "
                              "No space left on device\n";

class OutputFailure : public testing::Test {
  protected:
    TempFolder m_folder;
};

TEST_F(OutputFailure, Every_command_fails_if_output_is_full_or_closed) {
    const std::string script = m_folder.Write("a.script", "ScalerRun\n");
    const std::string bytes = m_folder.Write("a.bin", "\x01");
    const std::string log = m_folder.Write("log", "");
    for (const std::string &command :
         {std::string("--version"), std::string("--help"), std::string("run --help"),
          std::string("help explain"), "script assemble " + script, "script list " + bytes,
          "script check " + bytes, std::string("explain --lib $REAL --resetmcu"),
          std::string("explain --json --lib $REAL --resetmcu"), std::string("paths"),
          std::string("paths --json"), "log summary " + log, "log summary --json " + log,
          std::string("run --verbatim --lib $SCRIPTED 'out:x\\n'"),
          std::string("run --json --verbatim --lib $SCRIPTED progress:1")}) {
        SCOPED_TRACE(command);
        const ConsoleResult full = RunShell("$ISPCTL " + command + " >/dev/full");
        EXPECT_EQ(full.status, 8);
        EXPECT_THAT(full.err, EndsWith(kFull));
        const ConsoleResult closed = RunShell("$ISPCTL " + command + " >&-");
        EXPECT_EQ(closed.status, 8);
        EXPECT_THAT(closed.err, EndsWith("ispctl: standard output could not be written completely: "
                                         "Bad file descriptor\n"));
    }
}

// What a command says about its input counts more than that nobody can read it.
TEST_F(OutputFailure, Closed_output_is_reported_beside_another_failure) {
    const std::string edid = m_folder.Write("edid.txt", "00ffffffffffff00");
    for (const std::string &command : {"edid --json " + edid, std::string("doctor --lib /no/lib"),
                                       std::string("doctor --json --lib /no/lib")}) {
        SCOPED_TRACE(command);
        const ConsoleResult open = RunShell("$ISPCTL " + command);
        const ConsoleResult closed = RunShell("$ISPCTL " + command + " >&-");
        EXPECT_NE(open.status, 0);
        EXPECT_EQ(closed.status, open.status);
        EXPECT_THAT(closed.err, HasSubstr("Bad file descriptor"));
    }
}

TEST_F(OutputFailure, Run_continues_to_end_if_output_fails) {
    const std::string log = m_folder.Path("log");
    const ConsoleResult result = RunShell(
        "$ISPCTL run --log " + log +
        " --verbatim --lib $SCRIPTED 'out:x\\n' progress:50 message:m progress:100 >/dev/full");
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.err, std::string("progress 50 %\nprogress 100 %\nispctl: success\n") + kFull);
    EXPECT_THAT(m_folder.Read("log"), HasSubstr("message  m\n"));
    EXPECT_THAT(m_folder.Read("log"), HasSubstr("ispctl   standard output could not be written"));
}

TEST_F(OutputFailure, Full_standard_error_is_reported_on_standard_output) {
    const ConsoleResult result = RunShell(
        "$ISPCTL run --verbatim --lib $SCRIPTED 'out:x\\n' progress:5 message:m 2>/dev/full");
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.out, "x\nm\nispctl: standard error could not be written completely: No space "
                          "left on device\n");
    EXPECT_EQ(RunShell("$ISPCTL walk 2>/dev/full").status, 2);
    const ConsoleResult json =
        RunShell("$ISPCTL run --json --verbatim --lib $SCRIPTED 'raise:9' 2>/dev/full");
    EXPECT_THAT(json.out, StartsWith("{\"event\":\"result\""));
}

TEST_F(OutputFailure, Full_log_is_reported_and_fails_run) {
    const ConsoleResult result =
        RunShell("$ISPCTL run --log /dev/full --verbatim --lib $SCRIPTED message:done");
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.out, "done\n");
    EXPECT_EQ(
        result.err,
        "ispctl: writing the log /dev/full failed; it is incomplete: No space left on device\n"
        "ispctl: success\n");
}

TEST_F(OutputFailure, File_size_limit_does_not_terminate_ispctl) {
    const std::string log = m_folder.Path("log");
    const ConsoleResult result =
        RunShell("ulimit -f 1; $ISPCTL run --log " + log +
                 " --verbatim --lib $SCRIPTED many:100 message:done | tail -1");
    EXPECT_EQ(result.out, "done\n");
    EXPECT_THAT(result.err, HasSubstr("it is incomplete: File too large\n"));
}

TEST_F(OutputFailure, Log_pipe_without_reader_is_rejected_without_waiting) {
    const std::string log = m_folder.Path("pipe");
    const ConsoleResult result = RunShell("mkfifo " + log + "; $ISPCTL run --log " + log +
                                          " --verbatim --lib $SCRIPTED 'out:called\\n'");
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("ispctl: cannot write the log " + log + ": "));
}

TEST_F(OutputFailure, Closed_output_pipe_is_reported) {
    const ConsoleResult result = RunShell("( $ISPCTL run --json --verbatim --lib $SCRIPTED "
                                          "sleep:300 many:5000; echo $? >&2 ) | head -c 0");
    EXPECT_THAT(result.err, EndsWith("could not be written completely: Broken pipe\n8\n"));
}

TEST_F(OutputFailure, Closed_standard_descriptors_do_not_keep_run_from_ending) {
    const struct {
        const char *closed;
        int status;
    } kCases[] = {{"<&-", 0}, {"2>&-", 0}, {">&-", 8}, {"<&- >&- 2>&-", 8}};
    for (const auto &row : kCases) {
        SCOPED_TRACE(row.closed);
        const std::string file = m_folder.Path("called");
        EXPECT_EQ(RunShell(std::string("$ISPCTL run --log ") + file +
                           " --verbatim --lib $SCRIPTED 'out:x\\n' message:m " + row.closed)
                      .status,
                  row.status);
        EXPECT_THAT(m_folder.Read("called"), HasSubstr("message  m\n"));
    }
}

TEST_F(OutputFailure, Library_that_exits_while_loading_counts_as_not_called) {
    const ConsoleResult result = RunShell("$ISPCTL run --json --lib $ENDING --isp");
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, StartsWith("{\"event\":\"result\",\"status\":2,"));
    EXPECT_EQ(result.err, "ispctl: the library was not called: opening it ended its process "
                          "(exit status 0)\n");
}

TEST_F(OutputFailure, Script_is_read_from_standard_input) {
    const std::string script = m_folder.Write("a.script", "ScalerRun\n");
    EXPECT_EQ(RunShell("$ISPCTL script assemble - <" + script).out,
              RunShell("$ISPCTL script assemble " + script).out);
    EXPECT_EQ(RunShell("echo ScalerRun | $ISPCTL script list -").out, "ScalerRun\n");
    EXPECT_EQ(RunShell("echo ScalerRun | $ISPCTL script check -").status, 0);
    EXPECT_EQ(RunShell("echo ScalerWalk | $ISPCTL script check -").err,
              "standard input:1:1: unknown statement ScalerWalk\n");
    EXPECT_THAT(RunShell("$ISPCTL script check - <" + m_folder.Path()).err,
                StartsWith("ispctl: cannot read standard input: "));
}

TEST_F(OutputFailure, Endless_input_is_rejected_with_size_limit) {
    for (const std::string &command :
         {std::string("script list"), std::string("script assemble"), std::string("script check"),
          std::string("script run --virtual")}) {
        const ConsoleResult result = RunShell("$ISPCTL " + command + " /dev/zero");
        EXPECT_EQ(result.status, 8);
        EXPECT_EQ(result.err, "ispctl: /dev/zero is too large: at most 16777216 bytes (16384 KiB) "
                              "are read\n");
    }
    EXPECT_EQ(RunShell("$ISPCTL edid /dev/zero").err,
              "ispctl: /dev/zero is too large: at most 32768 bytes (32 KiB) are read\n");
}

TEST_F(OutputFailure, Command_library_process_is_rejected_if_given_by_user) {
    EXPECT_EQ(RunShell("$ISPCTL library-process").status, 2);
    EXPECT_EQ(RunShell("$ISPCTL library-process 98 99 run --verbatim --lib $SCRIPTED x").err,
              "ispctl: this command is for internal use only\n");
}

// The arguments of both processes are nearly the same: find the longest ones that the shell can
// start the console with, which are too long for the second process.
TEST_F(OutputFailure, Process_that_cannot_start_is_reported_before_library_call) {
    const auto run = [](int length) {
        return RunShell(
            "ulimit -s 256; A=$(head -c 60000 /dev/zero | tr '\\0' x); B=$(head -c " +
            std::to_string(length) +
            " /dev/zero | tr '\\0' x); exec $ISPCTL run --verbatim --lib $SCRIPTED $A $B");
    };
    int good = 1000;
    int tooLong = 100000;
    while (tooLong - good > 1) {
        const int middle = (good + tooLong) / 2;
        (run(middle).status <= 4 ? good : tooLong) = middle;
    }
    const ConsoleResult result = run(good);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "ispctl: cannot start the library's process: Argument list too long\n");
}

// A sanitizer needs descriptors and all the address space there is.
#if !defined(__SANITIZE_ADDRESS__)
// Every limit from too small for anything to large enough: the library is called and everything is
// told, or it is not called and the reason is.
TEST_F(OutputFailure, Missing_descriptors_are_reported_before_library_is_called) {
    int refused = 0;
    for (int limit = 4; limit <= 24; ++limit) {
        SCOPED_TRACE(limit);
        const ConsoleResult result = RunShell(
            "exec 9>&-; ulimit -n " + std::to_string(limit) + "; $ISPCTL run --json --log " +
            m_folder.Path("log") + " --verbatim --lib $SCRIPTED 'out:called\\n' progress:1");
        if (result.status == 0) {
            EXPECT_THAT(result.out, HasSubstr("\"event\":\"result\",\"status\":0,\"code\":0"));
        } else {
            EXPECT_THAT(result.out, testing::Not(HasSubstr("called")));
            // The loader speaks itself where not even this program can be opened.
            EXPECT_THAT(result.err,
                        testing::AnyOf(HasSubstr("oo many open files"), HasSubstr("Error 24")));
            EXPECT_THAT(result.status, testing::AnyOf(2, 8, 127));
            ++refused;
        }
    }
    EXPECT_GT(refused, 4);
    EXPECT_LT(refused, 18);
}

TEST_F(OutputFailure, Out_of_memory_prints_message) {
    const ConsoleResult result = RunShell("ulimit -v 60000; $ISPCTL script list /dev/zero");
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, StartsWith("ispctl: "));
}

#endif

} // namespace
