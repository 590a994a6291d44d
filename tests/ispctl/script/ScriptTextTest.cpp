#include "script/ScriptText.h"

#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "script/ScriptInput.h"

namespace {

using ispctl::ListScript;
using Bytes = std::vector<std::uint8_t>;

/// Of a text without errors and DDC/CI requests.
Bytes AssembleScript(const std::string &text) {
    const ispctl::AssembledScript script = ispctl::AssembleScript(text);
    EXPECT_TRUE(script.errors.First().empty()) << text;
    EXPECT_EQ(script.steps.size(), 1U) << text;
    return script.steps.front().records;
}

struct Row {
    const char *text;
    Bytes bytes;
};

TEST(ScriptText, Each_statement_assembles_to_its_record) {
    const Row rows[] = {
        {"Wait 258", {0, 1, 2}},
        {"ScalerRun", {1}},
        {"ScalerStop", {2}},
        {"WriteReg 0x10, 0x20", {3, 0x10, 0x20}},
        {"WriteRegBit 1, 2, 3", {4, 1, 2, 3}},
        {"ReadReg 0x10", {5, 0x10}},
        {"WriteMcuReg 1, 2", {6, 1, 2}},
        {"ReadMcuReg 1", {7, 1}},
        {"I2CWriteByte 0xA0, 1, 2", {8, 0xA0, 1, 2}},
        {"I2CRead 0xA0, 1", {9, 0xA0, 1}},
        {"Unsupported10", {10}},
        {"I2CCurrentRead 0xA0", {12, 0xA0}},
        {"PollMcuReg 1, 2, 3, 0x405, 0x607", {13, 1, 2, 3, 4, 5, 6, 7}},
        {"WritePortRegBit 1, 2, 3, 4", {14, 1, 2, 3, 4}},
        {"WriteMcuRegBit 1, 2, 3", {15, 1, 2, 3}},
        {"WriteRegEx 0x1234, 5", {16, 0x12, 0x34, 5}},
        {"WriteRegBitEx 0x1234, 5, 6", {17, 0x12, 0x34, 5, 6}},
        {"ReadRegEx 0x1234", {18, 0x12, 0x34}},
        {"WritePortRegBitEx 0x1234, 0x5678, 9, 10", {19, 0x12, 0x34, 0x56, 0x78, 9, 10}},
        {"WriteRegsEx 0x1234, 1, {7, 8}", {20, 0x12, 0x34, 0, 2, 1, 7, 8}},
        {"ReadRegsEx 0x1234, 2, 1", {21, 0x12, 0x34, 0, 2, 1}},
        {"WriteRegs 0x12, 0, {7}", {22, 0x12, 0, 1, 0, 7}},
        {"ReadRegs 0x12, 300, 1", {23, 0x12, 1, 44, 1}},
        {"WriteMcuRegs 0x1234, 1, {}", {24, 0x12, 0x34, 0, 0, 1}},
        {"ReadMcuRegs 0x1234, 2, 1", {25, 0x12, 0x34, 0, 2, 1}},
        {"Write32BitRegEx 0x12345678, 4294967295",
         {26, 0x12, 0x34, 0x56, 0x78, 0xFF, 0xFF, 0xFF, 0xFF}},
        {"bytes {0xFE, 255}", {0xFE, 0xFF}},
        {"", {}},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(AssembleScript(row.text), row.bytes) << row.text;
    }
}

TEST(ScriptText, Named_operands_are_accepted) {
    EXPECT_EQ(AssembleScript("WriteRegEx value = 5, addr = 0x1234"), (Bytes{16, 0x12, 0x34, 5}));
    EXPECT_EQ(AssembleScript("WriteRegBit 1, or_mask=3, and_mask=2"), (Bytes{4, 1, 2, 3}));
    EXPECT_EQ(AssembleScript("WriteRegs data={9}, inc=1, addr=2"), (Bytes{22, 2, 0, 1, 1, 9}));
    EXPECT_EQ(AssembleScript("WriteRegs {9}, 2, 1"), (Bytes{22, 2, 0, 1, 1, 9}));
}

TEST(ScriptText, Constants_are_replaced_by_their_numbers) {
    EXPECT_EQ(AssembleScript("const kA = 0x1234\nconst k_2 = kA\nWriteRegEx k_2, 5\n"
                             "const one = 1\nbytes {one, 2}"),
              (Bytes{16, 0x12, 0x34, 5, 1, 2}));
}

TEST(ScriptText, Comments_and_empty_lines_are_skipped) {
    EXPECT_EQ(AssembleScript("\n// a\r\n/* b\n c */ ScalerRun // d\n\nScalerStop /* e */\r\n"),
              (Bytes{1, 2}));
    EXPECT_EQ(AssembleScript("bytes {\n  1, // one\n  2\n}\n"), (Bytes{1, 2}));
    EXPECT_EQ(AssembleScript("bytes {1, 2,}"), (Bytes{1, 2})) << "a comma at the end";
}

struct ErrorRow {
    const char *text;
    const char *error;
};

/// All errors, separated by newlines; "none" without any.
std::string ErrorOf(const std::string &text) {
    std::string all;
    const ispctl::AssembledScript script = ispctl::AssembleScript(text);
    for (const auto &[line, error] : script.errors.First()) {
        all += (all.empty() ? "" : "\n") + std::to_string(line) + ":" +
               std::to_string(error.Column()) + ": " + error.what();
    }
    return all.empty() ? "none" : all;
}

TEST(ScriptText, Error_contains_position_and_reason) {
    const ErrorRow rows[] = {
        {"ScalerRun\n  Writereg 1, 2", "2:3: unknown statement Writereg"},
        {"5", "1:1: expected a statement name"},
        {"WriteReg 1", "1:1: missing operand value of WriteReg"},
        {"WriteReg 1, 2, 3", "1:16: too many operands for WriteReg"},
        {"WriteReg 1 2", "1:12: expected ','"},
        {"WriteReg 0x100, 2", "1:10: 0x100 does not fit in addr (1 byte)"},
        {"WriteRegEx addr = 0x10000, value = 2", "1:19: 0x10000 does not fit in addr (2 bytes)"},
        {"WriteReg addr = 1, addr = 2", "1:20: addr is given twice"},
        {"WriteReg 1, addr = 2", "1:13: addr is given twice"},
        {"WriteReg addr = 1, 2", "1:20: positional operand after a named one"},
        {"WriteReg adr = 1", "1:10: WriteReg has no operand named adr"},
        {"WriteReg kOne, 2", "1:10: unknown constant kOne"},
        {"WriteReg 1, kTwo", "1:13: unknown constant kTwo"},
        {"WriteReg 1,", "1:12: expected a number"},
        {"ScalerRun 1", "1:11: too many operands for ScalerRun"},
        {"WriteRegs 1, 1", "1:1: missing data bytes in braces for WriteRegs"},
        {"WriteRegs 1, 1, {1}, {2}", "1:22: data is given twice"},
        {"WriteRegs 1, length = 1, inc = 1, data = {1}",
         "1:14: the length is computed from the data bytes"},
        {"ReadRegs 1, 1, {1}", "1:16: ReadRegs has no data bytes"},
        {"bytes {256}", "1:8: 0x100 does not fit in a byte"},
        {"bytes {1 2}", "1:10: expected ','"},
        {"bytes {1", "1:7: this brace is never closed"},
        {"Wait 1\nWriteRegs 1, 1,\n", "2:16: expected a number"},
        {"Wait 1\nWriteRegs 1, 1, {1,\n2,\n\n// end\n", "2:17: this brace is never closed"},
        {"bytes {1} 2", "1:11: expected end of line"},
        {"bytes 1", "1:7: expected '{'"},
        {"const 1 = 2", "1:7: expected a constant name"},
        {"const a 2", "1:9: expected '='"},
        {"const a = 1\nconst a = 1", "2:7: a is already defined"},
        {"Wait 010", "1:6: 010 has a leading zero; write it without, or in hexadecimal with 0x"},
        {"Wait 0x", "1:6: 0x is not a number"},
        {"Wait 12ms", "1:6: 12ms is not a number"},
        {"Wait 4294967296", "1:6: 4294967296 does not fit in 32 bits"},
        {"Wait -1", "1:6: unexpected character"},
        {"Wait 1 /* x", "1:8: unterminated comment"},
        {"/* \xC3\xA4 */ Wait \xC3\xA4", "1:14: unexpected character"},
        {"const a = a", "1:11: unknown constant a"},
        {"ddc", "1:4: expected get or set"},
        {"ddc read 0x10", "1:5: expected get or set"},
        {"ddc get", "1:8: expected a number"},
        {"ddc get 0x100", "1:9: 0x100 does not fit in feature (1 byte)"},
        {"ddc set 0x10", "1:13: expected a number"},
        {"ddc set 0x10 0x10000", "1:14: 0x10000 does not fit in value (2 bytes)"},
        {"ddc get 0x10 5", "1:14: expected end of line"},
    };
    for (const ErrorRow &row : rows) {
        EXPECT_EQ(ErrorOf(row.text), row.error) << row.text;
    }
}

TEST(ScriptText, All_lines_with_errors_are_reported_at_once) {
    const ErrorRow rows[] = {
        {"WriteReg 1,\nScalerRun\nWait -1 -2\nReadReg 0x100\nScalerStop\n# remark\nWait 1 2",
         "1:12: expected a number\n3:6: unexpected character\n"
         "4:9: 0x100 does not fit in addr (1 byte)\n6:1: unexpected character\n"
         "7:8: expected ','"},
        {"bytes {1,\n2 3,\n4}\nWait x", "2:3: expected ','\n4:6: unknown constant x"},
        {"bytes {1,\n 2\nWait x\nWait 5 6", "1:7: this brace is never closed\n"
                                            "3:6: unknown constant x\n4:8: expected ','"},
        {"bytes {1, x\nWait 5\nWait y", "1:11: unknown constant x\n3:6: unknown constant y"},
        {"const a = 0x\nWait a\nconst b 2\nWait b", "1:11: 0x is not a number\n"
                                                    "3:9: expected '='"},
        {"Weit 1\nWait 1\n/* open", "1:1: unknown statement Weit\n3:1: unterminated comment"},
    };
    for (const ErrorRow &row : rows) {
        EXPECT_EQ(ErrorOf(row.text), row.error) << row.text;
    }
}

TEST(ScriptText, First_1000_lines_with_errors_are_kept_and_all_counted) {
    std::string text;
    for (int i = 0; i < 1500; ++i) {
        text += "# # #\n";
    }
    const ispctl::AssembledScript script = ispctl::AssembleScript(text);
    EXPECT_EQ(script.errors.First().size(), 1000U);
    EXPECT_EQ(script.errors.Unlisted(), 500U);
}

TEST(ScriptText, Byte_order_mark_is_skipped) {
    EXPECT_EQ(AssembleScript("\xEF\xBB\xBFScalerRun"), (Bytes{1}));
}

TEST(ScriptText, Requests_stand_between_records) {
    const auto steps = ispctl::AssembleScript("ScalerRun\nddc get 0x10\nconst k = 0x60\n"
                                              "ddc set k, 0x0102\nScalerStop\nScalerRun")
                           .steps;
    ASSERT_EQ(steps.size(), 3U);
    EXPECT_EQ(steps[0].records, (Bytes{1}));
    EXPECT_EQ(steps[0].ddc->request.kind, ispctl::DdcRequest::Kind::Get);
    EXPECT_EQ(steps[0].ddc->request.feature, 0x10);
    EXPECT_EQ(steps[0].ddc->line, 2U);
    EXPECT_EQ(steps[1].records, Bytes());
    EXPECT_EQ(steps[1].ddc->request.kind, ispctl::DdcRequest::Kind::Set);
    EXPECT_EQ(steps[1].ddc->request.feature, 0x60);
    EXPECT_EQ(steps[1].ddc->request.value, 0x0102);
    EXPECT_EQ(steps[2].records, (Bytes{2, 1}));
    EXPECT_FALSE(steps[2].ddc.has_value());
}

struct FormRow {
    std::string content;
    std::optional<std::size_t> binaryAt;
};

TEST(ScriptText, Text_is_told_from_bytes_by_its_content) {
    const FormRow rows[] = {
        {"", {}},
        {"WriteReg 1, 2\r\n\t// x\n", {}},
        {"\n\xC3\xA4", {}},
        {"// \xE4", {}}, // ISO-8859-1
        {"\x01", 0},
        {std::string("\x03\x10\x20", 3), 0},
        {std::string("Wait\0", 5), 4},
        {"\x09\xA0\x80", 0}, // I2CRead 0xA0, 0x80
    };
    for (const FormRow &row : rows) {
        EXPECT_EQ(ispctl::FirstByteOfBinary(row.content), row.binaryAt) << row.content;
    }
}

TEST(ScriptText, Longest_block_is_accepted_and_longer_one_rejected) {
    std::string data = "WriteRegs 1, 1, {0";
    for (int i = 1; i < 65535; ++i) {
        data += ",0";
    }
    EXPECT_EQ(AssembleScript(data + "}").size(), 65540U);
    EXPECT_EQ(ErrorOf(data + ",0}"), "1:17: 65536 data bytes, at most 65535 are allowed");
}

TEST(ScriptText, Listing_is_formatted_as_documented) {
    EXPECT_EQ(
        ListScript(Bytes{0, 1, 2, 22, 0x10, 0, 2, 1, 0xAA, 0xBB, 26, 0,  0, 0, 1, 0, 0,    0,
                         2, 9, 9, 13, 1,    2, 3, 0, 4,    0,    5,  23, 1, 0, 7, 0, 0xFE, 1}),
        "Wait ms = 258\n"
        "WriteRegs addr = 0x10, inc = 1, data = {0xAA, 0xBB}\n"
        "Write32BitRegEx addr = 0x00000001, value = 0x00000002\n"
        "// skipped, the last block length is 2\n"
        "bytes {0x09, 0x09}\n"
        "PollMcuReg addr = 0x01, mask = 0x02, expect = 0x03, tries = 4, interval = 5\n"
        "ReadRegs addr = 0x01, length = 7, inc = 0\n"
        "// unknown opcode: the runner ends here with result 1\n"
        "bytes {0xFE, 0x01}\n");
    EXPECT_EQ(ListScript(Bytes{1, 3, 4}), "ScalerRun\n// WriteReg: 2 of its 3 bytes\n"
                                          "bytes {0x03, 0x04}\n");
}

TEST(ScriptText, Assembling_listing_returns_same_bytes) {
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        Bytes bytes(random() % 60);
        for (std::uint8_t &byte : bytes) {
            const auto kind = random() % 4;
            byte = static_cast<std::uint8_t>(kind == 0   ? random()
                                             : kind == 1 ? random() % 4
                                                         : random() % 28);
        }
        ASSERT_EQ(AssembleScript(ListScript(bytes)), bytes) << ListScript(bytes);
    }
}

TEST(ScriptText, Listing_of_every_byte_and_pair_assembles_to_same_bytes) {
    for (unsigned int first = 0; first < 256; ++first) {
        for (unsigned int second = 0; second < 256; ++second) {
            const Bytes bytes = {static_cast<std::uint8_t>(first),
                                 static_cast<std::uint8_t>(second)};
            ASSERT_EQ(AssembleScript(ListScript(bytes)), bytes);
        }
    }
}

TEST(ScriptText, Byte_list_has_one_record_per_line) {
    EXPECT_EQ(ispctl::ByteListOfScript(Bytes{1, 3, 0x10, 0x20, 0xFE}),
              "0x01,\n0x03, 0x10, 0x20,\n0xFE,\n");
}

} // namespace
