#include "ParserFixture.h"
#include "support/ActionList.h"

/// The order of the validation and what each step stores.
class ArgsValidate : public ParserTest {
  protected:
    ArgsValidate() {
        fw = folder.Write("fw.bin", "firmware");
        folder.Write("fw.sig", "signature");
        folder.Write("vk.pem", "key");
    }
    Answer Judge(STRUCT_CP_ISP_CMD_ARGS args) {
        Renew();
        return Ask([&] { return parser->JudgeArgument(args); });
    }
    std::string fw;
};

TEST_F(ArgsValidate, Line_needs_exactly_one_action) {
    EXPECT_REFUSED(Parse({}), "Action type undefined or illegal!\n");
    EXPECT_REFUSED(ParseFresh({"--verify", "--erase"}),
                   "Action type undefined or more than one type!\n");
    EXPECT_ACCEPTED(ParseFresh({"--erase", "--erase"}));
}

TEST_F(ArgsValidate, Unknown_mask_bits_of_raw_record_are_rejected) {
    STRUCT_CP_ISP_CMD_ARGS args;
    args.ulActionMask = 0x80000000U;
    EXPECT_REFUSED(Judge(args), "Action type undefined or illegal!\n");
    args.ulActionMask = 0x4000;
    args.ulSignTypeMask = 4;
    EXPECT_REFUSED(Judge(args), "Digital signature type is illegal!\n");
    args.ulSignTypeMask = 0;
    args.ulVerLocMask = 0x100;
    EXPECT_REFUSED(Judge(args), "Version location type is illegal!\n");
    args.ulVerLocMask = 0;
    EXPECT_ACCEPTED(Judge(args));
}

TEST_F(ArgsValidate, Action_is_checked_before_all_other_options) {
    EXPECT_REFUSED(Parse({"--sw", "--hw", "--reg", "--ddcci", "--comm", "x", "--write", "y"}),
                   "Action type undefined or illegal!\n");
}

TEST_F(ArgsValidate, Merge_data_is_checked_before_signature) {
    EXPECT_REFUSED(Parse({"--mergefwinfo", "--write", "x", "--sw", "--hw"}),
                   "Parameter illegal! --MergeFw --write x \n");
    EXPECT_EQ(Setting()->enumMergeFWInfoMode, 1U);
}

TEST_F(ArgsValidate, Two_signature_types_are_rejected) {
    EXPECT_REFUSED(Parse({"--isp", "--sw", "--hw", "--dsmode", "9"}),
                   "Digital signature type is undefined or more than one type!\n");
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--fw", "fw.bin"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumDigitalSignatureType), 0U);
}

TEST_F(ArgsValidate, Second_line_keeps_fields_without_option) {
    EXPECT_ACCEPTED(Parse({"--mergefwinfo", "--write", "7"}));
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumMergeFWInfoMode), 1U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 1U);
    // The signature type is different: a command without one has none.
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--hw", "--dsmode", "2", "--fw", "fw.bin"}));
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumDigitalSignatureType), 0U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumDigitalSignatureType), 2U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumHWDigitalSignatureMode), 2U);
}

TEST_F(ArgsValidate, Invalid_signature_mode_prints_two_lines) {
    EXPECT_REFUSED(Parse({"--isp", "--sw", "--fw", "a.bin", "--dsmode", "5"}),
                   "Parameter out of range! --dsmode 5 \nDigital signature mode is illegal!\n");
    EXPECT_REFUSED(ParseFresh({"--isp", "--hw", "--dsmode", "q"}),
                   "Parameter illegal! --dsmode q \nDigital signature mode is illegal!\n");
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumDigitalSignatureType), 2U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumDigitalSignatureType), 2U);
}

TEST_F(ArgsValidate, Signature_mode_is_stored_for_its_type_only) {
    EXPECT_ACCEPTED(Parse({"--isp", "--factory", "--sw", "--fw", "fw.bin", "--dsmode", "4"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumSWDigitalSignatureMode), 4U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSWDigitalSignatureMode), 4U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumHWDigitalSignatureMode), 0U);
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--hw", "--fw", "fw.bin", "--dsmode", "4"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumSWDigitalSignatureMode), 0U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSWDigitalSignatureMode), 0U);
    EXPECT_EQ(static_cast<unsigned>(Sign().enumHWDigitalSignatureMode), 4U);
}

