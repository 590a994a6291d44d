#include "ParserFixture.h"

using ArgsScan = ParserTest;

TEST_F(ArgsScan, First_argument_is_program_name) {
    const char *const one[] = {"--resetmcu"};
    EXPECT_REFUSED(Ask([&] { return parser->ParseArgs(1, one); }),
                   "Action type undefined or illegal!\n");
    const char *const two[] = {"--erase", "--resetmcu"};
    EXPECT_ACCEPTED(Ask([&] { return parser->ParseArgs(2, two); }));
    EXPECT_EQ(Setting()->enumActionType, ENUM_ACTION_RESETMCU);
}

TEST_F(ArgsScan, Empty_argument_list_has_no_action) {
    const char *const none[] = {nullptr};
    EXPECT_REFUSED(Ask([&] { return parser->ParseArgs(0, none); }),
                   "Action type undefined or illegal!\n");
    EXPECT_REFUSED(Ask([&] { return parser->ParseArgs(0, nullptr); }),
                   "Action type undefined or illegal!\n");
}

TEST_F(ArgsScan, ParseArgs_keeps_order_of_argv) {
    const char *const argv[] = {"tool", "stray", "--resetmcu", "more"};
    EXPECT_EQ(Ask([&] { return parser->ParseArgs(4, argv); }).result, 1);
    EXPECT_STREQ(argv[1], "stray");
    EXPECT_STREQ(argv[2], "--resetmcu");
}

