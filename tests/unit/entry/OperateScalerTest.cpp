#include <clocale>

#include <pthread.h>

#include "RunFlowFixture.h"
#include "scaler_isp/common/LibraryAnchor.h"
#include "support/TestHeap.h"

namespace {

/// The globals before the first call of this program.
class AtTheStart : public testing::Environment {
  public:
    void SetUp() override {
        folder = g_cpStrCurDir;
        settingFile = g_cpStrSettingFilePath;
        allNull = g_pcArgsParse == nullptr && g_funcReturnProg == nullptr &&
                  g_funcShowMsg == nullptr && g_funcNxGetHubDev == nullptr;
    }

    std::wstring folder = L"not set up";
    std::wstring settingFile = L"not set up";
    bool allNull = false;
};

// googletest owns it.
const auto *const g_atTheStart =
    static_cast<AtTheStart *>(testing::AddGlobalTestEnvironment(new AtTheStart));

} // namespace

/// The exports, with the plug-ins beside this program.
class OperateScalerCall : public testing::Test {
  protected:
    int Operate(const std::wstring &line, void *handle = nullptr) {
        module.calls.clear();
        int result = -99;
        out = OutputOf([&] { result = OperateScaler(line.c_str(), handle, progress, message); });
        return result;
    }
    ~OperateScalerCall() override {
        module.answer = [](const ModuleCall &) { return 0; };
        Operate(L"p --resetmcu"); // no parser is left over
    }

    static void Progress(int percent) {
        static_cast<void>(percent);
    }
    static void Message(wchar_t *text) {
        static_cast<void>(text);
    }

    ModuleCalls module;
    ScalerIspProgressCallback progress = &Progress;
    ScalerIspMessageCallback message = &Message;
    std::string out;
    const std::string success = "\x1b[32mSuccess\n\x1b[m";
};

TEST_F(OperateScalerCall, Globals_are_empty_before_first_call) {
    EXPECT_EQ(g_atTheStart->folder, L"");
    EXPECT_EQ(g_atTheStart->settingFile, L"");
    EXPECT_TRUE(g_atTheStart->allNull);
}

TEST_F(OperateScalerCall, All_options_of_line_reach_plugin) {
    module.answer = [](const ModuleCall &call) {
        if (call.name == "DumpFlash") {
            const auto *record =
                static_cast<const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *>(call.first);
            EXPECT_EQ(record->stDumpFlash.ulDumpLen, 16U);
            EXPECT_EQ(std::wstring(record->stDumpFlash.wszDumpFile), L"my \u00E4.bin");
            EXPECT_EQ(record->enumActionType, 16U);
        }
        return 0;
    };
    EXPECT_EQ(Operate(L"p  --dumpflash --dumpaddr 0x10 --dumplen 16 --dumpname=\"my \u00E4.bin\""),
              0);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "DumpFlash"));
    EXPECT_EQ(out, success);
}

TEST_F(OperateScalerCall, Code_of_plugin_is_returned) {
    module.answer = [](const ModuleCall &call) { return call.name == "IspEeprom" ? 0x31 : 0; };
    EXPECT_EQ(Operate(L"p --edpisp"), 0x31);
    EXPECT_EQ(out, "\x1b[31mFail! Error Code: 0x31\n\x1b[m");
}

TEST_F(OperateScalerCall, First_argument_is_not_read_as_option) {
    EXPECT_EQ(Operate(L"--resetmcu"), -1);
    EXPECT_EQ(out, "Action type undefined or illegal!\n");
    EXPECT_EQ(Operate(L"--erase --resetmcu"), 0);
}