TEST_F(ArgsValidate, Firmware_path_is_checked_before_action_of_signature) {
    EXPECT_REFUSED(Parse({"--erase", "--sw"}), "Program fw path is undefined!\n");
    EXPECT_REFUSED(ParseFresh({"--erase", "--hw", "--dsmode", "2"}),
                   "Program fw path is undefined!\n");
    EXPECT_REFUSED(ParseFresh({"--erase", "--sw", "--dsmode", "1"}),
                   "Program fw path is undefined!\n");
    EXPECT_REFUSED(ParseFresh({"--erase", "--hw", "--dsmode", "1"}),
                   "Digital signature type should not be defined only when program fw!\n");
    EXPECT_REFUSED(ParseFresh({"--erase", "--sw", "--fw", "a.bin", "--comm", "x"}),
                   "Digital signature type should not be defined only when program fw!\n");
    EXPECT_EQ(TextOf(Sign().szFwFile), "a.bin");
}

TEST_F(ArgsValidate, Signature_is_rejected_unless_action_programs_or_signs) {
    for (const ListedAction &action : kListedActions) {
        if (action.HasNoLine() || action.UsesSignPluginOnly()) {
            continue;
        }
        SCOPED_TRACE(action.name);
        const Answer answer = ParseFresh({action.Line()[0], "--hw", "--fw", "fw.bin"});
        EXPECT_EQ(answer.result, action.maySign ? 1 : 0);
        EXPECT_EQ(answer.out,
                  action.maySign
                      ? ""
                      : "Digital signature type should not be defined only when program fw!\n");
    }
}

TEST_F(ArgsValidate, Boot_path_needs_a_signature_type) {
    EXPECT_ACCEPTED(
        Parse({"--isp", "--factory", "--newboot", "--fw", "fw.bin", "--boot", "boot.bin"}));
    EXPECT_EQ(TextOf(Setting()->szBootFwPath), "");
    EXPECT_ACCEPTED(ParseFresh(
        {"--isp", "--factory", "--newboot", "--fw", "fw.bin", "--boot", "boot.bin", "--hw"}));
    EXPECT_EQ(TextOf(Setting()->szBootFwPath), "boot.bin");
}

TEST_F(ArgsValidate, Long_strings_fill_fields_without_terminator) {
    const std::string text(300, 'k');
    EXPECT_ACCEPTED(
        Parse({"--isp", "--hw", "--fw", "fw.bin", "--vkfile", text, "--subcert",
               text.substr(0, 260), "--boot", text, "--nextvkfile", text.substr(0, 259)}));
    EXPECT_EQ(TextOf(Sign().szVerifyKeyFile), text.substr(0, 260));
    EXPECT_EQ(TextOf(Sign().szSignKeyFile), "");
    EXPECT_EQ(TextOf(Sign().szSubCertFile), text.substr(0, 260));
    EXPECT_EQ(TextOf(Sign().szNextVerifyKeyFile), text.substr(0, 259));
    EXPECT_EQ(TextOf(Setting()->szBootFwPath), text.substr(0, 260));
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 0U);
}

TEST_F(ArgsValidate, Shorter_string_overwrites_all_of_longer_one) {
    for (const std::string &text : {std::string(300, 'k'), std::string("s"), std::string()}) {
        EXPECT_REFUSED(Parse({"--isp", "--hw", "--dsmode", "1", "--boot", text, "--signfile", text,
                              "--keypair", text, "--vkfile", text, "--skfile", text, "--subcert",
                              text, "--nextvkfile", text}),
                       "Program fw bin path should not be empty!\n");
        std::string field = text;
        field.resize(260);
        const auto sign = Sign();
        EXPECT_EQ(std::string(Setting()->szBootFwPath, 260), field);
        EXPECT_EQ(std::string(sign.szSignatureFile, 260), field);
        EXPECT_EQ(std::string(sign.szKeyPair, 260), field);
        EXPECT_EQ(std::string(sign.szVerifyKeyFile, 260), field);
        EXPECT_EQ(std::string(sign.szSignKeyFile, 260), field);
        EXPECT_EQ(std::string(sign.szSubCertFile, 260), field);
        EXPECT_EQ(std::string(sign.szNextVerifyKeyFile, 260), field);
    }
}

TEST_F(ArgsValidate, Sign_skips_steps_after_signature_files) {
    EXPECT_ACCEPTED(Parse({"--sign", "--sw", "--dsmode", "2", "--fw", "fw.bin", "--comm", "x",
                           "--slave", "y", "--reg", "--ddcci"}));
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSignActionType), 1U);
    EXPECT_EQ(TextOf(Sign().szFwFile), fw);
    EXPECT_EQ(TextOf(Sign().szSignatureFile), fw + ".sig");
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"");
    EXPECT_REFUSED(ParseFresh({"--sign", "--sw", "--dsmode", "1", "--fw", "fw.bin"}),
                   "Digital signature: Lenovo digital signature can not support sign function!\n");
}

