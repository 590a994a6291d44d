// Scripts on the virtual bus, which has a display that answers.

#include <gmock/gmock.h>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;

class ScriptBus : public testing::Test {
  protected:
    ConsoleResult Run(const std::string &text) {
        return RunConsole({"script", "run", "--virtual", m_folder.Write("a.script", text)});
    }

    TempFolder m_folder;
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.Path("device")};
};

TEST_F(ScriptBus, Written_feature_is_read_back) {
    const ConsoleResult result = Run("ddc get 0x10\nddc set 0x10 42\nddc get 0x10\n");
    EXPECT_EQ(result.out, "VCP 0x10: 75 of 100\nVCP 0x10: 42 of 100\n");
    EXPECT_THAT(result.err, HasSubstr("ispctl: success\n"));
    EXPECT_EQ(result.status, 0);
}

TEST_F(ScriptBus, Feature_that_display_lacks_is_named) {
    const ConsoleResult result = Run("ScalerRun\nddc get 0xEE\n");
    EXPECT_THAT(result.err, HasSubstr("ispctl: failed in line 2 (ddc): the display does not "
                                      "support the VCP feature 0xEE\n"));
    EXPECT_EQ(result.status, 1);
}

TEST_F(ScriptBus, Status_comes_with_reason_and_remedy_of_bus) {
    const ConsoleResult result = Run("I2CWriteByte 0x12, 0, 1\n");
    EXPECT_THAT(result.err, HasSubstr("failed with 0x5B01: "));
    EXPECT_THAT(result.err, HasSubstr("no slave answers at this I2C"));
    EXPECT_THAT(result.err, HasSubstr("faults.txt"));
    EXPECT_EQ(result.status, 1);
}

TEST_F(ScriptBus, Request_without_slave_comes_with_reason_of_bus) {
    m_folder.MakeFolder("device");
    m_folder.Write("device/faults.txt", "nack 0x6E\n");
    const ConsoleResult result = Run("ddc set 0x10 1\n");
    EXPECT_THAT(result.err, HasSubstr("failed in line 1 (ddc): status 0x5B01: no slave answers"));
    EXPECT_EQ(result.status, 1);
}

} // namespace
