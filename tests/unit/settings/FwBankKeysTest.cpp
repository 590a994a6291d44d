#include "scaler_isp/settings/FwBankKeys.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

TEST(FwBankKeys, Names_are_found_where_they_are_written) {
    const std::vector<unsigned int> targets[] = {
        {}, {5}, {0, 1, 2}, {0xFFFFFFFEU, 0xFFFFFFFFU, 0}, {0x7FFFFFFF, 0x80000000U}, {3, 1, 7}};
    for (const std::vector<unsigned int> &row : targets) {
        std::vector<FwBankKeys::Bank> banks;
        for (const unsigned int target : row) {
            banks.push_back({target, 0, L""});
        }
        const FwBankKeys keys(0, banks);
        ASSERT_EQ(keys.Count(), 1 + 3 * row.size());
        for (std::size_t i = 0; i < keys.Count(); ++i) {
            std::string name;
            keys.AppendName(i, name);
            EXPECT_EQ(keys.Find(name), i) << name;
            EXPECT_EQ(keys.FirstOfName(i), i) << name;
            EXPECT_EQ(keys.LastOfName(i), i) << name;
        }
    }
}

TEST(FwBankKeys, Target_bank_that_is_named_twice_has_a_first_and_a_last_write) {
    const FwBankKeys keys(3, {{4, 0, L""}, {9, 1, L""}, {4, 2, L""}});
    EXPECT_EQ(keys.Find("fw4_TargetBank"), 1U);
    EXPECT_EQ(keys.FirstOfName(7), 1U);
    EXPECT_EQ(keys.LastOfName(1), 7U);
    EXPECT_EQ(keys.LastOfName(4), 4U);
    EXPECT_EQ(keys.LastOfName(8), 8U); // a file bank
}

TEST(FwBankKeys, Only_names_as_they_are_written_are_found) {
    const FwBankKeys ascending(1, {{0x80000000U, 0, L""}});
    const FwBankKeys mixed(2, {{0xFFFFFFFFU, 0, L""}, {0x80000000U, 0, L""}, {0, 0, L""}});
    EXPECT_EQ(ascending.Find("fw-2147483648_TargetBank"), 1U);
    EXPECT_EQ(mixed.Find("fw-2147483648_TargetBank"), 4U);
    EXPECT_EQ(mixed.Find("fw-1_TargetBank"), 1U);
    EXPECT_EQ(mixed.Find("fw0_TargetBank"), 7U);
    for (const char *name : {"",
                             "f",
                             "fw",
                             "fw0",
                             "fw_TargetBank",
                             "fw-_TargetBank",
                             "fw00_TargetBank",
                             "fw-0_TargetBank",
                             "fw+0_TargetBank",
                             "fw 0_TargetBank",
                             "Fw0_TargetBank",
                             "fx0_TargetBank",
                             "fw0_Targetbank",
                             "fw0_TargetBank2",
                             "fw0TargetBank",
                             "fw0_",
                             "fw1_",
                             "fw1_TargetBank",
                             "fw01_TargetBank",
                             "fw-01_TargetBank",
                             "fw2147483648_TargetBank",
                             "fw4294967295_TargetBank",
                             "fw4294967296_TargetBank",
                             "fw18446744073709551616_TargetBank",
                             "fw-2147483649_TargetBank",
                             "fw-4294967296_TargetBank",
                             "fw3_FileBank",
                             "fw-1_FileBank",
                             "fw-2147483648_Path",
                             "fw3_Path",
                             "fwFileCount2",
                             "fwFilecount"}) {
        EXPECT_EQ(ascending.Find(name), FwBankKeys::kNone) << name;
        EXPECT_EQ(mixed.Find(name), FwBankKeys::kNone) << name;
    }
    EXPECT_EQ(FwBankKeys(0, {}).Find("fw0_TargetBank"), FwBankKeys::kNone);
    EXPECT_EQ(FwBankKeys(0, {}).Find("fwFileCount"), 0U);
}

TEST(FwBankKeys, Numbers_are_signed_decimals) {
    const std::pair<int, const char *> rows[] = {{0, "0"},
                                                 {9, "9"},
                                                 {10, "10"},
                                                 {-1, "-1"},
                                                 {std::numeric_limits<int>::max(), "2147483647"},
                                                 {std::numeric_limits<int>::min(), "-2147483648"}};
    for (const auto &[number, text] : rows) {
        std::string written = "x";
        AppendDecimal(number, written);
        EXPECT_EQ(written, "x" + std::string(text));
    }
}

} // namespace
