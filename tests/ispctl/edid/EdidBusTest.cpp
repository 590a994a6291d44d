#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "ConsoleProcess.h"
#include "edid/EdidMaker.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;

/// Reads the EDID of the virtual bus.
class EdidBus : public testing::Test {
  protected:
    ConsoleResult Read(const std::string &edid, const std::string &out) {
        m_folder.Write("edid.bin", edid);
        return RunConsole({"edid", "--virtual", "-o", out});
    }
    static std::string ReadBytes(const std::string &name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    TempFolder m_folder;
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.Path().c_str()};
    std::string m_out = m_folder.Path("out");
};

TEST_F(EdidBus, As_many_blocks_are_read_as_declared) {
    const std::string cta = edid::Bytes(edid::Cta());
    const std::string counted = edid::Bytes(edid::CtaWith("\xE2\x78\x03"));
    for (const std::string &edid : {edid::Bytes(edid::Base()), edid::Bytes(edid::Base(1)) + cta,
                                    edid::Bytes(edid::Base(4)) + cta + cta + cta + cta,
                                    edid::Bytes(edid::Base(1)) + counted + cta + cta}) {
        const ConsoleResult result = Read(edid, m_out);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("input form        bus: read from the display\n"));
        EXPECT_EQ(ReadBytes(m_out), edid);
    }
}

TEST_F(EdidBus, Blocks_before_missing_one_are_shown) {
    const ConsoleResult result = Read(edid::Bytes(edid::Base(2)) + edid::Bytes(edid::Cta()), m_out);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr("manufacturer      TST\n"));
    EXPECT_THAT(result.err, HasSubstr("block 2 of the EDID cannot be read (status 0x"));
    EXPECT_THAT(result.err, HasSubstr("header declares 2 extension blocks, file contains 1"));
    EXPECT_THAT(result.err, HasSubstr("out is not written: the EDID was not read completely\n"));
    EXPECT_FALSE(std::filesystem::exists(m_out));
}

TEST_F(EdidBus, Device_that_cannot_be_opened_is_named_with_its_variable) {
    const std::string blocked = m_folder.Write("file", "") + "/device";
    const EnvGuard device("SCALER_ISP_VIRTUAL_DEVICE", blocked);
    for (const std::vector<std::string> &line :
         {std::vector<std::string>{"edid", "--virtual"},
          {"script", "run", "--virtual", m_folder.Write("a.script", "ScalerRun\n")}}) {
        const ConsoleResult result = RunConsole(line);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr("in " + blocked + " (SCALER_ISP_VIRTUAL_DEVICE names"));
    }
}

TEST_F(EdidBus, Standard_output_has_only_the_bytes) {
    std::string edid = edid::Bytes(edid::Base());
    edid += std::string(128, '\xFF');
    const ConsoleResult result = Read(edid, "-");
    EXPECT_EQ(result.out, edid.substr(0, 128));
    EXPECT_THAT(result.err, HasSubstr("virtual scaler"));
}

TEST_F(EdidBus, Output_is_kept_if_a_block_is_missing) {
    m_folder.Write("out", "before");
    const std::string part = edid::Bytes(edid::Base(2)) + edid::Bytes(edid::Cta());
    EXPECT_EQ(Read(part, m_out).status, 1);
    EXPECT_EQ(ReadBytes(m_out), "before");
    EXPECT_EQ(Read(part, "-").out, "");
}

} // namespace
