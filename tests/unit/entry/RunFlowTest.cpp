#include "RunFlowFixture.h"

#include "support/ActionList.h"
#include "support/TestHeap.h"

using RunFlow = RunFlowTest;

TEST_F(RunFlow, Every_action_calls_its_plugin_function) {
    struct Row {
        unsigned action;
        std::string name;
        int result;
    };
    std::vector<Row> rows{{0, "", 0}, {kNumberWithoutAction, "", 0}, {0xFFFFFFFF, "", 0}};
    for (const ListedAction &action : kListedActions) {
        if (!action.UsesSignPluginOnly()) {
            rows.push_back({action.number, std::string(action.function), action.result});
        }
    }
    for (const Row &row : rows) {
        Act(row.action);
        results.clear();
        EXPECT_EQ(Run("full"), row.result) << row.action;
        EXPECT_EQ(out, "");
        if (row.name.empty()) {
            EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction")) << row.action;
            EXPECT_EQ(Run("extras"), row.result) << row.action;
            EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction")) << row.action;
        } else {
            EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", row.name)) << row.action;
            EXPECT_EQ(module.calls[1].first, record.get());
            results[row.name] = 0x1234;
            EXPECT_EQ(Run("full"), 0x1234) << row.action;
        }
        EXPECT_FALSE(IsLoaded(ModulePath("full"))) << row.action;
    }
}

TEST_F(RunFlow, Merge_info_is_called_for_reading_and_writing_only) {
    Act(22);
    const struct {
        unsigned mode;
        int result;
    } rows[] = {{0, 6}, {1, 6}, {2, 0}, {77, 0}};
    for (const auto &row : rows) {
        record->enumMergeFWInfoMode = static_cast<ENUM_CP_MERGE_FW_INFO_MODE>(row.mode);
        EXPECT_EQ(Run(), row.result) << row.mode;
    }
}

TEST_F(RunFlow, Missing_optional_function_returns_6) {
    Act(25);
    EXPECT_EQ(Run("without_GetScalerType"), 6);
    EXPECT_FALSE(IsLoaded(ModulePath("without_GetScalerType")));
}

TEST_F(RunFlow, Plugin_that_cannot_be_loaded_returns_D67) {
    for (const unsigned action : {0U, 4U, 9U, 25U}) {
        Act(action);
        SignedBySoftware(1);
        EXPECT_EQ(Run("no_such"), 0xD67);
        EXPECT_EQ(out.substr(0, 9), "dlopen - ");
        EXPECT_EQ(out.back(), 'n');
        EXPECT_THAT(module.calls, IsEmpty());
        EXPECT_EQ(Run("without_DumpFlash"), 0xD67);
        EXPECT_EQ(out, "");
    }
}

TEST_F(RunFlow, Callbacks_reach_plugin) {
    g_funcReturnProg = [](int) {};
    g_funcShowMsg = [](wchar_t *) {};
    g_funcNxGetHubDev = []() -> void * { return nullptr; };
    Act(4);
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(module.calls[0].first, reinterpret_cast<void *>(g_funcReturnProg));
    EXPECT_EQ(module.calls[0].second, reinterpret_cast<void *>(g_funcShowMsg));
    EXPECT_EQ(module.calls[0].third, reinterpret_cast<void *>(g_funcNxGetHubDev));
}

TEST_F(RunFlow, Records_are_not_changed) {
    Act(4);
    SignedBySoftware(4);
    record->stMapFw.ulFwCount = 3;
    record->stMapFw.ulTargetBank[2] = 9;
    const auto before = std::make_unique<Record>(*record);
    const Sign signBefore = *signArgs;
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(std::memcmp(before.get(), record.get(), sizeof(Record)), 0);
    EXPECT_EQ(std::memcmp(&signBefore, signArgs.get(), sizeof(Sign)), 0);
}

TEST_F(RunFlow, Verify_uses_sign_plugin_only) {
    Act(1);
    SignedBySoftware(4);
    EXPECT_EQ(Run(), 0);
    ASSERT_THAT(module.Names(), ElementsAre("VerifySignatureExport"));
    EXPECT_EQ(module.calls[0].first, signArgs.get());
    EXPECT_EQ(module.calls[0].second, nullptr);
    EXPECT_FALSE(IsLoaded(ModulePath("full")));
    results["VerifySignatureExport"] = 0;
    EXPECT_EQ(Run("no_such"), 0x4003);
    EXPECT_EQ(out, "");
}