TEST_F(OperateScalerCall, Empty_line_keeps_globals) {
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    g_cpStrCurDir = L"former";
    g_cpStrSettingFilePath = L"former";
    const int living = LivingRecords();
    progress = nullptr;
    EXPECT_EQ(Operate(L""), -1);
    EXPECT_EQ(OperateScaler(nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(out, "");
    EXPECT_EQ(g_cpStrCurDir, L"former");
    EXPECT_EQ(g_cpStrSettingFilePath, L"former");
    EXPECT_EQ(g_funcReturnProg, &Progress);
    EXPECT_EQ(g_pcArgsParse, nullptr);
    EXPECT_EQ(LivingRecords(), living);
}

TEST_F(OperateScalerCall, Each_call_sets_globals_again) {
    g_cpStrCurDir = L"former";
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    const std::string own = ProgramDirectory().string() + "/";
    EXPECT_EQ(g_cpStrCurDir, std::wstring(own.begin(), own.end()));
    EXPECT_EQ(g_cpStrSettingFilePath, std::wstring(own.begin(), own.end()) + L"IspSetting.ini");
    EXPECT_EQ(g_funcReturnProg, &Progress);
    EXPECT_EQ(g_funcShowMsg, &Message);
    EXPECT_EQ(g_funcNxGetHubDev, nullptr);
    EXPECT_EQ(g_pcArgsParse, nullptr);
    EXPECT_EQ(module.calls[0].first, reinterpret_cast<void *>(&Progress));
    EXPECT_EQ(module.calls[0].second, reinterpret_cast<void *>(&Message));
    EXPECT_EQ(module.calls[0].third, nullptr);
    EXPECT_EQ(std::wstring(TCSZ_GLOBAL_SYMBOL), L"GlobalSymbol");
}

TEST_F(OperateScalerCall, Parser_is_visible_during_call) {
    bool seen = false;
    std::string folder;
    module.answer = [&](const ModuleCall &) {
        seen = g_pcArgsParse != nullptr;
        folder = seen ? g_pcArgsParse->GetCurrentDir() : "";
        return 0;
    };
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    EXPECT_TRUE(seen);
    EXPECT_EQ(folder, ProgramDirectory().string() + "/");
}

TEST_F(OperateScalerCall, Line_with_invalid_quotes_keeps_parser_until_next_call) {
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    const int living = LivingRecords();
    progress = nullptr;
    message = nullptr;
    g_cpStrCurDir = L"former";
    for (const wchar_t *line : {L"p \"a\" \"b", L"p \"\" --resetmcu"}) {
        EXPECT_EQ(Operate(line), -1);
        EXPECT_EQ(out, "");
        EXPECT_NE(g_pcArgsParse, nullptr);
        EXPECT_EQ(LivingRecords(), living + 1);
        EXPECT_NE(g_cpStrCurDir, L"former");
        EXPECT_EQ(g_pcArgsParse->GetCurrentDir(),
                  std::string(g_cpStrCurDir.begin(), g_cpStrCurDir.end()));
        EXPECT_EQ(g_funcReturnProg, &Progress); // those of the call before
        EXPECT_EQ(g_funcShowMsg, &Message);
        EXPECT_THAT(module.calls, IsEmpty());
    }
    EXPECT_EQ(Operate(L""), -1);
    EXPECT_NE(g_pcArgsParse, nullptr);
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    EXPECT_EQ(g_pcArgsParse, nullptr);
    EXPECT_EQ(g_funcReturnProg, nullptr);
    EXPECT_EQ(LivingRecords(), living);
}

TEST_F(OperateScalerCall, Rejected_line_frees_all_records) {
    const int living = LivingRecords();
    EXPECT_EQ(Operate(L"p --comm 99 --resetmcu"), -1);
    EXPECT_EQ(out, "Parameter out of range! --comm 99\n");
    EXPECT_EQ(g_pcArgsParse, nullptr);
    EXPECT_EQ(LivingRecords(), living);
    EXPECT_THAT(module.calls, IsEmpty());
}

TEST_F(OperateScalerCall, Device_handle_is_discarded) {
    // With channel 6 and a callback a handle would be asked for again and end in 0x2B0D.
    static int calls = 0;
    calls = 0;
    TempFolder folder;
    const std::string file = folder.Write("f.bin", "x");
    const std::wstring path(file.begin(), file.end());
    g_funcNxGetHubDev = []() -> void * {
        ++calls;
        return nullptr;
    };
    module.answer = [](const ModuleCall &call) {
        return call.name == "VerifySignatureExport" ? 1 : 0;
    };
    const std::wstring line =
        L"p --isp --comm 6 --sw --dsmode 2 --fw " + path + L" --signfile " + path;
    int place = 0;
    EXPECT_EQ(Operate(line, &place), 0);
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(OperateScalerEx(line.c_str(), &place, nullptr, nullptr, &place), 0);
              }),
              success);
    EXPECT_EQ(calls, 0);
    g_funcNxGetHubDev = nullptr;
}

