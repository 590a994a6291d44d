#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "ConsoleProcess.h"
#include "edid/EdidMaker.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

class EdidRun : public testing::Test {
  protected:
    static ConsoleResult RunEdid(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "edid");
        return RunConsole(arguments);
    }
    ConsoleResult Run(const std::string &content, std::vector<std::string> own = {}) {
        own.push_back(m_folder.Write("e", content));
        return RunEdid(own);
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
    static std::string ReadBytes(const std::string &name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// The report without the line that names the form.
    static std::string WithoutForm(const std::string &report) {
        const std::size_t begin = report.find("\ninput form ");
        return report.substr(0, begin) + report.substr(report.find('\n', begin + 1));
    }
    TempFolder m_folder;
    std::string m_edid = edid::Bytes(edid::Base(1)) + edid::Bytes(edid::Cta());
};

TEST_F(EdidRun, Facts_and_bytes_are_shown) {
    const ConsoleResult result = Run(m_edid);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out,
                StartsWith("manufacturer      TST\n"
                           "product           0x1234\n"
                           "serial number     0x12345678\n"
                           "made              week 12 of 2021\n"
                           "EDID version      1.4\n"
                           "preferred timing  1920 x 1080, 60.00 Hz, pixel clock 148.50 MHz\n"
                           "name              Test panel\n"
                           "serial string     0001\n"));
    EXPECT_THAT(result.out, HasSubstr("\nextension blocks  1\n  block 1         CTA-861\n"));
    EXPECT_THAT(result.out, HasSubstr("\ninput form        binary: raw bytes\n"));
    EXPECT_THAT(result.out, HasSubstr("\n\n0000  00 FF FF FF FF FF FF 00 52 74 34 12 78 56 34 12  "
                                      "........Rt4.xV4.\n"));
    EXPECT_THAT(result.out, HasSubstr("\n0080  02 03 06 00 41 90 "));
}

TEST_F(EdidRun, All_input_forms_print_same_report) {
    const std::string binary = WithoutForm(Run(m_edid).out);
    for (const std::string &content :
         {Hex(m_edid, ""), Hex(m_edid, " "), Hex(m_edid, "\r\n"), List(m_edid)}) {
        EXPECT_EQ(WithoutForm(Run(content).out), binary);
    }
}

TEST_F(EdidRun, Text_output_can_be_read_as_input) {
    const ConsoleResult text = Run(m_edid, {"--text"});
    EXPECT_THAT(text.out, StartsWith("// block 0\n0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, "
                                     "0x52, 0x74, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12,\n"));
    EXPECT_THAT(text.out, HasSubstr("\n// block 1\n0x02, 0x03, "));
    EXPECT_EQ(WithoutForm(Run(text.out).out), WithoutForm(Run(m_edid).out));
}

TEST_F(EdidRun, Wrong_checksum_is_reported_after_facts) {
    m_edid[20] = '\x00'; // was A5
    const ConsoleResult result = Run(m_edid);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, StartsWith("manufacturer      TST\n"));
    EXPECT_THAT(result.err, HasSubstr("e: block 0: checksum 0x"));
    EXPECT_THAT(result.err, HasSubstr("(the sum of the 128 bytes is 0x5B, not 0)"));
    EXPECT_THAT(result.err, HasSubstr("ispctl: invalid EDID\n"));
}

TEST_F(EdidRun, Blocks_valid_only_in_sum_are_reported) {
    m_edid[20] = static_cast<char>(m_edid[20] + 1);
    m_edid[140] = static_cast<char>(m_edid[140] - 1);
    const ConsoleResult result = Run(m_edid);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("sum of the 128 bytes is 0x01, not 0"));
    EXPECT_THAT(result.err, HasSubstr("sum of the 128 bytes is 0xFF, not 0"));
}

TEST_F(EdidRun, Input_without_EDID_is_rejected_in_one_line) {
    const std::string name = "ispctl: " + m_folder.Path("e") + ": ";
    struct Row {
        std::string content, message;
    };
    for (const Row &row :
         {Row{"", "no bytes"}, Row{"0x100,", "line 1, column 1: 0x100 is greater than 255"},
          Row{"00F", "line 1, column 1: an odd number of hexadecimal digits"},
          Row{std::string("\x01\x02\x03", 3), "not an EDID: block 0: the header is not"}}) {
        const ConsoleResult result = Run(row.content);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, StartsWith(name + row.message));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
    }
}

