#include "edid/EdidInput.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "edid/EdidMaker.h"

namespace {

using ispctl::edid::FormOption;
using ispctl::edid::Input;
using ispctl::edid::ReadInput;
using testing::HasSubstr;

std::string Printed(const char *format, unsigned int value) {
    return fmt::format(fmt::runtime(format), value);
}

/// Each byte in one format, count per line.
std::string Write(const std::string &bytes, const char *format, std::size_t perLine = 16) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += Printed(format, static_cast<unsigned char>(bytes[i]));
        text += i % perLine == perLine - 1 ? "\n" : "";
    }
    return text;
}

/// Words of two bytes with the low byte first.
std::string WriteWords(const std::string &bytes, const char *format, const char *offset) {
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text += i % 16 == 0 ? Printed(offset, static_cast<unsigned int>(i)) : "";
        text += Printed(format, static_cast<unsigned char>(bytes[i]) +
                                    256U * static_cast<unsigned char>(bytes[i + 1]));
        text += i % 16 == 14 ? "\n" : "";
    }
    return text + Printed(offset, static_cast<unsigned int>(bytes.size())) + "\n";
}

/// Lines with an offset, the bytes, and their characters.
std::string WriteDump(const std::string &bytes, const char *offset, const char *format,
                      const std::string &end) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 16) {
        text += Printed(offset, static_cast<unsigned int>(i)) +
                Write(bytes.substr(i, 16), format, 99) + end + "\n";
    }
    return text;
}

std::string HexdumpC(const std::string &bytes) {
    std::string text;
    std::string previous;
    for (std::size_t i = 0; i < bytes.size(); i += 16) {
        const std::string line = bytes.substr(i, 16);
        if (line == previous) {
            text += text.ends_with("*\n") ? "" : "*\n";
            continue;
        }
        previous = line;
        text += Printed("{:08x} ", static_cast<unsigned int>(i)) +
                Write(line.substr(0, 8), " {:02x}", 99) + " " +
                Write(line.substr(8), " {:02x}", 99) + "  |de ad # // be ef|\n";
    }
    return text + Printed("{:08x}\n", static_cast<unsigned int>(bytes.size()));
}

/// As `od -t x1`.
std::string OdWithStars(const std::string &bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 16) {
        const std::string line = bytes.substr(i, 16);
        const bool isRepeated = i > 0 && line == bytes.substr(i - 16, 16);
        text += isRepeated ? text.ends_with("*\n") ? "" : "*\n"
                           : Printed("{:07o}", static_cast<unsigned int>(i)) +
                                 Write(line, " {:02x}", 99) + "\n";
    }
    return text + Printed("{:07o}", static_cast<unsigned int>(bytes.size())) + "\n";
}

std::string Xxd(const std::string &bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 16) {
        text += Printed("{:08x}:", static_cast<unsigned int>(i));
        for (std::size_t pair = i; pair < i + 16; pair += 2) {
            text += Write(bytes.substr(pair, 2), "{:02x}", 99).insert(0, " ");
        }
        text += "  ab cd: # //...\n";
    }
    return text;
}

class EdidInputForms : public testing::Test {
  protected:
    std::string m_edid = edid::Bytes(edid::Base(1)) + edid::Bytes(edid::Cta());
    std::string m_hex = Write(m_edid, "{:02x}", 9999);

    void Expect(const std::string &content, const std::string &word) {
        const Input input = ReadInput(content, FormOption::Detect);
        SCOPED_TRACE(content.substr(0, 200));
        ASSERT_TRUE(input.problems.empty()) << input.problems[0].message;
        EXPECT_EQ(std::string(input.bytes.begin(), input.bytes.end()), m_edid);
        EXPECT_EQ(WordOf(input.form), word);
    }
};

TEST_F(EdidInputForms, Binary_is_read) {
    Expect(m_edid, "binary");
}

TEST_F(EdidInputForms, Hex_digits_are_read_with_any_separator) {
    for (const char *format :
         {"{:02x}", "{:02X}", "{:02x} ", "{:02x}, ", "{:02x},", "{:02x}:", "{:02X}-", "\t{:02x}"}) {
        Expect(Write(m_edid, format), "hex");
        Expect(Write(m_edid, format, 9999), "hex");
    }
    Expect(Write(m_edid, "{:02x}", 4), "hex");
    Expect(Write(m_edid, "{:x} ", 16), "hex");
    Expect("# panel\n" + Write(m_edid, "{:02x}") + "// end\n/* of\nit */", "hex");
    std::string broken = m_hex; // as `fold` breaks lines
    for (std::size_t i = 75; i < broken.size(); i += 76) {
        broken.insert(i, "\r\n");
    }
    Expect(broken, "hex");
}

