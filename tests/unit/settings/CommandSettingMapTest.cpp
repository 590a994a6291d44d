#include <cstring>
#include <memory>

#include <gmock/gmock.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "support/TempFolder.h"

/// The firmware map of a command record: emptied, and saved into a settings file.
class CommandSettingMap : public testing::Test {
  protected:
    void Put(unsigned i, unsigned target, const std::wstring &path) {
        record->stMapFw.ulTargetBank[i] = target;
        record->stMapFw.stFwBank[i].ullBankValue = 70 + i;
        record->stMapFw.stFwBank[i].ulFileBank = 80 + i;
        path.copy(record->stMapFw.stFwBank[i].wszFwPath, 260);
    }
    std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> record =
        std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
};

TEST_F(CommandSettingMap, ClearMapFW_clears_file_bank_and_path_of_the_first_entry_only) {
    for (unsigned i = 0; i < 512; ++i) {
        Put(i, i + 1, L"/fw");
    }
    std::fill(std::begin(record->stMapFw.stFwBank[0].wszFwPath),
              std::end(record->stMapFw.stFwBank[0].wszFwPath), L'x');
    record->stMapFw.ulFwCount = 512;
    record->enumActionType = ENUM_ACTION_ISP;
    record->ClearMapFW();
    EXPECT_EQ(record->stMapFw.ulFwCount, 0U);
    EXPECT_THAT(record->stMapFw.ulTargetBank, testing::Each(0U));
    EXPECT_EQ(record->stMapFw.stFwBank[0].ulFileBank, 0U);
    EXPECT_THAT(record->stMapFw.stFwBank[0].wszFwPath, testing::Each(L'\0'));
    EXPECT_EQ(record->stMapFw.stFwBank[0].ullBankValue, 0U);
    for (unsigned i = 1; i < 512; ++i) {
        ASSERT_EQ(record->stMapFw.stFwBank[i].ullBankValue, 0U) << i;
        ASSERT_EQ(record->stMapFw.stFwBank[i].ulFileBank, 80 + i);
        ASSERT_EQ(std::wstring(record->stMapFw.stFwBank[i].wszFwPath), L"/fw");
    }
    EXPECT_EQ(record->enumActionType, ENUM_ACTION_ISP);
}

TEST_F(CommandSettingMap, SaveSetting_numbers_the_target_key_by_its_bank) {
    TempFolder folder;
    const std::string file = folder.Path("s.ini");
    std::wstring(file.begin(), file.end()).copy(record->wszSettingFile, 260);
    Put(0, 5, L"/a.bin");
    Put(1, 9, L"/b.bin");
    record->stMapFw.ulFwCount = 2;
    record->SaveSetting();
    EXPECT_EQ(folder.Read("s.ini"), "[ISP_Fw]\nfwFileCount=2\nfw5_TargetBank=0\nfw0_FileBank=0\n"
                                    "fw0_Path=/a.bin\nfw9_TargetBank=1\nfw1_FileBank=1\n"
                                    "fw1_Path=/b.bin\n");
}