TEST_F(EdidRun, Option_form_overrides_detection) {
    EXPECT_EQ(Run(Hex(m_edid, ""), {"--form", "hex"}).status, 0);
    EXPECT_EQ(Run(Hex(m_edid, ""), {"--form", "binary"}).status, 1);
    EXPECT_EQ(Run(m_edid, {"--form", "octal"}).status, 2);
}

TEST_F(EdidRun, Contradicting_options_are_usage_errors) {
    const std::string file = m_folder.Write("e", m_edid);
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"--virtual", file},
                                               {"--fix-checksum", file},
                                               {"-o", m_folder.Path("o"), file, file},
                                               {"--json", "--text", file}}) {
        EXPECT_EQ(RunEdid(arguments).status, 2) << testing::PrintToString(arguments);
    }
}

TEST_F(EdidRun, Input_of_32_KiB_is_read_and_one_byte_more_is_not) {
    const std::string text = Hex(m_edid, " ");
    EXPECT_EQ(Run(text + std::string(32768 - text.size(), '\n')).status, 0);
    const ConsoleResult result = Run(text + std::string(32769 - text.size(), '\n'));
    EXPECT_EQ(result.status, 8);
    EXPECT_EQ(result.err, "ispctl: " + m_folder.Path("e") +
                              " is too large: at most 32768 bytes (32 KiB) are read\n");
}

TEST_F(EdidRun, Unreadable_files_are_named) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const auto &[file, reason] :
         std::vector<std::pair<std::string, std::string>>{{"/no/file", "No such file or directory"},
                                                          {m_folder.Path(), "Is a directory"},
                                                          {pipe, "nobody writes to this pipe"}}) {
        const ConsoleResult result = RunEdid({file});
        EXPECT_EQ(result.status, 8);
        EXPECT_EQ(result.err, "ispctl: cannot read " + file + ": " + reason + "\n");
    }
}

TEST_F(EdidRun, Status_of_several_files_is_largest) {
    const std::string good = m_folder.Write("good", m_edid);
    const std::string bad = m_folder.Write("bad", m_edid + "x");
    const ConsoleResult two = RunEdid({good, bad});
    EXPECT_EQ(two.status, 1);
    EXPECT_THAT(two.out, AllOf(StartsWith("== " + good + "\n"), HasSubstr("== " + bad + "\n")));
    const ConsoleResult json = RunEdid({"--json", good, "/no/file", bad});
    EXPECT_EQ(json.status, 8);
    EXPECT_THAT(json.out, AllOf(StartsWith("[\n"), HasSubstr("\"file\": \"/no/file\""),
                                HasSubstr("\"unreadable\"")));
}

TEST_F(EdidRun, Option_output_writes_bytes) {
    const std::string out = m_folder.Path("out");
    EXPECT_EQ(Run(Hex(m_edid, ", "), {"-o", out}).status, 0);
    EXPECT_EQ(ReadBytes(out), m_edid);
    EXPECT_EQ(Run(Hex(m_edid, ""), {"-o", "-"}).out, m_edid);
    EXPECT_EQ(Run(m_edid, {"-o", "/no/file"}).status, 8);
}

TEST_F(EdidRun, Option_output_writes_nothing_without_EDID) {
    const std::string out = m_folder.Write("out", "before");
    const ConsoleResult result = Run("hello", {"-o", out});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, MatchesRegex("ispctl: .*/e: line 1, .*\n"
                                         "ispctl: .*/out is not written: no EDID was read\n"));
    EXPECT_EQ(ReadBytes(out), "before");
}

// Whoever reads the bytes would take anything else for a part of them.
TEST_F(EdidRun, Bytes_on_standard_output_exclude_other_output) {
    for (const char *other : {"--json", "--text"}) {
        const ConsoleResult result = Run(m_edid, {"-o", "-", other});
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, AllOf(HasSubstr(other), HasSubstr("name a file for -o\n")));
        EXPECT_THAT(result.out, Not(HasSubstr("manufacturer")));
    }
}