TEST_F(RunFlow, Sign_uses_sign_plugin_only) {
    Act(2);
    EXPECT_EQ(Run(), 0);
    ASSERT_THAT(module.Names(), ElementsAre("SignFwExport"));
    EXPECT_EQ(module.calls[0].first, signArgs.get());
    EXPECT_FALSE(IsLoaded(ModulePath("full")));
    results["SignFwExport"] = 0;
    EXPECT_EQ(Run("no_such"), 0x4002);
    EXPECT_EQ(out, "");
}

TEST_F(RunFlow, Missing_sign_plugin_returns_4004) {
    for (const unsigned action : {1U, 2U}) {
        Act(action);
        EXPECT_EQ(Run("full", "no_such"), 0x4004);
        EXPECT_EQ(out.substr(0, 9), "dlopen - ");
        EXPECT_EQ(out.back(), '\n');
        EXPECT_EQ(Run("full", "sign_only"), 0x4004);
        EXPECT_EQ(out.substr(0, 8), "dlsym - ");
        EXPECT_THAT(module.calls, IsEmpty());
    }
}

TEST_F(RunFlow, Null_record_returns_D69) {
    CCpNxString path = Below("full");
    CCpNxString name = Below("sign_full");
    EXPECT_EQ(ExecuteProcess(nullptr, signArgs.get(), path, name, nullptr), 0xD69);
    EXPECT_EQ(ExecuteProcess(record.get(), nullptr, path, name, nullptr), 0xD69);
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(DoIsp(nullptr, signArgs.get(), nullptr), 0xD69); }),
              "\x1b[31mFail! Error Code: 0xD69\n\x1b[m");
}

TEST_F(RunFlow, Early_end_leaves_the_plugin_loaded) {
    // Each with a module of its own, as it stays in the process.
    Act(4);
    SignedBySoftware(1);
    results["VerifySignatureExport"] = 0;
    EXPECT_EQ(Run("without_IspEeprom"), 0x4003);
    EXPECT_TRUE(IsLoaded(ModulePath("without_IspEeprom")));
    EXPECT_TRUE(IsLoaded(ModulePath("sign_full")));
    SignedBySoftware(4);
    results = {{"GetKeyFromFlash", 5}};
    EXPECT_EQ(Run("without_ResetMCUExport"), 5);
    EXPECT_TRUE(IsLoaded(ModulePath("without_ResetMCUExport")));
}

TEST_F(RunFlow, Result_line_is_green_for_success_and_red_for_failure) {
    Act(4);
    const struct {
        int result;
        const char *line;
    } rows[] = {{0, "\x1b[32mSuccess\n\x1b[m"},
                {0xAB, "\x1b[31mFail! Error Code: 0xAB\n\x1b[m"},
                {-1, "\x1b[31mFail! Error Code: 0xFFFFFFFF\n\x1b[m"},
                {1, "\x1b[31mFail! Error Code: 0x1\n\x1b[m"}};
    for (const auto &row : rows) {
        results["IspFlash"] = row.result;
        EXPECT_EQ(
            OutputOf([&] { EXPECT_EQ(DoIsp(record.get(), signArgs.get(), nullptr), row.result); }),
            row.line);
    }
}

TEST_F(RunFlow, Colour_is_reset_after_newline) {
    Act(9);
    EXPECT_EQ(OutputOf([&] { DoIsp(record.get(), signArgs.get(), nullptr); }),
              "\x1b[32mSuccess\n\x1b[m");
    Act(3);
    EXPECT_EQ(OutputOf([&] { DoIsp(record.get(), signArgs.get(), nullptr); }),
              "\x1b[31mFail! Error Code: 0x6\n\x1b[m");
}

TEST_F(RunFlow, Userdefinedinfo_prints_no_line_on_success) {
    Act(19);
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(DoIsp(record.get(), signArgs.get(), nullptr), 0); }), "");
    results["GetUserDefinedInfoFromDDCCI"] = 9;
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(DoIsp(record.get(), signArgs.get(), nullptr), 9); }),
              "\x1b[31mFail! Error Code: 0x9\n\x1b[m");
}

TEST_F(RunFlow, Plugins_are_loaded_from_documented_relative_paths) {
    Act(1);
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(DoIsp(record.get(), signArgs.get(), nullptr), 0); }),
              "\x1b[32mSuccess\n\x1b[m");
    EXPECT_THAT(module.Names(), ElementsAre("VerifySignatureExport"));
    module.calls.clear();
    Act(21);
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(DoIsp(record.get(), signArgs.get(), nullptr), 0); }),
              "\x1b[32mSuccess\n\x1b[m");
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "EnterISPModeExport"));
    EXPECT_EQ(std::wstring(STR_ISP_DLL_PATH), L"PlugIn/libIsp.dylib");
    EXPECT_EQ(std::wstring(STR_SIGN_VERIFY_DLL), L"libSignVerify.dylib");
}
