#include "RunFlowFixture.h"
#include "support/TestHeap.h"

/// The boot firmware of a factory run. Its module may stay loaded.
class BootPass : public RunFlowTest {
  protected:
    BootPass() {
        Act(5);
        boot = folder.Write("boot.bin", std::string(65537, 'b'));
        Boot(boot);
    }
    int Program() {
        flashed.clear();
        const auto standardAnswer = module.answer;
        module.answer = [&](const ModuleCall &call) {
            if (call.name == "IspFlash") {
                flashed.push_back(std::make_unique<Record>(*static_cast<Record *>(call.first)));
            }
            return standardAnswer(call);
        };
        const int result = Run("without_EnterISPModeExport");
        module.answer = standardAnswer;
        return result;
    }

    TempFolder folder;
    std::string boot;
    std::vector<std::unique_ptr<Record>> flashed;
};

TEST_F(BootPass, Boot_firmware_is_programmed_first_at_bank_0) {
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(9);
    const int living = LivingRecords();
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(LivingRecords(), living);
    EXPECT_EQ(out, "");
    ASSERT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash", "IspFlash"));
    EXPECT_NE(module.calls[1].first, record.get());
    EXPECT_EQ(module.calls[2].first, record.get());
    const Record &first = *flashed[0];
    EXPECT_EQ(first.enumActionType, 4U);
    EXPECT_EQ(first.stMapFw.ulFwCount, 2U);
    EXPECT_EQ(first.stMapFw.ulTargetBank[0], 0U);
    EXPECT_EQ(first.stMapFw.ulTargetBank[1], 1U);
    EXPECT_EQ(first.stMapFw.stFwBank[1].ulFileBank, 1U);
    EXPECT_EQ(std::wstring(first.stMapFw.stFwBank[0].wszFwPath),
              std::wstring(boot.begin(), boot.end()));
}

TEST_F(BootPass, Boot_record_has_defaults_in_all_remaining_fields) {
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(9);
    record->bCompareVersion = 1;
    EXPECT_EQ(Program(), 0);
    const Record &first = *flashed.at(0);
    EXPECT_EQ(first.enumCommID, 0U);
    EXPECT_EQ(first.bCompareVersion, 0U);
    EXPECT_EQ(first.enumBootCodeType, 0U);
    EXPECT_EQ(first.enumIspMode, 0U);
    EXPECT_EQ(first.enumVersionLocationType, 1U);
    EXPECT_EQ(first.enumMergeFWGeneration, 2U);
    EXPECT_EQ(first.nSlaveAddressState, -1);
    EXPECT_EQ(first.ucSlaveAddress, 0x94);
    EXPECT_EQ(first.szBootFwPath[0], '\0');
    EXPECT_EQ(first.wszSettingFile[0], L'\0');
    EXPECT_EQ(first.stI2CWrite.ucI2CDataLen, 1);
    EXPECT_EQ(first.stFlagSetting.ucFlagData[1219], 0xFF);
}

TEST_F(BootPass, Failed_boot_pass_ends_run_before_action) {
    results["IspFlash"] = 0x51;
    EXPECT_EQ(Program(), 0x51);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash"));
    EXPECT_TRUE(IsLoaded(ModulePath("without_EnterISPModeExport")));
}

TEST_F(BootPass, Boot_pass_needs_new_boot_code_factory_mode_and_path) {
    Boot("");
    EXPECT_EQ(Program(), 0);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash"));
    Boot(boot);
    record->enumBootCodeType = 0;
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(flashed.size(), 1U);
    for (const unsigned mode : {0U, 1U, 3U}) {
        Boot(boot);
        record->enumIspMode = mode;
        EXPECT_EQ(Program(), 0);
        EXPECT_EQ(flashed.size(), 1U) << mode;
    }
    Boot(boot);
    record->enumBootCodeType = 2;
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(flashed.size(), 1U);
}

TEST_F(BootPass, Boot_pass_runs_before_any_action) {
    Act(21);
    EXPECT_EQ(Run("full"), 0);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash", "EnterISPModeExport"));
}

TEST_F(BootPass, Missing_boot_file_gives_plugin_empty_map) {
    Boot(folder.Path("none.bin"));
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(out, "File open fail! " + folder.Path("none.bin") + "\n");
    ASSERT_EQ(flashed.size(), 2U);
    EXPECT_EQ(flashed[0]->stMapFw.ulFwCount, 0U);
    EXPECT_EQ(flashed[0]->enumActionType, 4U);
}

TEST_F(BootPass, Relative_boot_path_starts_at_library_directory) {
    Boot("none.bin");
    EXPECT_EQ(Program(), 0);
    const auto own = ProgramDirectory().string();
    EXPECT_EQ(out, "File open fail! " + own + "/none.bin\n");
}

TEST_F(BootPass, More_than_512_banks_return_DA0) {
    std::filesystem::resize_file(boot, std::uintmax_t{512} * 65536);
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(flashed.at(0)->stMapFw.ulFwCount, 512U);
    std::filesystem::resize_file(boot, std::uintmax_t{512} * 65536 + 1);
    const int living = LivingRecords();
    EXPECT_EQ(Program(), 0xDA0);
    EXPECT_EQ(LivingRecords(), living);
    EXPECT_EQ(out, "");
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction"));
}

TEST_F(BootPass, Failed_allocation_returns_D69_and_leaks_nothing) {
    const int living = LivingRecords();
    const RecordAllocationLimit heap(0);
    EXPECT_EQ(Program(), 0xD69);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction"));
    EXPECT_EQ(LivingRecords(), living);
}

TEST_F(BootPass, Unterminated_boot_path_is_read_up_to_260_bytes) {
    Boot("/" + std::string(300, 'p'));
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(out, "File open fail! /" + std::string(259, 'p') + "\n");
}

TEST_F(BootPass, Hub_device_is_queried_again) {
    static int calls = 0;
    static void *answer = nullptr;
    calls = 0;
    int place = 0;
    device = &place;
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(6);
    g_funcNxGetHubDev = []() -> void * {
        ++calls;
        return answer;
    };
    EXPECT_EQ(Program(), 0x2B0D);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(flashed.size(), 1U);
    answer = &place;
    EXPECT_EQ(Program(), 0);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(flashed.size(), 2U);
}
