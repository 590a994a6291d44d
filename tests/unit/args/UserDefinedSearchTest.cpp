#include "ParserFixture.h"

class UserDefinedSearch : public ParserTest {
  protected:
    void Settings(const std::string &lines) {
        folder.Write("IspUserDefined.txt", "[UserDefinedInfo]\n" + lines);
    }
    void Files(const std::vector<std::string> &names) {
        for (const std::string &file : names) {
            folder.Write(file, "x");
        }
    }
    Answer Read() {
        info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO();
        return Ask([&] { return parser->GetUserDefinedInfoFromTxt(info); });
    }
    Answer Search() {
        name = "unchanged";
        return Ask([&] { return parser->GetUserDefinedBinNameFromTxt(name); });
    }
    STRUCT_CP_GET_USER_DEFINED_BIN_INFO info;
    std::string name;
};

TEST_F(UserDefinedSearch, GetUserDefinedInfoFromTxt_reads_all_keys) {
    Settings("RecordSIMode=1\nRecordModelMode=2\nRecordPanelMode=0\nRecordVersionMode=2\n"
             "SIName=0x52 84\nModelName=0101 0x42\nPanelName= P a n \nVersion=1 0x10 3\n"
             "CapabilityInfo= c a p \nIgnoreSIName=1\nIgnoreModelName=2\nIgnorePanelName=-1\n"
             "IgnoreVersionName=0\nIgnoreCapabilityInfo=5\nFindBinUseVerMode=1\n");
    EXPECT_ACCEPTED(Read());
    EXPECT_EQ(info.ulRecordSIMode, 1U);
    EXPECT_EQ(info.ulRecordModelMode, 2U);
    EXPECT_EQ(info.ulRecordPanelMode, 0U);
    EXPECT_EQ(info.ulRecordVersionMode, 2U);
    EXPECT_EQ(info.strSIName, "RT");
    EXPECT_EQ(info.strModelName, "AB");
    EXPECT_EQ(info.strPanelName, "Pan");
    EXPECT_EQ(info.strVersion, "1.16.3");
    EXPECT_EQ(info.strCapabilityInfo, "cap");
    EXPECT_EQ(info.bIgnoreSIName, 1U);
    EXPECT_EQ(info.bIgnoreModelName, 2U);
    EXPECT_EQ(info.bIgnorePanelName, 0xFFFFFFFFU);
    EXPECT_EQ(info.bIgnoreVersionName, 0U);
    EXPECT_EQ(info.bIgnoreCapabilityInfo, 5U);
    EXPECT_EQ(static_cast<int>(info.enumFindBinUseVerMode), 1);
}

TEST_F(UserDefinedSearch, File_needs_at_least_one_identification_string) {
    for (const char *line : {"SIName=a\n", "ModelName=a\n", "PanelName=a\n", "Version=1\n"}) {
        Settings(line);
        EXPECT_ACCEPTED(Read());
    }
    Settings("CapabilityInfo=a\nRecordSIMode=1\n");
    EXPECT_REFUSED(Read(), "");
    folder.Write("IspUserDefined.txt", "[Other]\nSIName=a\n");
    EXPECT_REFUSED(Read(), "");
}

TEST_F(UserDefinedSearch, GetUserDefinedInfoFromTxt_fails_if_file_is_missing) {
    Files({"a.bin"});
    EXPECT_REFUSED(Read(), "");
    EXPECT_REFUSED(Search(), "get userdefined info fail!\n");
    EXPECT_EQ(name, "unchanged");
}

TEST_F(UserDefinedSearch, Only_wrong_version_mode_ends_reading) {
    Settings("RecordSIMode=5\nRecordModelMode=3\nRecordPanelMode=-1\nSIName=A B\n");
    const Answer answer = Read();
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "Record si mode setting error!Record model mode setting error!"
                          "Record panel mode setting error!");
    EXPECT_EQ(info.ulRecordSIMode, 0U);
    EXPECT_EQ(info.ulRecordModelMode, 0U);
    EXPECT_EQ(info.ulRecordPanelMode, 0U);
    EXPECT_EQ(info.strSIName, "AB");
    for (const char *mode : {"3", "-1", "99"}) {
        Settings(std::string("RecordVersionMode=") + mode + "\nSIName=A\n");
        EXPECT_REFUSED(Read(), "Record version mode setting error!");
        EXPECT_EQ(info.strSIName, "");
    }
    Files({"a.bin"});
    EXPECT_REFUSED(Search(), "Record version mode setting error!get userdefined info fail!\n");
}

TEST_F(UserDefinedSearch, Find_mode_above_1_is_rejected_and_negative_accepted) {
    for (const char *mode : {"2", "7"}) {
        Settings(std::string("FindBinUseVerMode=") + mode + "\nSIName=A\n");
        EXPECT_REFUSED(Read(), "Find bin version mode setting error!");
    }
    Settings("FindBinUseVerMode=-3\nSIName=A\nVersion=1\n");
    EXPECT_ACCEPTED(Read());
    EXPECT_EQ(static_cast<int>(info.enumFindBinUseVerMode), -3);
    Files({"A1.bin"});
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined version name info!\n");
}

