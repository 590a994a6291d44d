#include "ParserFixture.h"

namespace {

STRUCT_FW_BANK_SETTING Bank(unsigned long long value, unsigned fileBank, const std::wstring &path) {
    STRUCT_FW_BANK_SETTING bank;
    bank.ullBankValue = value;
    bank.ulFileBank = fileBank;
    bank.strFwPath = path;
    return bank;
}

class FwBankMapCopy : public testing::Test {
  protected:
    std::unique_ptr<STRUCT_C_STYLE_MAP_FW> record = std::make_unique<STRUCT_C_STYLE_MAP_FW>();
    FwBankMap map;
};

} // namespace

TEST_F(FwBankMapCopy, Entry_defaults_are_zero_and_empty) {
    const STRUCT_FW_BANK_SETTING bank;
    EXPECT_EQ(bank.ullBankValue, 0U);
    EXPECT_EQ(bank.ulFileBank, 0U);
    EXPECT_TRUE(bank.strFwPath.IsEmpty());
}

TEST_F(FwBankMapCopy, Entry_is_copied_member_by_member) {
    const STRUCT_FW_BANK_SETTING bank = Bank(9, 8, L"p");
    STRUCT_FW_BANK_SETTING copy;
    copy = bank;
    EXPECT_EQ(copy.ullBankValue, 9U);
    EXPECT_EQ(copy.ulFileBank, 8U);
    EXPECT_EQ(copy.strFwPath, L"p");
}

TEST_F(FwBankMapCopy, Map_orders_keys_ascending) {
    const sortAscending<unsigned int> order;
    EXPECT_TRUE(order(1, 2));
    EXPECT_FALSE(order(2, 1));
    EXPECT_FALSE(order(2, 2));
    EXPECT_FALSE(order(0xFFFFFFFFU, 0));
}

TEST_F(FwBankMapCopy, Copy_to_record_writes_banks_in_ascending_order) {
    map[300] = Bank(0x1234567890ULL, 5, L"/c");
    map[2] = Bank(1, 0, L"/a");
    map[17] = Bank(2, 1, L"/b");
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 1);
    EXPECT_EQ(record->ulFwCount, 3U);
    EXPECT_EQ(record->ulTargetBank[0], 2U);
    EXPECT_EQ(record->ulTargetBank[1], 17U);
    EXPECT_EQ(record->ulTargetBank[2], 300U);
    EXPECT_EQ(record->stFwBank[2].ullBankValue, 0x1234567890ULL);
    EXPECT_EQ(record->stFwBank[2].ulFileBank, 5U);
    EXPECT_EQ(TextOf(record->stFwBank[0].wszFwPath), L"/a");
    EXPECT_EQ(TextOf(record->stFwBank[1].wszFwPath), L"/b");
    EXPECT_EQ(TextOf(record->stFwBank[2].wszFwPath), L"/c");
    EXPECT_EQ(record->ulTargetBank[3], 0U);
}

TEST_F(FwBankMapCopy, Copy_of_empty_map_stores_count_0) {
    record->ulFwCount = 7;
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 1);
    EXPECT_EQ(record->ulFwCount, 0U);
}

TEST_F(FwBankMapCopy, Path_is_truncated_to_260_and_padded_with_zeros) {
    map[0] = Bank(0, 0, std::wstring(300, L'x'));
    map[1] = Bank(0, 0, std::wstring(259, L'y'));
    std::fill(std::begin(record->stFwBank[1].wszFwPath), std::end(record->stFwBank[1].wszFwPath),
              L'z');
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 1);
    EXPECT_EQ(TextOf(record->stFwBank[0].wszFwPath), std::wstring(260, L'x'));
    EXPECT_EQ(TextOf(record->stFwBank[1].wszFwPath), std::wstring(259, L'y'));
    map[1] = Bank(0, 0, L"s");
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 1);
    EXPECT_EQ(std::wstring(record->stFwBank[1].wszFwPath, 260), L"s" + std::wstring(259, L'\0'));
}

TEST_F(FwBankMapCopy, Refused_copy_keeps_the_count) {
    for (unsigned i = 0; i < 512; ++i) {
        map[i + 10] = Bank(0, i, L"/f");
    }
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 1);
    EXPECT_EQ(record->ulFwCount, 512U);
    EXPECT_EQ(record->ulTargetBank[511], 521U);
    map[0] = Bank(0, 0, L"/g");
    EXPECT_EQ(CopyMapFwToCStyleStruct(*record, map), 0);
    EXPECT_EQ(record->ulFwCount, 513U);
    EXPECT_EQ(record->ulTargetBank[0], 10U);
    EXPECT_EQ(TextOf(record->stFwBank[0].wszFwPath), L"/f");
}

TEST_F(FwBankMapCopy, Copy_from_record_restores_map) {
    map[9] = Bank(0, 0, L"/old");
    record->ulFwCount = 3;
    const unsigned targets[] = {40, 30, 40};
    for (unsigned i = 0; i < 3; ++i) {
        record->ulTargetBank[i] = targets[i];
        record->stFwBank[i].ullBankValue = 100 + i;
        record->stFwBank[i].ulFileBank = 10 + i;
        record->stFwBank[i].wszFwPath[0] = static_cast<wchar_t>(L'a' + static_cast<int>(i));
    }
    CopyCStyleStructToMapFw(map, *record);
    ASSERT_EQ(map.size(), 2U);
    EXPECT_EQ(map.at(40).ullBankValue, 100U); // the first entry of two stays
    EXPECT_EQ(map.at(40).ulFileBank, 10U);
    EXPECT_EQ(map.at(40).strFwPath, L"a");
    EXPECT_EQ(map.at(30).strFwPath, L"b");
}

TEST_F(FwBankMapCopy, Copy_from_record_stops_at_bounds_of_arrays) {
    record->ulFwCount = 100000;
    for (unsigned i = 0; i < 512; ++i) {
        record->ulTargetBank[i] = i;
    }
    std::fill(std::begin(record->stFwBank[511].wszFwPath),
              std::end(record->stFwBank[511].wszFwPath), L'q');
    CopyCStyleStructToMapFw(map, *record);
    EXPECT_EQ(map.size(), 512U);
    EXPECT_EQ(map.at(511).strFwPath, std::wstring(260, L'q'));
}