TEST_F(ArgsValidate, Verify_skips_steps_after_signature_files) {
    EXPECT_ACCEPTED(Parse({"--verify", "--sw", "--dsmode", "2", "--fw", "fw.bin", "--signfile",
                           "fw.sig", "--comm", "x"}));
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSignActionType), 2U);
    EXPECT_EQ(TextOf(Sign().szSignatureFile), folder.Path("fw.sig"));
    EXPECT_REFUSED(ParseFresh({"--verify", "--hw", "--fw", "fw.bin"}),
                   "Digital signature: Hw digital signature can not support verify function!\n");
    EXPECT_REFUSED(ParseFresh({"--verify", "--sw", "--dsmode", "2", "--fw", "fw.bin"}),
                   "Digital signature: Signature file is missing!\n");
}

TEST_F(ArgsValidate, Sign_and_verify_without_type_run_all_steps) {
    EXPECT_REFUSED(Parse({"--sign", "--comm", "x"}), "Parameter illegal! --comm x \n");
    EXPECT_ACCEPTED(ParseFresh({"--verify", "--slave", "3"}));
    EXPECT_EQ(Setting()->ucSlaveAddress, 3);
}

TEST_F(ArgsValidate, Programming_checks_files_of_software_signature) {
    EXPECT_ACCEPTED(Parse({"--isp", "--sw", "--dsmode", "1", "--fw", "fw.bin", "--signfile",
                           "fw.sig", "--vkfile", "vk.pem"}));
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSignActionType), 2U);
    EXPECT_EQ(TextOf(Sign().szVerifyKeyFile), folder.Path("vk.pem"));
    EXPECT_REFUSED(ParseFresh({"--isp", "--sw", "--dsmode", "1", "--fw", "fw.bin", "--signfile",
                               "fw.sig", "--comm", "x"}),
                   "Digital signature: Lenovo verify key file should not be empty!\n");
}

TEST_F(ArgsValidate, Programming_checks_no_files_of_hardware_signature) {
    EXPECT_ACCEPTED(Parse({"--isp", "--hw", "--fw", "fw.bin", "--signfile", "none.sig"}));
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSignActionType), 0U);
    EXPECT_EQ(TextOf(Sign().szSignatureFile), "none.sig");
}

TEST_F(ArgsValidate, Factory_mode_skips_check_of_signature_files) {
    EXPECT_ACCEPTED(Parse({"--isp", "--factory", "--sw", "--dsmode", "1", "--fw", "fw.bin"}));
    EXPECT_EQ(static_cast<unsigned>(Sign().enumSignActionType), 2U);
    EXPECT_EQ(TextOf(Sign().szFwFile), "fw.bin");
}

TEST_F(ArgsValidate, Mode_4_continues_after_failed_file_check) {
    Answer answer = Parse({"--isp", "--sw", "--dsmode", "4", "--fw", "fw.bin"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "Digital signature: Signature file is missing!\n");
    EXPECT_EQ(TextOf(Sign().szFwFile), fw);
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 1U);
    answer = ParseFresh({"--isp", "--sw", "--dsmode", "4", "--fw", "fw.bin", "--signfile", "fw.sig",
                         "--nextvkfile", "none"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(TextOf(Sign().szSignatureFile), folder.Path("fw.sig"));
    EXPECT_EQ(TextOf(Sign().szNextVerifyKeyFile), "none");
}

TEST_F(ArgsValidate, Two_version_locations_are_rejected) {
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumVersionLocationType), 0U);
    EXPECT_REFUSED(ParseFresh({"--resetmcu", "--reg", "--ddcci", "--comm", "x"}),
                   "Get version location type undefined or more than one type!\n");
    const struct {
        std::vector<std::string> words;
        unsigned location;
    } rows[] = {
        {{"--reg"}, 1}, {{"--ddcci"}, 2},    {{"--flash"}, 3},      {{"--fwbin"}, 4},
        {{"--cmd"}, 5}, {{"--fwbincmd"}, 6}, {{"--copydiffer"}, 7}, {{"--userdefined", "1"}, 8}};
    for (const auto &row : rows) {
        std::vector<std::string> words = row.words;
        words.emplace_back("--resetmcu");
        EXPECT_ACCEPTED(ParseFresh(words));
        EXPECT_EQ(static_cast<unsigned>(Setting()->enumVersionLocationType), row.location);
    }
}

