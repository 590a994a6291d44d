#include <bit>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "scaler_isp/args/CommandFacts.h"
#include "scaler_isp/args/CommandTables.h"
#include "support/ActionList.h"

namespace {

/// The functions of the ISP plug-in that a load looks up.
const std::set<std::string, std::less<>> kLookedUp = {
#define SCALER_ISP_REQUIRED_SYMBOL(NAME) #NAME,
#define SCALER_ISP_OPTIONAL_SYMBOL(NAME) #NAME,
#include "scaler_isp/plugins/isp_functions.def"
};

/// F of CALL(F), if the column has this kind; else empty.
std::string FunctionOf(std::string_view call, std::string_view kind) {
    const std::size_t open = call.find('(');
    return open != std::string_view::npos && call.substr(0, open) == kind
               ? std::string(call.substr(open + 1, call.size() - open - 2))
               : std::string();
}

} // namespace

TEST(ActionTable, Column_CALL_agrees_with_functions_that_are_looked_up) {
    int called = 0;
    int neverResolved = 0;
    for (const auto &action : ScalerIspFacts::kActions) {
        const std::string function = FunctionOf(action.call, "CALL");
        const std::string missing = FunctionOf(action.call, "NEVER_RESOLVED");
        EXPECT_TRUE(function.empty() || kLookedUp.contains(function)) << action.name;
        EXPECT_FALSE(kLookedUp.contains(missing)) << action.name;
        called += function.empty() ? 0 : 1;
        neverResolved += missing.empty() ? 0 : 1;
    }
    EXPECT_GT(called, 0);
    EXPECT_GT(neverResolved, 0);
    EXPECT_FALSE(kLookedUp.contains("SetMergeFwInfo"));
    EXPECT_FALSE(kLookedUp.contains("GetMergeFwInfo"));
}

TEST(ActionTable, Bits_and_enumerators_are_unique) {
    std::set<std::uint32_t> bits;
    std::set<std::uint32_t> actions;
    for (const auto &action : ScalerIspFacts::kActions) {
        EXPECT_TRUE(std::has_single_bit(action.bit)) << action.name;
        EXPECT_TRUE(bits.insert(action.bit).second) << action.name;
        EXPECT_TRUE(actions.insert(action.action).second) << action.name;
    }
}

TEST(ActionTable, RowOfAction_returns_empty_row_for_number_without_action) {
    for (const std::uint32_t number : {0U, kNumberWithoutAction, 0xFFFFFFFFU}) {
        const ActionRow &row = RowOfAction(static_cast<ENUM_CP_ISPTOOL_ACTION_TYPE>(number));
        EXPECT_EQ(row.enumAction, ENUM_ACTION_NONE);
        EXPECT_EQ(row.enumFiles, ActionFiles::NONE);
        EXPECT_EQ(row.enumReads, ActionReads::NOTHING);
    }
    EXPECT_EQ(RowOfAction(ENUM_ACTION_FACTORYISP).enumFiles, ActionFiles::PROGRAM);
}
