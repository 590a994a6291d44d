#include <gmock/gmock.h>

#include "VirtualPlugin.h"

namespace {

TEST(VirtualJournal, Call_with_default_record_is_recorded_by_name_only) {
    VirtualIsp isp;
    Command command;
    isp.Run("RecordFWVersion", command);
    isp.plugin.Get<decltype(SetCommInterface)>("SetCommInterface")(nullptr);
    EXPECT_EQ(isp.Journal(), "SetUIFunction progress=yes message=yes hubDevice=no\n"
                             "RecordFWVersion\n"
                             "SetCommInterface comm=no\n");
}

TEST(VirtualJournal, Journal_is_appended_and_never_truncated) {
    VirtualIsp isp;
    isp.folder.Write("device/journal.txt", "earlier\n");
    Command command;
    isp.Run("GetScalerType", command);
    EXPECT_EQ(isp.Journal(), "earlier\nGetScalerType\n");
}

TEST(VirtualJournal, Fields_are_recorded_in_order_of_record) {
    VirtualIsp isp;
    isp.folder.Write("device/journal.txt", "");
    Command command;
    command->enumActionType = ENUM_ACTION_ISPUSER;
    command->enumVersionLocationType = ENUM_VER_LOC_NONE;
    command->enumCommID = STRUCT_ENUM_COMM_ID(3);
    command->nSlaveAddressState = 0;
    command->ucSlaveAddress = 0x6A;
    command->enumIspMode = 1;
    command.Banks(3, "/fw/a.bin", 3).Banks(9, "/fw/a.bin", 1, 7).Banks(10, "/fw/b \"q\".bin", 1, 8);
    command->stMapFw.stFwBank[4].ullBankValue = 0x1FFFFFFFFF;
    command->stFlagSetting.ulFlagCount = 2;
    command->stFlagSetting.ucFlagData[0] = 0x0A;
    command->stFlagSetting.ucFlagData[1] = 0xFF;
    command->stFlagSetting.ucFlagData[2] = 0x01;
    command->stFlagSetting.ulFlagAddr = 4096;
    command->stI2CWrite.ucI2CDataLen = 0;
    command->wszSettingFile[0] = L'/';
    command->wszSettingFile[1] = L'\u00fc';
    command->szBootFwPath[0] = 'b';
    command->stMergeFwInfo.ucMergeData[1] = 5;
    isp.Run("IspFlash", command);
    EXPECT_EQ(isp.Journal(),
              "IspFlash enumActionType=5 enumVersionLocationType=0 enumCommID=3 "
              "nSlaveAddressState=0 ucSlaveAddress=106 enumIspMode=1 stMapFw.ulFwCount=5 "
              "banks=[3..5 <- \"/fw/a.bin\" 0..2, 9 <- \"/fw/a.bin\" 7, "
              "10 <- \"/fw/b \\\"q\\\".bin\" 8 value 0x1FFFFFFFFF] "
              "stFlagSetting.ulFlagCount=2 stFlagSetting.ucFlagData=[0A FF 01] "
              "stFlagSetting.ulFlagAddr=4096 stI2CWrite.ucI2CDataLen=0 "
              "wszSettingFile=\"/\xC3\xBC\" szBootFwPath=\"b\" "
              "stMergeFwInfo.ucMergeData=[00 05]\n");
}

TEST(VirtualJournal, Range_of_banks_ends_if_target_file_bank_or_file_jumps) {
    VirtualIsp isp;
    isp.folder.Write("device/journal.txt", "");
    Command command;
    command.Banks(1, "/a", 2).Banks(4, "/a", 1, 2).Banks(5, "/a", 1, 2).Banks(6, "/b", 1, 3);
    isp.Run("GetScalerType", command);
    EXPECT_EQ(isp.Journal(), "GetScalerType stMapFw.ulFwCount=5 banks=[1..2 <- \"/a\" 0..1, "
                             "4 <- \"/a\" 2, 5 <- \"/a\" 2, 6 <- \"/b\" 3]\n");
}

TEST(VirtualJournal, String_of_260_characters_stays_on_its_line) {
    VirtualIsp isp;
    isp.folder.Write("device/journal.txt", "");
    Command command;
    for (int i = 0; i < 260; ++i) {
        command->szBootFwPath[i] = i == 0 ? '\n' : 'p';
    }
    command->stMergeFwInfo.ulMergeDataCount = 0x41414141;
    isp.Run("GetScalerType", command);
    EXPECT_EQ(isp.Journal(), "GetScalerType szBootFwPath=\"\\x0A" + std::string(259, 'p') +
                                 "\" stMergeFwInfo.ulMergeDataCount=1094795585\n");
}

} // namespace