TEST_F(EdidInputForms, Lists_are_read) {
    for (const char *format : {"0x{:02x}, ", "0x{:02X} ", "0x{:x},", "{:d}, ", "{:d} ", "{:03d} ",
                               "{:d};", "{:#o},", "\\x{:02x}", "0x{:02x}u, "}) {
        Expect(Write(m_edid, format), "list");
        Expect(Write(m_edid, format, 9999), "list");
    }
    Expect("[" + Write(m_edid, "{:d}, ") + "]", "list");
    Expect("0x" + m_hex, "list");
}

TEST_F(EdidInputForms, C_arrays_are_read) {
    const std::string list = Write(m_edid, "0x{:02x}, ");
    Expect("{" + list + "}", "c-array");
    Expect("#include <stdint.h>\n/* a { */ static const uint8_t edid[256] = {\n" + list + "};\n",
           "c-array");
    Expect("unsigned char e_bin[] = {\n" + list + "};\nunsigned int e_bin_len = 256;\n", "c-array");
    Expect("u8 e[2][128] = {\n{ // base\n" + Write(m_edid.substr(0, 128), "0x{:02x}, ") +
               "},\n{ /* 1 */" + Write(m_edid.substr(128), "0x{:02x}, ") + "}};\n",
           "c-array");
    Expect("int e[] = { " + Write(m_edid, "{:d}, ") + " };", "c-array");
}

TEST_F(EdidInputForms, Dumps_are_read) {
    Expect(Xxd(m_edid), "xxd");
    Expect(WriteDump(m_edid, "{:04x}: ", "{:02x} ", "   ........"), "xxd");
    Expect(HexdumpC(m_edid), "hexdump");
    Expect(WriteDump(m_edid, "{:07o}", " {:02x}", ""), "hexdump");
    Expect(OdWithStars(m_edid), "hexdump");
    Expect(WriteDump(m_edid, "{:07o}", " {:03o}", ""), "hexdump");
    Expect(WriteDump(m_edid, "{:07o}", " {:3d}", ""), "hexdump");
    Expect(WriteDump(m_edid, "{:06x}", " {:02x}", "  >........<"), "hexdump");
    Expect(WriteDump(m_edid, "{:04X} ", " {:02X}", "  ab cd ef"), "hexdump");
    Expect(WriteWords(m_edid, " {:04x}", "{:07x}"), "hexdump");
    Expect(WriteWords(m_edid, " {:06o}", "{:07o}"), "hexdump");
}

TEST_F(EdidInputForms, Offsets_of_dumps_may_have_a_sign) {
    Expect(WriteDump(m_edid, "0x{:04x}: ", "{:02x} ", "  ...."), "xxd");
    Expect(WriteDump(m_edid, "0x{:04x}", " {:02x}", ""), "hexdump");
    Expect(WriteDump(m_edid, "+{:04x}", " {:02x}", ""), "hexdump");
}

/// As `od -t x8`: the header is the same from both ends.
TEST_F(EdidInputForms, Words_of_8_bytes_are_swapped) {
    std::string text;
    for (std::size_t i = 0; i < m_edid.size(); i += 8) {
        const std::string word = m_edid.substr(i, 8);
        text += (i % 16 == 0 ? Printed("{:07o}", static_cast<unsigned int>(i)) : "") + " " +
                Write({word.rbegin(), word.rend()}, "{:02x}", 99) + (i % 16 != 0 ? "\n" : "");
    }
    Expect(text + Printed("{:07o}\n", static_cast<unsigned int>(m_edid.size())), "hexdump");
}

TEST_F(EdidInputForms, Last_word_may_be_half_a_word) {
    m_edid += 'x';
    std::string padded = m_edid + '\0';
    std::string text = WriteWords(padded, " {:04x}", "{:07o}");
    const std::string end = Printed("{:07o}\n", static_cast<unsigned int>(padded.size()));
    ASSERT_TRUE(text.ends_with(end));
    text.replace(text.size() - end.size(), end.size(),
                 "\n" + Printed("{:07o}\n", static_cast<unsigned int>(m_edid.size())));
    Expect(text, "hexdump");
}

TEST(EdidInput, Dump_of_something_else_is_read_as_it_lies_there) {
    const std::string bytes(32, 'n');
    const Input input = ReadInput(HexdumpC(bytes + std::string(16, 'm')), FormOption::Detect);
    EXPECT_EQ(std::string(input.bytes.begin(), input.bytes.end()), bytes + std::string(16, 'm'));
}

