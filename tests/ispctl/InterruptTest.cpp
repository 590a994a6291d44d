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

TEST(Interrupt, First_one_only_warns) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:500", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_THAT(process.Err(), HasSubstr(kWarning));
    EXPECT_EQ(process.Out(), "done\n");
}

TEST(Interrupt, Second_one_ends_at_once_with_130) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:60000"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText(kWarning));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
}

TEST(Interrupt, Warning_stays_out_of_the_json) {
    ConsoleProcess process(ScriptedArguments({"--json"}, {"progress:1", "sleep:60000"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGINT);
    ASSERT_TRUE(process.WaitForText(kWarning));
    EXPECT_THAT(process.Out(), Not(HasSubstr("stopping")));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 130);
}

TEST(Interrupt, Delay_of_a_plugin_is_not_cut_short) {
    ConsoleProcess process(
        ScriptedArguments({}, {"progress:1", "sleep:400", "sleep:400", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    const auto begin = std::chrono::steady_clock::now();
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(600));
}

TEST(Interrupt, Signals_of_a_supervisor_are_told_and_end_nothing) {
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

TEST(Interrupt, Signal_is_in_the_log) {
    const TempFolder folder;
    ConsoleProcess process(
        ScriptedArguments({"--log", folder.Path("log")}, {"progress:1", "sleep:300"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGTERM);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_THAT(folder.Read("log"), HasSubstr(" ispctl   SIGTERM: the run continues"));
}

TEST(Interrupt, Only_interrupts_are_counted) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:1000", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGTERM);
    ASSERT_TRUE(process.WaitForText("SIGTERM"));
    process.Signal(SIGINT);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_EQ(process.Out(), "done\n");
}

// As on a terminal, where both processes get the signal.
TEST(Interrupt, Process_of_the_library_leaves_signals_to_the_console) {
    const ConsoleResult result =
        RunShell("setsid sh -c '$ISPCTL run --lib $SCRIPTED sleep:1500 message:done & "
                 "sleep 0.5; trap : INT TERM HUP QUIT; "
                 "for signal in INT TERM HUP QUIT; do kill -$signal 0; done; wait $!; wait $!'");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "done\n");
    EXPECT_THAT(result.err, HasSubstr("press Ctrl-C again"));
}

TEST(Interrupt, Reader_that_does_not_read_does_not_stop_the_second_one) {
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