TEST_F(EdidRun, NUL_of_the_input_does_not_cut_the_message) {
    const std::string text("00 ff \0 ff\n", 11);
    const ConsoleResult result = Run(text, {"--form", "hex"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, AllOf(HasSubstr("line 1, column 7: "), HasSubstr("\\x00"),
                                  Not(HasSubstr("read as"))));
}

TEST_F(EdidRun, Form_is_named_only_if_it_may_be_the_wrong_one) {
    EXPECT_THAT(Run("00 ff \n", {}).err, HasSubstr(" (read as hex: hexadecimal digits)\n"));
    EXPECT_THAT(Run(std::string("\x01\x02\x03"), {}).err,
                HasSubstr(" (read as binary: raw bytes)"));
    for (const char *text : {"", " \n"}) {
        EXPECT_THAT(Run(text, {}).err, AllOf(HasSubstr("no bytes"), Not(HasSubstr("read as"))));
    }
}

TEST_F(EdidRun, Option_form_is_named_only_if_it_reads_an_EDID) {
    const std::string text = "{" + Hex(m_edid, ",") + "}\n";
    EXPECT_THAT(Run(text, {}).err,
                HasSubstr(" (read as c-array: an array in C; with --form hex it is an EDID)\n"));
    EXPECT_EQ(Run(text, {"--form", "hex"}).status, 0);
    EXPECT_THAT(Run("{00,ff}\n", {}).err, HasSubstr(" (read as c-array: an array in C)\n"));
}

// What a communication library prints, too, must not come between JSON.
TEST_F(EdidRun, Output_of_communication_library_goes_to_standard_error_with_json) {
    const EnvGuard prints("RECORDING_COMM_PRINTS", "noise");
    const ConsoleResult json = RunEdid({"--json", "--lib", REAL_LIBRARY, "--comm", RECORDING_COMM});
    EXPECT_EQ(json.status, 1);
    EXPECT_THAT(json.out, AllOf(StartsWith("[\n"), Not(HasSubstr("noise"))));
    EXPECT_THAT(json.err, HasSubstr("noise\n"));
}

TEST_F(EdidRun, Display_that_cannot_be_read_is_an_event_with_json) {
    const EnvGuard fails("RECORDING_COMM_FAILS", "I2CRead");
    const ConsoleResult json = RunEdid({"--json", "--lib", REAL_LIBRARY, "--comm", RECORDING_COMM});
    EXPECT_EQ(json.status, 1);
    EXPECT_THAT(json.out, AllOf(StartsWith("{\"event\":\"result\",\"status\":1,"),
                                HasSubstr("\"stage\":\"call\""), HasSubstr("block 0 of the EDID")));
}

TEST_F(EdidRun, Library_that_ends_the_process_leaves_the_device_unknown) {
    const EnvGuard exits("RECORDING_COMM_EXITS", "I2CRead");
    const ConsoleResult json = RunEdid({"--json", "--lib", REAL_LIBRARY, "--comm", RECORDING_COMM});
    EXPECT_EQ(json.status, 7);
    EXPECT_THAT(json.out,
                AllOf(HasSubstr("\"stage\":\"call\""), HasSubstr("\"device\":\"unknown\"")));
}

TEST_F(EdidRun, Pipe_as_communication_library_is_not_loaded) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const ConsoleResult result = RunEdid({"--lib", REAL_LIBRARY, "--comm", pipe});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.err, HasSubstr(pipe + " is a pipe, not a communication library"));
}

TEST_F(EdidRun, Option_fix_checksum_writes_valid_EDID) {
    const std::string good = m_edid;
    m_edid[127] = static_cast<char>(m_edid[127] + 1);
    m_edid[255] = static_cast<char>(m_edid[255] + 1);
    const std::string out = m_folder.Path("out");
    const ConsoleResult result = Run(m_edid, {"--fix-checksum", "-o", out});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("block 0: checksum 0x"), HasSubstr("block 1: checksum 0x"),
                      HasSubstr(" corrected to 0x"), Not(HasSubstr("invalid"))));
    EXPECT_EQ(ReadBytes(out), good);
}

TEST_F(EdidRun, Help_shows_examples_before_options_in_80_columns) {
    const std::string help = RunEdid({"--help"}).out;
    EXPECT_LT(help.find("Examples:"), help.find("Options:"));
    for (std::size_t begin = 0; begin < help.size(); begin = help.find('\n', begin) + 1) {
        EXPECT_LE(help.find('\n', begin) - begin, 80U) << help.substr(begin, 90);
    }
}

TEST_F(EdidRun, Communication_library_that_does_not_load_has_status_5) {
    const ConsoleResult result =
        RunEdid({"--lib", REAL_LIBRARY, "--comm", m_folder.Write("c", "x")});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.err, HasSubstr("as a communication library\n"));
    EXPECT_THAT(
        RunEdid({"--json", "--lib", REAL_LIBRARY, "--comm", m_folder.Path("c")}).out,
        AllOf(StartsWith("{\"event\":\"result\",\"status\":5,"), HasSubstr("\"stage\":\"load\"")));
}

} // namespace