TEST_F(EdidInputForms, Text_of_wide_characters_is_no_text_if_cut) {
    const std::string wide("\xFF\xFE"
                           "0\0"
                           "0\0",
                           6);
    EXPECT_EQ(ReadInput(wide, FormOption::Detect).bytes, (ispctl::edid::Bytes{0}));
    // Half a character, and a control character: bytes after all.
    EXPECT_EQ(ReadInput(wide + "0", FormOption::Detect).bytes.size(), 7U);
    EXPECT_EQ(ReadInput(wide + std::string("\x01\0", 2), FormOption::Detect).bytes.size(), 8U);
}

TEST_F(EdidInputForms, Listings_are_read_at_their_hex_block) {
    const std::string block =
        Write(m_edid.substr(0, 128), "{:02x} ") + "\n" + Write(m_edid.substr(128), "{:02x} ");
    Expect("edid-decode (hex):\n\n" + block, "edid-decode");
    Expect("edid-decode (hex):\n\n" + block + "\n----------------\n\nBlock 0, Base EDID:\n\x01 x\n",
           "edid-decode");
    Expect(block + "\n----------------\n\nBlock 0, Base EDID:\n", "edid-decode");
    std::string property =
        "Screen 0: minimum 8 x 8\nDP-1 connected primary\n\tIdentifier: 0x42\n\tEDID: \n";
    for (std::size_t i = 0; i < m_edid.size(); i += 16) {
        property += "\t\t" + Write(m_edid.substr(i, 16), "{:02x}", 99) + "\n";
    }
    Expect(property, "xrandr");
    Expect(property + "\tBorder: 0 0 0 0 \n  1920x1080 (0x43) 148.500MHz\n", "xrandr");
    const Input two = ReadInput(property + property, FormOption::Detect);
    ASSERT_EQ(two.remarks.size(), 1U);
    EXPECT_STREQ(two.remarks[0].Name(), "more-edids");
}

TEST_F(EdidInputForms, Registry_file_of_Windows_is_read) {
    std::string value = "\"EDID\"=hex:" + Write(m_edid, "{:02x},", 20);
    value.pop_back();
    for (std::size_t i = value.find('\n'); i != std::string::npos; i = value.find('\n', i + 5)) {
        value.replace(i, 1, "\\\r\n  ");
    }
    const std::string file = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\D"
                             "evice Parameters]\r\n" +
                             value + "\r\n\"DEAD\"=dword:00000000\r\n";
    Expect(file, "reg-file");
    EXPECT_EQ(ReadInput(file + file, FormOption::Detect).remarks.size(), 1U);
}

TEST_F(EdidInputForms, Listing_without_EDID_names_the_option_that_shows_it) {
    const Input input = ReadInput("Screen 0: minimum 320 x 200, current 1920 x 1080\n"
                                  "eDP-1 connected primary 1920x1080+0+0\n",
                                  FormOption::Detect);
    ASSERT_EQ(input.problems.size(), 1U);
    EXPECT_THAT(input.problems[0].message, HasSubstr("xrandr --verbose"));
}

TEST_F(EdidInputForms, Angle_brackets_are_read) {
    Expect("<" + m_hex + ">", "registry");
    Expect("    | | \"IODisplayEDID\" = <" + m_hex + ">\n", "registry");
}

TEST_F(EdidInputForms, Byte_order_marks_are_skipped) {
    Expect("\xEF\xBB\xBF" + m_hex, "hex");
    std::string little = "\xFF\xFE";
    std::string big = "\xFE\xFF";
    for (const char c : m_hex + "\r\n") {
        little += std::string{c, '\0'};
        big += std::string{'\0', c};
    }
    Expect(little, "hex");
    Expect(big, "hex");
}

TEST(EdidInput, Star_of_hexdump_repeats_previous_line) {
    std::string bytes = edid::Bytes(edid::Base());
    bytes += std::string(128, '\0');
    const Input input = ReadInput(HexdumpC(bytes), FormOption::Detect);
    EXPECT_EQ(std::string(input.bytes.begin(), input.bytes.end()), bytes);
}