TEST_F(ArgsScan, Unknown_options_are_not_fatal) {
    Answer answer = Parse({"--bogus", "--resetmcu"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.err, "tool: unrecognized command '--bogus'\n");
    EXPECT_EQ(answer.out, std::string("illegal option ' \0 '!\n", 22));
    answer = ParseFresh({"--resetmcu", "--comm"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.err, "tool: option '--comm' requires an argument\n");
    EXPECT_EQ(answer.out, "illegal option ' \x0F '!\n");
    EXPECT_EQ(Setting()->enumCommID, 0U);
}

TEST_F(ArgsScan, Non_option_arguments_are_listed_with_spaces) {
    Answer answer = Parse({"a", "--resetmcu", "b c", "--", "--erase"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "non-option ARGV-elements: a b c --erase \n");
    EXPECT_EQ(answer.err, "");
    answer = ParseFresh({"--resetmcu", "--"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "");
}

TEST_F(ArgsScan, Value_follows_space_or_equals_sign) {
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--comm=7"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumCommID), 7U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--comm", "8"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumCommID), 8U);
    EXPECT_ACCEPTED(ParseFresh({"--resetm", "--sl", "8"}));
    EXPECT_EQ(Setting()->ucSlaveAddress, 8);
}

TEST_F(ArgsScan, Last_of_several_values_wins) {
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--comm", "bad", "--comm", "3"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumCommID), 3U);
}

TEST_F(ArgsScan, String_options_reach_signature_record) {
    folder.Write("fw.bin", "x");
    EXPECT_ACCEPTED(Parse({"--isp", "--factory", "--sw", "--fw",         "fw.bin", "--signfile",
                           "t1",    "--keypair", "t2",   "--vkfile",     "t3",     "--skfile",
                           "t4",    "--subcert", "t5",   "--nextvkfile", "t6",     "--boot",
                           "t7",    "--dsmode",  "3"}));
    const auto sign = Sign();
    EXPECT_EQ(TextOf(sign.szFwFile), "fw.bin");
    EXPECT_EQ(TextOf(sign.szSignatureFile), "t1");
    EXPECT_EQ(TextOf(sign.szKeyPair), "t2");
    EXPECT_EQ(TextOf(sign.szVerifyKeyFile), "t3");
    EXPECT_EQ(TextOf(sign.szSignKeyFile), "t4");
    EXPECT_EQ(TextOf(sign.szSubCertFile), "t5");
    EXPECT_EQ(TextOf(sign.szNextVerifyKeyFile), "t6");
    EXPECT_EQ(TextOf(Setting()->szBootFwPath), "t7");
    EXPECT_EQ(parser->GetOneBootFactoryModeBootFw(), "t7");
    EXPECT_EQ(sign.enumSWDigitalSignatureMode, 3U);
}

TEST_F(ArgsScan, String_options_reach_command_record) {
    EXPECT_ACCEPTED(Parse({"--resetmcu", "--flash", "--veraddr", "1", "--totalverlen", "20",
                           "--majorverlen", "3", "--subverlen", "4", "--recordvermode", "0"}));
    const auto flash = Setting()->stReadVersionFromFlash;
    EXPECT_EQ(flash.ulVerAddr, 1U);
    EXPECT_EQ(flash.ulTotalVerLen, 20U);
    EXPECT_EQ(flash.ulMajorVerLen, 3U);
    EXPECT_EQ(flash.ulSubVerLen, 4U);
    EXPECT_EQ(flash.enumRecordVerMode, 0U);
    EXPECT_ACCEPTED(ParseFresh(
        {"--dumpflash", "--dumpaddr", "5", "--dumplen", "6", "--dumpname", "seven.bin"}));
    EXPECT_EQ(Setting()->stDumpFlash.ulDumpAddr, 5U);
    EXPECT_EQ(Setting()->stDumpFlash.ulDumpLen, 6U);
    EXPECT_EQ(TextOf(Setting()->stDumpFlash.wszDumpFile), L"seven.bin");
    folder.Write("fw.bin", "x");
    EXPECT_ACCEPTED(
        ParseFresh({"--ispuser", "--fw", "fw.bin", "--flagaddr", "8", "--flagdata", "9,10"}));
    EXPECT_EQ(Setting()->stFlagSetting.ulFlagAddr, 8U);
    EXPECT_EQ(Setting()->stFlagSetting.ucFlagData[1], 10);
}

TEST_F(ArgsScan, Search_and_file_exclude_each_other_silently) {
    folder.Write("a.bin", "x");
    EXPECT_REFUSED(Parse({"--isp", "--searchfw", "auto", "--fw", "a.bin"}), "");
    EXPECT_REFUSED(ParseFresh({"--isp", "--fw", "a.bin", "--searchfw", "auto"}), "");
    EXPECT_REFUSED(ParseFresh({"--isp", "--fw", "a.bin", "--searchfw", "nonsense"}), "");
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--searchfw", "auto", "--fw1", "a.bin", "--bank1", "5"}));
    EXPECT_EQ(Setting()->stMapFw.ulFwCount, 2U);
}

TEST_F(ArgsScan, Repeated_search_is_reported_as_repeated_firmware) {
    folder.Write("a.bin", "x");
    EXPECT_REFUSED(Parse({"--isp", "--searchfw", "auto", "--searchfw", "auto"}),
                   "Parameter has been detected two or more times! --fw0 \n");
}

TEST_F(ArgsScan, Searchfw_accepts_three_keywords_only) {
    for (const char *rule : {"AUTO", "", "aut", "automatic", "Prefix", "user"}) {
        EXPECT_REFUSED(ParseFresh({"--isp", "--searchfw", rule}),
                       "auto search fw parameter illegal!\n");
    }
}

TEST_F(ArgsScan, Searchfw_auto_needs_exactly_one_file) {
    EXPECT_REFUSED(Parse({"--isp", "--searchfw", "auto"}), "cann't find bin file!\n");
    folder.Write(".bin", "x");
    folder.Write("A.BIN", "x");
    EXPECT_REFUSED(ParseFresh({"--isp", "--searchfw", "auto"}), "cann't find bin file!\n");
    const std::string a = folder.Write("a.bin", "x");
    EXPECT_ACCEPTED(ParseFresh({"--isp", "--searchfw", "auto", "--bank", "4"}));
    EXPECT_EQ(Setting()->bAutoSearchFW, 1U);
    EXPECT_EQ(Setting()->stMapFw.ulTargetBank[0], 4U);
    EXPECT_EQ(TextOf(Setting()->stMapFw.stFwBank[0].wszFwPath), Wide(a));
    folder.MakeFolder("b.bin");
    EXPECT_REFUSED(ParseFresh({"--isp", "--searchfw", "auto"}), "find more than one bin file!\n");
}

TEST_F(ArgsScan, Searchfw_finds_firmware_to_sign) {
    const std::string a = folder.Write("a.bin", "x");
    EXPECT_ACCEPTED(Parse({"--sign", "--sw", "--dsmode", "2", "--searchfw", "auto"}));
    EXPECT_EQ(TextOf(Sign().szFwFile), a);
}

TEST_F(ArgsScan, Write_stores_merge_data_only_after_mergefwinfo) {
    EXPECT_ACCEPTED(Parse({"--mergefwinfo", "--write", "1.2.3"}));
    EXPECT_EQ(Setting()->enumMergeFWInfoMode, 1U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 3U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ucMergeData[2], 3);
    EXPECT_ACCEPTED(ParseFresh({"--write", "1.2.3", "--mergefwinfo"}));
    EXPECT_EQ(Setting()->enumMergeFWInfoMode, 1U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 0U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--write", "1.x"}));
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 0U);
}

TEST_F(ArgsScan, Read_together_with_write_selects_read) {
    EXPECT_ACCEPTED(Parse({"--mergefwinfo", "--read", "--write", "bad"}));
    EXPECT_EQ(Setting()->enumMergeFWInfoMode, 0U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 0U);
}

TEST_F(ArgsScan, Flag_values_repeat_on_every_later_flag_option) {
    // --write is a flag option too, and it has an argument: the mode of --userdefined becomes "4".
    EXPECT_ACCEPTED(Parse({"--userdefined", "3", "--write", "4", "--resetmcu"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumUserDefinedVersionType), 4U);
    EXPECT_ACCEPTED(ParseFresh({"--mergefwinfo", "--write", "1.2", "--userdefined", "5"}));
    EXPECT_EQ(Setting()->stMergeFwInfo.ulMergeDataCount, 1U);
    EXPECT_EQ(Setting()->stMergeFwInfo.ucMergeData[0], 5);
}

TEST_F(ArgsScan, Flag_option_without_argument_keeps_copied_values) {
    EXPECT_ACCEPTED(Parse({"--userdefined", "3", "--resetmcu"}));
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumUserDefinedVersionType), 3U);
    EXPECT_EQ(static_cast<unsigned>(Setting()->enumVersionLocationType), 8U);
    EXPECT_ACCEPTED(ParseFresh({"--mergefwinfo", "--write", "7", "--reg"}));
    EXPECT_EQ(Setting()->stMergeFwInfo.ucMergeData[0], 7);
}

TEST_F(ArgsScan, New_parser_has_default_records_and_no_files) {
    const auto setting = Setting();
    EXPECT_EQ(static_cast<unsigned>(setting->enumVersionLocationType), 1U);
    EXPECT_EQ(setting->enumMergeFWGeneration, 2U);
    EXPECT_EQ(setting->nSlaveAddressState, -1);
    EXPECT_EQ(setting->ucSlaveAddress, 0x94);
    const auto sign = Sign();
    const std::string zeroes(1840, '\0');
    EXPECT_EQ(std::memcmp(&sign, zeroes.data(), 1840), 0);
    EXPECT_REFUSED(Parse({"--isp"}), "Program fw bin path should not be empty!\n");
    EXPECT_EQ(std::make_unique<CCpIspArgsParse>()->GetCurrentDir(), "");
}

TEST_F(ArgsScan, Records_are_set_and_returned_byte_for_byte) {
    auto record = Setting();
    std::vector<unsigned char> pattern(sizeof *record);
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        pattern[i] = static_cast<unsigned char>(i * 7 + 1);
    }
    std::memcpy(static_cast<void *>(record.get()), pattern.data(), pattern.size());
    parser->SetISPCmdSetting(*record);
    const auto back = Setting();
    EXPECT_EQ(std::memcmp(back.get(), pattern.data(), 546704), 0);
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS sign;
    std::memcpy(static_cast<void *>(&sign), pattern.data(), 1840);
    parser->SetDigitalSignArgs(sign);
    const auto signBack = Sign();
    EXPECT_EQ(std::memcmp(&signBack, pattern.data(), 1840), 0);
    EXPECT_EQ(parser->GetOneBootFactoryModeBootFw().size(), TextOf(back->szBootFwPath).size());
}