TEST_F(ArgsValidate, Invalid_version_location_prints_two_messages) {
    EXPECT_REFUSED(Parse({"--resetmcu", "--userdefined", "9", "--comm", "x"}),
                   "Get user defined version mode fail, mode is: 9\nGet version type fail\n");
    EXPECT_REFUSED(ParseFresh({"--resetmcu", "--userdefined", "z"}),
                   "User defined version mode illegal, mode is: z\nGet version type fail\n");
    EXPECT_REFUSED(ParseFresh({"--resetmcu", "--flash", "--veraddr", "0", "--totalverlen", "257",
                               "--majorverlen", "1", "--comm", "x"}),
                   "Version location type flash setting is illegal\n");
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--reg", "--totalverlen", "257"}));
    EXPECT_EQ(Setting()->stReadVersionFromFlash.ulTotalVerLen, 0U);
}

TEST_F(ArgsValidate, Channel_slave_and_firmware_are_checked_in_this_order) {
    EXPECT_REFUSED(Parse({"--isp", "--comm", "20", "--slave", "255"}),
                   "Parameter out of range! --comm 20\n");
    EXPECT_REFUSED(ParseFresh({"--isp", "--comm", "19", "--slave", "255"}),
                   "Parameter out of range! --slave 255 \n");
    EXPECT_EQ(Setting()->nSlaveAddressState, 0);
    EXPECT_EQ(Setting()->ucSlaveAddress, 0x94);
    EXPECT_REFUSED(ParseFresh({"--isp", "--comm", "19", "--slave", "0"}),
                   "Program fw bin path should not be empty!\n");
    EXPECT_EQ(Setting()->nSlaveAddressState, 1);
    EXPECT_EQ(Setting()->ucSlaveAddress, 0x94);
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumCommID), 19U);
}

TEST_F(ArgsValidate, Recordver_needs_files_if_location_is_firmware_file) {
    EXPECT_ACCEPTED(Parse({"--recordver", "--reg"}));
    EXPECT_REFUSED(ParseFresh({"--recordver", "--fwbin"}),
                   "Program fw bin path should not be empty!\n");
    EXPECT_REFUSED(ParseFresh({"--recordver", "--fwbincmd"}),
                   "Program fw bin path should not be empty!\n");
    EXPECT_ACCEPTED(ParseFresh({"--recordver", "--fwbin", "--fw", "fw.bin"}));
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 1U);
}

TEST_F(ArgsValidate, Arguments_of_action_are_checked_after_firmware) {
    EXPECT_REFUSED(Parse({"--ispuser", "--fw", "fw.bin", "--flagaddr", "x", "--comparever"}),
                   "Parameter illegal! --flagaddr x \n");
    EXPECT_EQ(Setting()->bCompareVersion, 1U);
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 1U);
    EXPECT_REFUSED(ParseFresh({"--dumpflash", "--ispchannel"}), "");
    EXPECT_EQ(Setting()->bIspChannel, 1U);
    EXPECT_REFUSED(ParseFresh({"--i2cwrite", "--writedata", "1,2"}), "");
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"");
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--fw", "fw.bin", "--flagaddr", "x"}));
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--writedata", "bad", "--dumpaddr", "bad"}));
}

TEST_F(ArgsValidate, Settings_file_defaults_to_library_directory) {
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    const std::wstring path = TextOf(Setting()->wszSettingFile);
    EXPECT_EQ(path.substr(path.rfind(L'/') + 1), L"IspSetting.ini");
    EXPECT_EQ(path.front(), L'/');
}

TEST_F(ArgsValidate, Settingfile_option_is_stored_as_absolute_path) {
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    const std::wstring beside = TextOf(Setting()->wszSettingFile);
    const std::wstring library = beside.substr(0, beside.rfind(L'/') + 1);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--settingfile", "other.ini"}));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), library + L"other.ini");
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--settingfile", "/x/../y.ini"}));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"/x/../y.ini");
}

TEST_F(ArgsValidate, Long_settings_file_is_truncated_to_260_characters) {
    const std::string path = "/" + std::string(400, 's');
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--settingfile", path}));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), Wide(path.substr(0, 260)));
    EXPECT_EQ(TextOf(Setting()->szBootFwPath), "");
}

TEST_F(ArgsValidate, Shorter_settings_path_keeps_tail_of_longer_one) {
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--settingfile", "/long/name.ini"}));
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--settingfile", "/s.ini"}));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"/s.ininame.ini");
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--settingfile", "/\xFF"}));
    EXPECT_EQ(TextOf(Setting()->wszSettingFile), L"/s.ininame.ini");
}
