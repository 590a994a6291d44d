#include "ParserFixture.h"

class DumpFlashArguments : public ParserTest {
  protected:
    Answer Convert(const std::string &addr, const std::string &len, const std::string &name) {
        STRUCT_CP_ISP_CMD_ARGS args;
        args.strDumpAddr = addr;
        args.strDumpLen = len;
        args.strDumpName = name;
        return Ask([&] { return parser->GetDumpFlashCmd(args, setting); });
    }
    STRUCT_DUMP_FLASH_SETTING setting;
};

TEST_F(DumpFlashArguments, Address_length_and_name_are_stored) {
    EXPECT_ACCEPTED(Convert("0x100", "16", "chip.bin"));
    EXPECT_EQ(setting.ulDumpAddr, 0x100U);
    EXPECT_EQ(setting.ulDumpLen, 16U);
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"chip.bin");
}

TEST_F(DumpFlashArguments, Refusals_print_nothing) {
    setting.ulDumpAddr = 9;
    EXPECT_REFUSED(Convert("", "", "a.bin"), "");
    EXPECT_EQ(setting.ulDumpAddr, 9U); // nothing given, nothing stored
    EXPECT_REFUSED(Convert("x", "16", ""), "");
    EXPECT_REFUSED(Convert("1", "y", ""), "");
    EXPECT_REFUSED(Convert("1", "0", ""), "");
    EXPECT_REFUSED(Convert("1", "", ""), "");
    EXPECT_EQ(setting.ulDumpAddr, 1U);
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"");
}

TEST_F(DumpFlashArguments, Length_alone_dumps_from_address_zero) {
    setting.ulDumpAddr = 9;
    EXPECT_ACCEPTED(Convert("", "4", ""));
    EXPECT_EQ(setting.ulDumpAddr, 0U);
}

TEST_F(DumpFlashArguments, Only_a_name_in_bin_is_taken) {
    for (const char *name : {"", ".bin", "bin", "x.txt", "x.BIN", "x.bin.", "abin", "x.bin "}) {
        EXPECT_ACCEPTED(Convert("0", "1", name));
        EXPECT_EQ(TextOf(setting.wszDumpFile), L"dumpFile.bin") << name;
    }
    EXPECT_ACCEPTED(Convert("0", "1", "x.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"x.bin");
}

TEST_F(DumpFlashArguments, Name_is_UTF_8) {
    EXPECT_ACCEPTED(Convert("0", "1", "\xC3\xA4\xE2\x82\xAC.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"\u00E4\u20AC.bin");
}

TEST_F(DumpFlashArguments, Long_name_fills_the_field) {
    EXPECT_ACCEPTED(Convert("0", "1", std::string(300, 'n') + ".bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), std::wstring(260, L'n'));
    EXPECT_ACCEPTED(Convert("0", "1", "s.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"s.bin");
    EXPECT_EQ(setting.wszDumpFile[259], L'\0');
}