TEST_F(OperateScalerCall, Both_exports_return_same_result) {
    int place = 0;
    for (void *fifth : {static_cast<void *>(nullptr), static_cast<void *>(&place)}) {
        for (const wchar_t *line : {L"", L"p", L"p --resetmcu", L"p \"\"", L"p --erase"}) {
            const int first = Operate(line);
            const std::string firstOut = out;
            const auto firstNames = module.Names();
            module.calls.clear();
            int second = -99;
            out = OutputOf(
                [&] { second = OperateScalerEx(line, nullptr, progress, message, fifth); });
            EXPECT_EQ(second, first);
            EXPECT_EQ(out, firstOut);
            EXPECT_EQ(module.Names(), firstNames);
        }
    }
}

TEST_F(OperateScalerCall, Line_of_10240_characters_is_treated_as_empty) {
    const std::wstring option = L"p --resetmcu ";
    EXPECT_EQ(Operate(option + std::wstring(10239 - option.size(), L' ')), 0);
    EXPECT_EQ(Operate(option + std::wstring(10240 - option.size(), L' ')), -1);
    EXPECT_EQ(out, "Action type undefined or illegal!\n");
    EXPECT_EQ(Operate(option + std::wstring(20000, L' ')), -1);
    EXPECT_EQ(out, "Action type undefined or illegal!\n");
}

TEST_F(OperateScalerCall, Failed_allocation_returns_code_of_its_object) {
    Operate(L"p --resetmcu");
    const int living = LivingRecords();
    const struct {
        int successes;
        int result;
    } rows[] = {{0, 0}, {1, -1}, {2, -1}};
    for (const auto &row : rows) {
        const RecordAllocationLimit heap(row.successes);
        EXPECT_EQ(Operate(L"p --resetmcu"), row.result) << row.successes;
        EXPECT_EQ(out, "");
        EXPECT_THAT(module.calls, IsEmpty());
        EXPECT_EQ(LivingRecords(), living);
        EXPECT_EQ(g_pcArgsParse, nullptr);
    }
}

TEST_F(OperateScalerCall, Directory_globals_are_set_if_parser_allocation_fails) {
    Operate(L"p --resetmcu");
    const CCpNxString folder = g_cpStrCurDir;
    g_cpStrCurDir = L"former";
    g_cpStrSettingFilePath = L"former";
    progress = nullptr;
    const RecordAllocationLimit heap(0);
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    EXPECT_EQ(g_cpStrCurDir, folder);
    EXPECT_EQ(g_cpStrSettingFilePath, folder + L"IspSetting.ini");
    EXPECT_EQ(g_funcReturnProg, &Progress); // that of the call before
}

TEST_F(OperateScalerCall, Failed_argv_allocation_keeps_parser_until_next_call) {
    Operate(L"p --resetmcu");
    const int living = LivingRecords();
    progress = nullptr;
    message = nullptr;
    std::wstring line = L"p --resetmcu";
    for (int i = 0; i < 400; ++i) {
        line += L" x"; // so many pointers take as much room as a record
    }
    {
        const RecordAllocationLimit heap(1);
        EXPECT_EQ(Operate(line), -1);
    }
    EXPECT_EQ(out, "");
    EXPECT_THAT(module.calls, IsEmpty());
    EXPECT_NE(g_pcArgsParse, nullptr);
    EXPECT_EQ(LivingRecords(), living + 1);
    EXPECT_EQ(g_funcReturnProg, &Progress); // those of the call before
    EXPECT_EQ(g_funcShowMsg, &Message);
    EXPECT_EQ(Operate(line), 0);
    EXPECT_EQ(g_pcArgsParse, nullptr);
    EXPECT_EQ(LivingRecords(), living);
}

TEST_F(OperateScalerCall, Call_runs_on_stack_of_half_megabyte) {
    TempFolder folder;
    const std::string file = folder.Write("f.bin", "x");
    std::wstring line = L"p --isp --factory --newboot --hw --fw " +
                        std::wstring(file.begin(), file.end()) + L" --boot " +
                        std::wstring(file.begin(), file.end());
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, 512 * 1024);
    pthread_t thread;
    const auto body = [](void *text) -> void * {
        const auto *words = static_cast<const std::wstring *>(text);
        const int result = OperateScaler(words->c_str(), nullptr, nullptr, nullptr);
        return result == 0 ? text : nullptr;
    };
    void *answer = nullptr;
    const std::string text = OutputOf([&] {
        ASSERT_EQ(pthread_create(&thread, &attributes, body, &line), 0);
        pthread_join(thread, &answer);
    });
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(answer, &line);
    EXPECT_EQ(text, success);
    EXPECT_THAT(module.Names(), ElementsAre("SetUIFunction", "IspFlash", "IspFlash"));
}