TEST(EdidInput, First_bad_character_is_named_with_line_and_column) {
    const std::string hex = Write(edid::Bytes(edid::Base()), "{:02x} ");
    const std::string list = Write(edid::Bytes(edid::Base()), "0x{:02x}, ");
    const std::string dump = HexdumpC(edid::Bytes(edid::Base()));
    const auto with = [](std::string text, std::size_t offset, const std::string &bad) {
        return text.replace(offset, 1, bad);
    };
    struct Row {
        std::string content, expected;
        std::size_t line, column;
    };
    for (const Row &row : {
             Row{with(hex, 49 * 2 + 6, "G"), "\"G\" is not a hexadecimal digit", 3, 7},
             Row{with(hex, 0, "O"), "\"O\" is not a hexadecimal digit", 1, 1},
             Row{with(hex, 49 * 7 + 1, "\xC3\xBC"), "\"\xC3\xBC\" is not", 8, 2},
             Row{"/* \xC3\xBC */ 0x00, 0x1G", "\"G\" is not a hexadecimal digit", 1, 18},
             Row{with(list, 97 * 1 + 3, "z"), "\"z\" is not a hexadecimal digit", 2, 4},
             Row{"0x100,", "0x100 is greater than 255", 1, 1},
             Row{"1, 255,\n 256", "256 is greater than 255", 2, 2},
             Row{"0x00, 09,", "\"9\" is not an octal digit", 1, 8},
             Row{"0x00, 12a", "\"a\" is not a decimal digit", 1, 9},
             Row{with(dump, 10, "x"), "\"x\" is not a hexadecimal digit", 1, 11},
             Row{"\xEF\xBB\xBF" + with(hex, 0, "O"), "\"O\" is not", 1, 1},
             Row{"00 ff\n*\n00", "use od -v", 2, 1},
             Row{"00F", "an odd number of hexadecimal digits", 1, 1},
             Row{"hello", "\"h\" is not a hexadecimal digit", 1, 1},
         }) {
        SCOPED_TRACE(row.content.substr(0, 80));
        const Input input = ReadInput(row.content, FormOption::Detect);
        ASSERT_EQ(input.problems.size(), 1U);
        EXPECT_STREQ(input.problems[0].Name(), "syntax");
        EXPECT_THAT(input.problems[0].message, HasSubstr(row.expected));
        EXPECT_EQ(input.problems[0].line, row.line);
        EXPECT_EQ(input.problems[0].column, row.column);
        EXPECT_TRUE(input.bytes.empty());
    }
}

TEST(EdidInput, Missing_line_of_dump_is_reported) {
    std::string dump = HexdumpC(edid::Bytes(edid::Base()));
    const std::size_t second = dump.find('\n') + 1;
    dump.erase(second, dump.find('\n', second) + 1 - second);
    const Input input = ReadInput(dump, FormOption::Detect);
    ASSERT_EQ(input.problems.size(), 1U);
    EXPECT_THAT(input.problems[0].message,
                HasSubstr("line 2, column 1: offset 00000020 does not follow"));
}

TEST(EdidInput, Dump_line_that_ends_in_half_a_pair_is_rejected) {
    for (const char *line :
         {"00000000  00 ff ff ff ff ff ff 00  1", "00000000: 00 ff ff ff ff ff ff 00 1"}) {
        const Input input = ReadInput(line, FormOption::Detect);
        ASSERT_EQ(input.problems.size(), 1U) << line;
        EXPECT_EQ(input.problems[0].line, 1U);
    }
}

TEST(EdidInput, Words_without_header_are_ambiguous) {
    const Input input = ReadInput("0000000 1234 5678 9abc def0\n0000008\n", FormOption::Detect);
    ASSERT_EQ(input.problems.size(), 1U);
    EXPECT_THAT(input.problems[0].message, HasSubstr("use xxd or hexdump -C"));
}

TEST(EdidInput, Option_overrides_detection) {
    const std::string hex = Write(edid::Bytes(edid::Base()), "{:02x}");
    EXPECT_EQ(ReadInput(hex, FormOption::Hex).bytes.size(), 128U);
    EXPECT_EQ(ReadInput(hex, FormOption::Binary).bytes.size(), hex.size());
    EXPECT_EQ(ReadInput("1 2 3", FormOption::List).bytes, (ispctl::edid::Bytes{1, 2, 3}));
    EXPECT_EQ(ReadInput("10 20", FormOption::Hex).bytes, (ispctl::edid::Bytes{16, 32}));
    EXPECT_EQ(ReadInput("10 20", FormOption::List).bytes, (ispctl::edid::Bytes{10, 20}));
}

TEST(EdidInput, Content_without_bytes_is_a_problem) {
    for (const char *content : {"", "\n \n", "// nothing\n", "{}"}) {
        const Input input = ReadInput(content, FormOption::Detect);
        ASSERT_EQ(input.problems.size(), 1U) << content;
        EXPECT_STREQ(input.problems[0].Name(), "no-bytes");
    }
}

} // namespace
