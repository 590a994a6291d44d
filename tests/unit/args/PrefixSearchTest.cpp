#include "ParserFixture.h"

#include "scaler_isp/args/CommandFlow.h"

class PrefixSearch : public ParserTest {
  protected:
    void Prefix(const std::string &prefix) {
        ini = folder.Write("my.ini", "[ISP_Fw]\nstrFwPrefix=" + prefix + "\n");
    }
    Answer Search() {
        name = "unchanged";
        return Ask([&] { return parser->GetBinNameFromPrefixSetting(name, ini); });
    }
    std::string ini = folder.Path("my.ini");
    std::string name;
};

TEST_F(PrefixSearch, Single_match_is_returned) {
    Prefix("FWX");
    for (const char *file : {"FWX_1.bin", "fwx_2.bin", "aFWX.bin", "FW.bin", "other.bin"}) {
        folder.Write(file, "x");
    }
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "FWX_1.bin");
}

TEST_F(PrefixSearch, Two_matches_fail_and_message_shows_count) {
    Prefix("FWX");
    folder.Write("FWX_1.bin", "x");
    folder.Write("FWX_2.bin", "x");
    EXPECT_REFUSED(Search(), "find 2 match fw base on prefix FWX, fail!\n");
    EXPECT_EQ(name, "unchanged");
}

TEST_F(PrefixSearch, Name_equal_to_prefix_does_not_match) {
    Prefix("whole.bin");
    folder.Write("whole.bin", "x");
    EXPECT_REFUSED(Search(), "find 0 match fw base on prefix whole.bin, fail!\n");
    folder.Write("whole.bin.bin", "x");
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "whole.bin.bin");
}

TEST_F(PrefixSearch, Missing_files_are_reported_before_missing_prefix) {
    EXPECT_REFUSED(Search(), "Cannot find bin in current dir!\n");
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"");
    folder.Write("a.bin", "x");
    EXPECT_REFUSED(Search(), "Cannot fw prefix setting!\n");
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), Wide(ini));
    Prefix("");
    EXPECT_REFUSED(Search(), "Cannot fw prefix setting!\n");
    folder.Write("my.ini", "[ISP_FW]\nstrFwPrefix=a\n[ISP_Fw]\nstrfwprefix=a\n");
    EXPECT_REFUSED(Search(), "Cannot fw prefix setting!\n");
}

TEST_F(PrefixSearch, Prefix_is_compared_as_UTF8) {
    Prefix("\xC3\xA4");
    folder.Write("\xC3\xA4.bin", "x");
    folder.Write("a.bin", "x");
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "\xC3\xA4.bin");
}

TEST_F(PrefixSearch, Prefix_longer_than_path_field_is_read_completely) {
    Prefix(std::string(900, 'p'));
    folder.Write("a.bin", "x");
    EXPECT_REFUSED(Search(),
                   "find 0 match fw base on prefix " + std::string(900, 'p') + ", fail!\n");
}

TEST_F(PrefixSearch, Found_file_becomes_entry_0) {
    Prefix("F");
    const std::string file = folder.Write("F1.bin", "x");
    EXPECT_ACCEPTED(
        Parse({"--isp", "--settingfile", ini, "--searchfw", "prefix", "--bank", "0x20"}));
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 1U);
    EXPECT_EQ(Setting()->stMapFw.ulTargetBank[0], 0x20U);
    EXPECT_EQ(TextOf(Setting()->stMapFw.stFwBank[0].wszFwPath), Wide(file));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), Wide(ini));
    EXPECT_EQ(Setting()->bAutoSearchFW, 1U);
}

TEST_F(PrefixSearch, Failed_search_rejects_line) {
    folder.Write("a.bin", "x");
    EXPECT_REFUSED(Parse({"--isp", "--settingfile", ini, "--searchfw", "prefix", "--comm", "x"}),
                   "Cannot fw prefix setting!\n");
}

TEST_F(PrefixSearch, Search_ignores_settings_file_given_after_it) {
    Prefix("F");
    folder.Write("F1.bin", "x");
    EXPECT_REFUSED(Parse({"--isp", "--searchfw", "prefix", "--settingfile", ini}),
                   "Cannot fw prefix setting!\n");
    const std::wstring path = TextOf(Setting()->wszSettingFile);
    EXPECT_EQ(path.substr(path.rfind(L'/') + 1), L"IspSetting.ini");
}

TEST_F(PrefixSearch, Settings_of_library_are_found_though_name_is_inexpressible) {
    folder.Write("FWX_1.bin", "x");
    folder.Write("other.bin", "x");
    folder.Write("IspSetting.ini", "[ISP_Fw]\nstrFwPrefix=FWX\n");
    const std::string here = folder.Path() + "/";
    for (const bool isKnown : {true, false}) {
        const ArgsDirectories directories{here, LibraryDirectory{L"", isKnown ? here : ""}};
        wchar_t field[SCALER_ISP_PATH_CHARS] = {};
        const std::string printed = OutputOf(
            [&] { EXPECT_EQ(FindFirmwareByPrefix(directories, "", field, name), isKnown); });
        EXPECT_EQ(printed, isKnown ? "" : "Cannot fw prefix setting!\n");
        EXPECT_EQ(std::wstring(field), L"IspSetting.ini");
        EXPECT_EQ(directories.OfUserDefinedFile(), here);
    }
    EXPECT_EQ(name, "FWX_1.bin");
    const ArgsDirectories without{"", LibraryDirectory{L"", here}};
    EXPECT_EQ(without.OfUserDefinedFile(), here);
}
