#include <csignal>
#include <gmock/gmock.h>

#include "ConsoleProcess.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kWarning =
    "ispctl: stopping now can leave the device without firmware; press "
    "Ctrl-C again to stop at once\n";

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

TEST(Interrupt, Terminal_that_closes_does_not_end_the_run) {
    ConsoleProcess process(ScriptedArguments({}, {"progress:1", "sleep:300", "message:done"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.Signal(SIGHUP);
    EXPECT_EQ(process.Finish(), 0);
    EXPECT_EQ(process.Out(), "done\n");
}

} // namespace
