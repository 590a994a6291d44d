#include <gtest/gtest.h>

#include "ResultInfo.h"
#include "RunOutcome.h"

namespace {

using ispctl::RunEnd;
using ispctl::RunOutcome;

RunOutcome Returned(int code, bool fromLibrary, bool pluginCalled) {
    RunOutcome outcome;
    outcome.code = code;
    outcome.fromLibrary = fromLibrary;
    outcome.pluginCalled = pluginCalled;
    return outcome;
}

struct Row {
    const char *name;
    RunOutcome outcome;
    int status;
    const char *source;
    const char *stage;
    const char *codeName;
    const char *meaning;
};

void PrintTo(const Row &row, std::ostream *stream) {
    *stream << row.name;
}

class ResultInfo : public testing::TestWithParam<Row> {};

TEST_P(ResultInfo, Code_is_explained_by_who_returned_it) {
    const Row &row = GetParam();
    EXPECT_EQ(ispctl::StatusOfOutcome(row.outcome), row.status);
    EXPECT_EQ(ispctl::SourceOf(row.outcome), row.source);
    EXPECT_EQ(ispctl::StageOf(row.outcome), row.stage);
    EXPECT_EQ(ispctl::NameOfCode(row.outcome), row.codeName);
    EXPECT_EQ(ispctl::MeaningOf(row.outcome), row.meaning);
}

constexpr const char *kPlugin = "error code of the plug-in (see its documentation)";

INSTANTIATE_TEST_SUITE_P(
    Rows, ResultInfo,
    testing::Values(
        Row{"success", Returned(0, true, true), 0, "library", "done", "SCALER_ISP_SUCCESS",
            "success"},
        Row{"refused", Returned(-1, true, false), 4, "library", "validate", "SCALER_ISP_REFUSED",
            "the command line was refused"},
        Row{"gave_up", Returned(-1, false, true), 1, "plug-in", "call", "SCALER_ISP_REFUSED",
            "the plug-in failed or threw an exception, or a call inside the library failed"},
        Row{"no_plugin", Returned(0xD67, true, false), 5, "library", "load",
            "SCALER_ISP_PLUGIN_NOT_LOADED", "the ISP plug-in PlugIn/libIsp.dylib cannot be loaded"},
        Row{"same_code_of_plugin", Returned(0xD67, false, true), 1, "plug-in", "call", "", kPlugin},
        Row{"no_function", Returned(6, true, true), 5, "library", "load",
            "SCALER_ISP_FUNCTION_MISSING",
            "the plug-in does not offer the function of this action"},
        Row{"bad_signature", Returned(0x4003, true, true), 6, "library", "verify",
            "SCALER_ISP_BAD_SIGNATURE", "the firmware signature is invalid"},
        Row{"bad_signature_of_plugin", Returned(0x4003, false, true), 1, "plug-in", "call", "",
            kPlugin},
        Row{"other_code", Returned(0x7777, false, true), 1, "plug-in", "call", "", kPlugin}),
    [](const auto &row) { return row.param.name; });

TEST(ResultInfoDevice, Sentence_says_what_is_known_about_device) {
    RunOutcome outcome = Returned(0x4003, true, true);
    EXPECT_EQ(ispctl::DeviceAfter(outcome), "the state of the device is unknown");
    outcome.deviceUntouched = true;
    EXPECT_EQ(ispctl::DeviceAfter(outcome), "the device was not accessed");
    EXPECT_EQ(ispctl::SentenceOf(outcome), "failed with 0x4003: the firmware signature is invalid; "
                                           "the device was not accessed");
    outcome.pluginCalled = false;
    EXPECT_EQ(ispctl::DeviceAfter(outcome), "nothing was done");
}

TEST(ResultInfoAdvice, Words_of_the_plugins_maker_win_over_the_table) {
    RunOutcome outcome = Returned(6, false, true);
    outcome.pluginWords = ispctl::PluginCode{"flash is locked", "set the jumper"};
    EXPECT_EQ(ispctl::MeaningOf(outcome), "flash is locked");
    EXPECT_EQ(ispctl::AdviceAfter(outcome), std::vector<std::string>{"set the jumper"});
}

TEST(ResultInfoAdvice, Stop_names_the_bank_that_may_be_half_written) {
    RunOutcome outcome;
    outcome.end = RunEnd::Interrupted;
    outcome.percent = 50;
    outcome.banks = {4, 5, 6, 7};
    EXPECT_EQ(
        ispctl::AdviceAfter(outcome).front(),
        "after 50 % of 4 banks, bank 6 or 7 may be half written; run the same command again before "
        "the device is switched off or disconnected");
    outcome.banks.clear();
    EXPECT_EQ(ispctl::AdviceAfter(outcome).front(),
              "run the same command again before the device is switched off or disconnected");
}

TEST(ResultInfoAdvice, Success_needs_none) {
    EXPECT_TRUE(ispctl::AdviceAfter(Returned(0, true, true)).empty());
}

TEST(ResultInfoCode, FormatResultCode_writes_what_the_library_prints) {
    EXPECT_EQ(ispctl::FormatResultCode(0xD67), "0xD67");
    EXPECT_EQ(ispctl::FormatResultCode(-1), "0xFFFFFFFF");
    EXPECT_EQ(ispctl::FormatResultCode(0), "0x0");
}

} // namespace
