#include <csignal>
#include <gmock/gmock.h>
#include <unistd.h>

#include "ConsoleProcess.h"
#include "ShellRun.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kWarning =
    "ispctl: stopping now can leave the device without firmware; press "
    "Ctrl-C again to stop immediately\n";

TEST(Interrupt, First_interrupt_prints_warning_only) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:500", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_THAT(process.Err(), HasSubstr(kWarning));
    EXPECT_EQ(process.Out(), "done\n");
}

TEST(Interrupt, Second_interrupt_exits_at_once_with_130) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:60000"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText(kWarning));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
}

TEST(Interrupt, Json_output_does_not_contain_interrupt_warning) {
    ConsoleProcess process(ScriptedArguments({"--json"}, {"progress:1", "sleep:60000"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText(kWarning));
    EXPECT_THAT(process.Out(), Not(HasSubstr("stopping")));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
}

TEST(Interrupt, Interrupt_does_not_shorten_sleep_of_plugin) {
    ConsoleProcess process(
        ScriptedArguments({}, {"progress:1", "sleep:400", "sleep:400", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    const auto begin = std::chrono::steady_clock::now();
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(600));
}

TEST(Interrupt, Termination_signal_is_reported_and_run_continues) {
    for (const auto &[signal, name] : {std::pair(SIGTERM, "SIGTERM"), std::pair(SIGHUP, "SIGHUP"),
                                       std::pair(SIGQUIT, "SIGQUIT")}) {
        SCOPED_TRACE(name);
        ConsoleProcess process(
            ScriptedArguments({}, {"progress:1", "sleep:400", "sleep:100", "message:done"}));
        ASSERT_TRUE(process.WaitForText("progress"));
        process.Signal(signal);
        ASSERT_TRUE(process.WaitForText(std::string("ispctl: ") + name +
                                        ": the run continues, because stopping now can leave the "
                                        "device without firmware"));
        process.Signal(signal);
        EXPECT_EQ(process.Finish(), 0);
        EXPECT_EQ(process.Out(), "done\n");
    }
}

TEST(Interrupt, Log_contains_received_signal) {
    const TempFolder folder;
    ConsoleProcess process(
        ScriptedArguments({"--log", folder.Path("log")}, {"progress:1", "sleep:300"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_THAT(folder.Read("log"), HasSubstr(" ispctl   SIGTERM: the run continues"));
}

TEST(Interrupt, SIGTERM_does_not_count_as_first_interrupt) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:1000", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGTERM);
    ASSERT_TRUE(process.WaitForText("SIGTERM"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_EQ(process.Out(), "done\n");
}

// As on a terminal, where both processes get the signal.
TEST(Interrupt, Library_process_leaves_signals_to_ispctl) {
    const ConsoleResult result =
        RunShell("setsid sh -c '$ISPCTL run --verbatim --lib $SCRIPTED sleep:1500 message:done & "
                 "sleep 0.5; trap : INT TERM HUP QUIT; "
                 "for signal in INT TERM HUP QUIT; do kill -$signal 0; done; wait $!; wait $!'");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "done\n");
    EXPECT_THAT(result.err, HasSubstr("press Ctrl-C again"));
}

TEST(Interrupt, Second_interrupt_works_if_output_pipe_is_full) {
    ConsoleProcess process(ScriptedArguments({"--json"}, {"progress:1", "many:100000"}));
    ::usleep(500000);
    process.Signal(SIGINT);
    ::usleep(100000);
    process.Signal(SIGINT);
    EXPECT_FALSE(process.HasEnded());
    for (int i = 0; i < 50 && !process.HasEnded(); ++i) {
        ::usleep(100000);
    }
    ASSERT_TRUE(process.HasEnded());
    EXPECT_EQ(process.Finish(), 130);
}

} // namespace
