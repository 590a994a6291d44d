#include <cerrno>
#include <cstring>
#include <functional>

#include "RunFlowFixture.h"
#include "support/SystemFault.h"
#include "support/TestHeap.h"
#include "support/TestLocale.h"

namespace {

/// Entry calls while the system fails, with the plug-ins next to this program.
class FailingSystem : public testing::Test {
  protected:
    using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

    FailingSystem() {
        module.suspend = &AllocationFault::Suspend;
        module.answer = [this](const ModuleCall &call) {
            if (call.name == "IspFlash" || call.name == "ResetMCUExport") {
                records.emplace_back(static_cast<const char *>(call.first), sizeof(Record));
            }
            return call.name == "VerifySignatureExport" ? 1 : 0;
        };
    }
    ~FailingSystem() override {
        module.answer = [](const ModuleCall &) { return 0; };
        Operate(L"p --resetmcu"); // no parser is left over
    }

    int Operate(const std::wstring &line) {
        module.calls.clear();
        records.clear();
        int result = -99;
        out = OutputOf([&] { result = OperateScaler(line.c_str(), nullptr, nullptr, nullptr); });
        return result;
    }

    /// The same with one allocation failing inside the call.
    int OperateWith(const std::wstring &line, int successes) {
        module.calls.clear();
        records.clear();
        int result = -99;
        out = OutputOf([&] {
            const AllocationFault fault(successes);
            result = OperateScaler(line.c_str(), nullptr, nullptr, nullptr);
            struck = AllocationFault::HasStruck();
        });
        return result;
    }

    static std::string FailLine(int result) {
        char text[64];
        std::snprintf(text, sizeof text, "\x1b[31mFail! Error Code: 0x%X\n\x1b[m",
                      static_cast<unsigned>(result));
        return text;
    }

