#include <gmock/gmock.h>

#include "ConsoleProcess.h"
#include "edid/EdidMaker.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class EdidRun : public testing::Test {
  protected:
    ConsoleResult Run(const std::string &content, const std::vector<std::string> &own = {}) {
        std::vector<std::string> arguments = {"edid", "--lib", REAL_LIBRARY};
        arguments.insert(arguments.end(), own.begin(), own.end());
        arguments.push_back(m_folder.Write("e", content));
        return RunConsole(arguments);
    }
    static std::string Hex(const std::string &bytes, const char *separator) {
        std::string text;
        for (const char c : bytes) {
            char digits[8];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
            text += digits;
            text += separator;
        }
        return text;
    }
    static std::string List(const std::string &bytes) {
        std::string text = "// panel\n";
        for (const char c : bytes) {
            text += std::to_string(static_cast<unsigned char>(c)) + ",\n";
        }
        return text;
    }
    TempFolder m_folder;
    std::string m_edid = edid::Bytes(edid::Base(1)) + edid::Bytes(edid::Cta());
};

TEST_F(EdidRun, All_input_forms_print_same_report) {
    const ConsoleResult binary = Run(m_edid);
    EXPECT_EQ(binary.status, 0);
    EXPECT_EQ(binary.err, "");
    EXPECT_THAT(binary.out, StartsWith("manufacturer      TST\n"));
    EXPECT_THAT(binary.out, HasSubstr("\n\n0000  00 FF FF FF FF FF FF 00 52 74 34 12 78 56 34 12  "
                                      "........Rt4.xV4.\n"));
    EXPECT_THAT(binary.out, HasSubstr("\n0080  02 03 06 00 41 90 "));
    for (const std::string &content :
         {Hex(m_edid, ""), Hex(m_edid, " "), Hex(m_edid, "\r\n"), List(m_edid)}) {
        EXPECT_EQ(Run(content).out, binary.out);
    }
}

TEST_F(EdidRun, Text_output_can_be_read_as_input) {
    const ConsoleResult text = Run(m_edid, {"--text"});
    EXPECT_THAT(text.out, StartsWith("// block 0\n0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, "
                                     "0x52, 0x74, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12,\n"));
    EXPECT_THAT(text.out, HasSubstr("\n// block 1\n0x02, 0x03, "));
    EXPECT_EQ(Run(text.out).out, Run(m_edid).out);
}

TEST_F(EdidRun, Wrong_checksum_is_rejected_by_library) {
    m_edid[20] = '\x00'; // was A5
    const ConsoleResult result = Run(m_edid);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("e: block 0: checksum 0x"));
    EXPECT_THAT(result.err, HasSubstr("(the sum of the 128 bytes is 0x5B, not 0)"));
    EXPECT_THAT(result.err, HasSubstr("ispctl: invalid EDID\n"));
}

TEST_F(EdidRun, Blocks_valid_only_in_sum_are_rejected) {
    m_edid[20] = static_cast<char>(m_edid[20] + 1);
    m_edid[140] = static_cast<char>(m_edid[140] - 1);
    const ConsoleResult result = Run(m_edid);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("sum of the 128 bytes is 0x01, not 0"));
    EXPECT_THAT(result.err, HasSubstr("sum of the 128 bytes is 0xFF, not 0"));
    EXPECT_THAT(result.err, HasSubstr("ispctl: invalid EDID\n"));
}

TEST_F(EdidRun, Text_without_bytes_is_rejected) {
    EXPECT_EQ(Run("").status, 1);
    EXPECT_EQ(Run("0x100,").err,
              "ispctl: " + m_folder.Path("e") + ": no bytes, or a value greater than 255\n");
    EXPECT_EQ(Run("00F").err,
              "ispctl: " + m_folder.Path("e") + ": an odd number of hexadecimal digits\n");
}

TEST_F(EdidRun, Option_form_overrides_detection) {
    EXPECT_EQ(Run(Hex(m_edid, ""), {"--form", "hex"}).status, 0);
    EXPECT_EQ(Run(Hex(m_edid, ""), {"--form", "binary"}).status, 1);
    EXPECT_EQ(Run(m_edid, {"--form", "octal"}).status, 2);
    EXPECT_EQ(RunConsole({"edid"}).status, 2);
    EXPECT_EQ(RunConsole({"edid", "/no/file"}).status, 8);
    EXPECT_EQ(RunConsole({"edid", "--lib", "/no/lib", m_folder.Write("e", "x")}).status, 2);
}

} // namespace
