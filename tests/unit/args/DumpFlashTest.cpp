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

TEST_F(DumpFlashArguments, GetDumpFlashCmd_stores_address_length_and_name) {
    EXPECT_ACCEPTED(Convert("0x100", "16", "chip.bin"));
    EXPECT_EQ(setting.ulDumpAddr, 0x100U);
    EXPECT_EQ(setting.ulDumpLen, 16U);
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"chip.bin");
}

TEST_F(DumpFlashArguments, GetDumpFlashCmd_rejects_silently) {
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

TEST_F(DumpFlashArguments, Dump_address_is_0_if_only_length_is_given) {
    setting.ulDumpAddr = 9;
    EXPECT_ACCEPTED(Convert("", "4", ""));
    EXPECT_EQ(setting.ulDumpAddr, 0U);
}

TEST_F(DumpFlashArguments, Dump_name_must_end_in_bin) {
    for (const char *name : {"", ".bin", "bin", "x.txt", "x.BIN", "x.bin.", "abin", "x.bin "}) {
        EXPECT_ACCEPTED(Convert("0", "1", name));
        EXPECT_EQ(TextOf(setting.wszDumpFile), L"dumpFile.bin") << name;
    }
    EXPECT_ACCEPTED(Convert("0", "1", "x.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"x.bin");
}

TEST_F(DumpFlashArguments, Dump_name_is_decoded_as_UTF8) {
    EXPECT_ACCEPTED(Convert("0", "1", "\xC3\xA4\xE2\x82\xAC.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"\u00E4\u20AC.bin");
}

TEST_F(DumpFlashArguments, Long_dump_name_fills_field_without_terminator) {
    EXPECT_ACCEPTED(Convert("0", "1", std::string(300, 'n') + ".bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), std::wstring(260, L'n'));
    EXPECT_ACCEPTED(Convert("0", "1", "s.bin"));
    EXPECT_EQ(TextOf(setting.wszDumpFile), L"s.bin");
    EXPECT_EQ(setting.wszDumpFile[259], L'\0');
}