    ModuleCalls module;
    const EnvironmentLocaleGuard environment{"C"}; // each conversion makes this locale anew
    std::vector<std::string> records;
    std::string out;
    bool struck = false;
};

TEST_F(FailingSystem, Failed_allocation_returns_documented_code) {
    TempFolder folder;
    const std::string file = folder.Write("firmware.bin", std::string(70000, 'x'));
    const std::wstring path(file.begin(), file.end());
    const std::wstring lines[] = {
        L"p --resetmcu",
        L"p --isp --fw " + path + L" --sw --dsmode 2 --signfile " + path,
        L"p --isp --factory --newboot --hw --fw " + path + L" --boot \"" + path + L"\"",
        L"p --verify --sw --dsmode 2 --fw " + path + L" --signfile " + path,
    };
    for (const std::wstring &line : lines) {
        ASSERT_EQ(Operate(line), 0);
        const std::string undisturbedOut = out;
        const auto undisturbedRecords = records;
        const auto undisturbedNames = module.Names();
        const int living = LivingRecords();
        int failures = 0;
        for (int successes = 0;; ++successes) {
            const int result = OperateWith(line, successes);
            const auto names = module.Names();
            const bool noParser = struck && result == 0 && names.empty();
            if (noParser) {
                EXPECT_EQ(out, "") << successes;
            } else if (result == 0) { // an allocation that is not needed, or none that failed
                EXPECT_EQ(out, undisturbedOut) << successes;
                EXPECT_EQ(records, undisturbedRecords) << successes;
            } else {
                ++failures;
                EXPECT_TRUE(struck);
                EXPECT_THAT(result, testing::AnyOf(-1, 0xD67, 0xD69, 0x4004)) << successes;
                EXPECT_EQ(out, result == -1 ? "" : FailLine(result)) << successes;
                ASSERT_LT(names.size(), undisturbedNames.size()) << successes;
                EXPECT_TRUE(std::equal(names.begin(), names.end(), undisturbedNames.begin()));
                ASSERT_LE(records.size(), undisturbedRecords.size());
                EXPECT_TRUE(std::equal(records.begin(), records.end(), undisturbedRecords.begin()));
            }
            EXPECT_LE(LivingRecords(), living + 1) << successes;
            if (!struck) {
                break;
            }
        }
        EXPECT_GT(failures, 10);
        EXPECT_EQ(Operate(line), 0);
        EXPECT_EQ(records, undisturbedRecords);
        EXPECT_EQ(out, undisturbedOut);
        EXPECT_EQ(LivingRecords(), living);
    }
}

TEST_F(FailingSystem, System_failure_ends_call_before_plugin_is_loaded) {
    const struct {
        const char *function;
        int error;
        const wchar_t *line;
    } rows[] = {
        {"newlocale", EMFILE, L"p --resetmcu"},
        {"mbsrtowcs", ENOMEM, L"p --resetmcu"},
        {"realpath", EIO, L"p --isp --fw f.bin"},
        {"opendir", EMFILE, L"p --isp --searchfw auto"},
        {"readdir", EIO, L"p --isp --searchfw auto"},
    };
    for (const auto &row : rows) {
        {
            const SystemFault fault(row.function, row.error);
            EXPECT_EQ(Operate(row.line), -1) << row.function;
            EXPECT_TRUE(fault.HasStruck()) << row.function;
        }
        EXPECT_EQ(out, "") << row.function;
        EXPECT_THAT(module.calls, IsEmpty()) << row.function;
        EXPECT_EQ(Operate(L"p --resetmcu"), 0) << row.function;
    }
}

TEST_F(FailingSystem, Unconvertible_plugin_path_returns_code_of_failed_load) {
    // The call converts its own directory first, and the name of the plug-in second.
    const SystemFault fault("newlocale", EMFILE, 1);
    EXPECT_EQ(Operate(L"p --resetmcu"), 0xD67);
    EXPECT_EQ(out, FailLine(0xD67));
    EXPECT_THAT(module.calls, IsEmpty());
}

/// What the library gives a plug-in that calls it back while memory ends.
TEST_F(FailingSystem, No_exception_unwinds_through_plugin_that_calls_library) {
    const CCpTransform transform;
    const std::string text(100, 'a');
    const std::wstring wide(100, L'a');
    std::vector<std::string> names;
    unsigned int count = 7;
    CCpNxString path = wide.c_str();
    const std::vector<std::function<bool()>> calls = {
        [&] { return OperateScaler(L"p --resetmcu --comm 3", nullptr, nullptr, nullptr) <= 0; },
        [&] { return transform.ConvertUnicodeStringToUTF8(wide).empty(); },
        [&] { return transform.ConvertUTF8StringToUnicode(text).empty(); },
        [&] { return transform.ConvertWCHARToANSIString(wide.c_str()).empty(); },
        [&] { return transform.ConvertCHARToUnicodeString(text.c_str()).empty(); },
        [&] { return GetAbsolutePath("/").empty(); },
        [&] { return GetCurrentProcessDir(reinterpret_cast<void *>(&OperateScaler)).empty(); },
        [&] { return StringSplit(text, ",", 0).empty(); },
        [&] { return ParseCommandLineParameter(names, text) == 0; },
        [&] { return GetFwBankCount(std::move(path), count) == 0 && count == 7; },
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        int entered = 0;
        bool thrown = false;
        module.answer = [&](const ModuleCall &call) {
            if (call.name != "ResetMCUExport" || entered++ != 0) {
                return 0;
            }
            try {
                const AllocationFault fault(0);
                const bool failed = calls[i]();
                EXPECT_TRUE(AllocationFault::HasStruck()) << i;
                EXPECT_TRUE(failed) << i;
            } catch (...) {
                thrown = true;
            }
            return 0;
        };
        EXPECT_EQ(Operate(L"p --resetmcu"), 0) << i;
        EXPECT_EQ(out, "\x1b[32mSuccess\n\x1b[m") << i;
        EXPECT_EQ(entered, 1) << i;
        EXPECT_FALSE(thrown) << i;
    }
}

TEST_F(FailingSystem, Call_of_entry_inside_plugin_handles_its_own_failure) {
    for (int successes = 0; successes < 60; ++successes) {
        int entered = 0;
        module.answer = [&](const ModuleCall &call) {
            if (call.name == "ResetMCUExport" && entered++ == 0) {
                const AllocationFault fault(successes);
                const int inner = OperateScaler(L"p --resetmcu", nullptr, nullptr, nullptr);
                if (AllocationFault::HasStruck()) {
                    EXPECT_THAT(inner, testing::AnyOf(0, -1, 0xD67)) << successes;
                }
            }
            return call.name == "ResetMCUExport" ? 0x31 : 0;
        };
        EXPECT_EQ(Operate(L"p --resetmcu"), 0x31) << successes;
    }
    module.answer = [](const ModuleCall &) { return 0; };
    EXPECT_EQ(Operate(L"p --resetmcu"), 0);
    EXPECT_EQ(g_pcArgsParse, nullptr);
}

} // namespace