TEST_F(UserDefinedSearch, Ignoring_all_four_filters_is_rejected) {
    Settings("IgnoreSIName=1\nIgnoreModelName=1\nIgnorePanelName=1\nIgnoreVersionName=1\n"
             "SIName=A\n");
    EXPECT_REFUSED(Read(), "Ignore setting error!");
    for (const char *key : {"SIName", "ModelName", "PanelName", "VersionName"}) {
        std::string lines = "SIName=A\nIgnoreCapabilityInfo=1\n";
        for (const char *other : {"SIName", "ModelName", "PanelName", "VersionName"}) {
            lines += std::string("Ignore") + other + (other == key ? "=0\n" : "=1\n");
        }
        Settings(lines);
        EXPECT_ACCEPTED(Read());
    }
}

TEST_F(UserDefinedSearch, Character_codes_are_converted_to_characters) {
    const struct {
        const char *codes;
        const char *text;
    } rows[] = {
        {"0x52 0x54", "RT"}, {"65  66", "AB"}, {"0101", "A"}, {"321", "A"}, {"65 0 66", "AB"}};
    for (const auto &row : rows) {
        Settings(std::string("RecordSIMode=2\nSIName=") + row.codes + "\n");
        EXPECT_ACCEPTED(Read());
        EXPECT_EQ(info.strSIName, row.text) << row.codes;
    }
}

TEST_F(UserDefinedSearch, Code_that_is_not_number_fails_silently) {
    for (const char *key : {"SI", "Model", "Panel"}) {
        Settings(std::string("Record") + key + "Mode=1\n" + key + "Name=65 x\nVersion=1\n");
        EXPECT_REFUSED(Read(), "");
    }
    Settings("RecordVersionMode=1\nVersion=1 b\nSIName=A\n");
    EXPECT_REFUSED(Read(), "");
    EXPECT_EQ(info.strSIName, "A");
}

TEST_F(UserDefinedSearch, Filters_are_applied_one_after_another) {
    Files({"SI_MO_PA_1.2.bin", "SI_MO_PA_1.3.bin", "SI_MO_xx_1.2.bin", "SI_xx_PA_1.2.bin",
           "xx_MO_PA_1.2.bin"});
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\nVersion=1.2\n");
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "SI_MO_PA_1.2.bin");
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
    EXPECT_EQ(name, "unchanged");
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\nVersion=1.2\nIgnoreSIName=1\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\nVersion=1.2\nIgnoreModelName=1\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\nVersion=1.2\nIgnorePanelName=1\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
    Settings("SIName=SI\nModelName=MO\nPanelName=PA\nVersion=1.2\nIgnoreVersionName=1\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
}

TEST_F(UserDefinedSearch, Each_filter_prints_its_own_message) {
    Files({"SI_MO_PA_1.2.bin"});
    Settings("SIName=si\nModelName=no\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined SI name info!\n");
    Settings("SIName=SI\nModelName=no\nPanelName=no\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined model name info!\n");
    Settings("SIName=SI\nPanelName=no\nVersion=9\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined panel name info!\n");
    Settings("SIName=SI\nVersion=9\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined version name info!\n");
    Settings("SIName=SI\nVersion=12\nFindBinUseVerMode=1\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined version name info!\n");
}

TEST_F(UserDefinedSearch, Empty_directory_is_reported_by_filter_or_count) {
    Settings("SIName=SI\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined SI name info!\n");
    Settings("SIName=SI\nIgnoreSIName=1\n");
    EXPECT_REFUSED(Search(), "0 bin file find user userdefined info!\n");
}

TEST_F(UserDefinedSearch, Capability_precedes_version_in_pattern) {
    Files({"x_cap1.2.bin", "y_1.2.bin"});
    Settings("Version=1 2\nRecordVersionMode=1\nCapabilityInfo=c a p\n");
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "x_cap1.2.bin");
    Settings("Version=1 2\nRecordVersionMode=1\nCapabilityInfo=cap\nIgnoreCapabilityInfo=1\n");
    EXPECT_REFUSED(Search(), "2 bin file find user userdefined info!\n");
}

TEST_F(UserDefinedSearch, Mode_1_matches_major_version) {
    Files({"FW1.7.bin", "FW1.bin"});
    Settings("Version=1 2\nRecordVersionMode=1\nFindBinUseVerMode=1\n");
    EXPECT_ACCEPTED(Search());
    EXPECT_EQ(name, "FW1.7.bin");
    // Text versions have lost their blanks by then.
    Settings("Version=1 2\nFindBinUseVerMode=1\n");
    EXPECT_REFUSED(Search(), "cann't find fw use userdefined version name info!\n");
}

TEST_F(UserDefinedSearch, Found_file_becomes_entry_0) {
    Files({"A1.bin", "B1.bin"});
    Settings("SIName=B\n");
    EXPECT_ACCEPTED(Parse({"--isp", "--searchfw", "userdefined"}));
    EXPECT_EQ(TextOf(Setting()->stMapFw.stFwBank[0].wszFwPath), Wide(folder.Path("B1.bin")));
    Settings("SIName=C\n");
    EXPECT_REFUSED(ParseFresh({"--isp", "--searchfw", "userdefined", "--comm", "x"}),
                   "cann't find fw use userdefined SI name info!\n");
}
