#include <gmock/gmock.h>

#include "ConsoleProcess.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class TerminalRun : public testing::Test {
  protected:
    void SetUp() override {
        if (!ConsoleProcess::CanHaveTerminal()) {
            GTEST_SKIP() << "no terminal can be made here";
        }
    }
};

std::string OnTerminal(const std::vector<std::string> &steps) {
    return RunScripted({}, steps, ConsoleProcess::Output::Terminal).out;
}

TEST_F(TerminalRun, Progress_bar_is_redrawn_in_place) {
    EXPECT_EQ(OnTerminal({"progress:0", "progress:50", "progress:100"}),
              "\r\033[K[----------------------------------------]   0 %"
              "\r\033[K[####################--------------------]  50 %"
              "\r\033[K[########################################] 100 %\r\n"
              "ispctl: success\r\n");
}

TEST_F(TerminalRun, Message_is_printed_above_progress_bar) {
    EXPECT_EQ(OnTerminal({"progress:50", "message:hello", "result:9"}),
              "\r\033[K[####################--------------------]  50 %"
              "\r\033[Khello\r\n"
              "\r\033[K[####################--------------------]  50 %"
              "\r\033[Kispctl: failed with 0x9 at 50 %: error code of the plug-in (see its\r\n  "
              "documentation); the state of the "
              "device is unknown\r\n");
}

TEST_F(TerminalRun, Text_of_library_replaces_progress_bar) {
    EXPECT_THAT(OnTerminal({"progress:50", "out:\\e[31mFail!\\n\\e[m", "result:9"}),
                EndsWith("50 %\r\033[K\033[31mFail!\r\n\033[m"
                         "ispctl: failed with 0x9 at 50 %: error code of the plug-in (see its\r\n  "
                         "documentation); the state of the "
                         "device is unknown\r\n"));
}

TEST_F(TerminalRun, Progress_bar_does_not_overwrite_text_without_newline) {
    EXPECT_THAT(OnTerminal({"out:Erase...", "progress:50", "result:0"}),
                StartsWith("Erase...\r\n\r\033[K[##"));
    EXPECT_EQ(OnTerminal({"out:Erase...", "message:m"}), "Erase...\r\nm\r\nispctl: success\r\n");
    EXPECT_EQ(OnTerminal({"out:Erase..."}), "Erase...\r\nispctl: success\r\n");
}

TEST_F(TerminalRun, Second_action_starts_new_progress_bar) {
    const std::string text = OnTerminal({"progress:100", "progress:100", "progress:0"});
    EXPECT_THAT(text, HasSubstr("] 100 %\r\n\r\033[K[---"));
    EXPECT_EQ(text.find("100 %"), text.rfind("100 %"));
}

} // namespace
