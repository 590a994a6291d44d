#include "ParserFixture.h"

/// The noted files and banks are seen through the bank map of an ISP command.
class BankArguments : public ParserTest {
  protected:
    BankArguments() {
        a = folder.Write("a.bin", "firmware a");
        b = folder.Write("b.bin", "firmware b");
        Change([](auto &setting) { setting.enumActionType = ENUM_ACTION_ISP; });
    }
    Answer Bank(unsigned entry, const std::string &value) {
        return Ask([&] { return parser->InsertCommandStartBank(entry, value); });
    }
    Answer File(unsigned entry, const char *path) {
        return Ask([&] { return parser->InsertCommandFwFile(entry, path); });
    }
    FwBankMap Map() {
        FwBankMap map;
        EXPECT_ACCEPTED(Ask([&] { return parser->JudgeFwMap(map); }));
        return map;
    }
    std::string a;
    std::string b;
};

TEST_F(BankArguments, Null_path_is_rejected_silently_and_adds_no_entry) {
    EXPECT_REFUSED(File(0, nullptr), "");
    FwBankMap map;
    EXPECT_REFUSED(Ask([&] { return parser->JudgeFwMap(map); }),
                   "Program fw bin path should not be empty!\n");
    EXPECT_ACCEPTED(File(0, "a.bin"));
}

TEST_F(BankArguments, Start_bank_is_0_if_not_given) {
    EXPECT_ACCEPTED(File(3, "a.bin"));
    const FwBankMap map = Map();
    ASSERT_EQ(map.size(), 1U);
    EXPECT_EQ(map.begin()->first, 0U);
    EXPECT_EQ(map.begin()->second.strFwPath, Wide(a));
    EXPECT_EQ(map.begin()->second.ulFileBank, 0U);
    EXPECT_EQ(map.begin()->second.ullBankValue, 0U);
}

TEST_F(BankArguments, File_and_start_bank_are_accepted_in_any_order) {
    EXPECT_ACCEPTED(File(0, "a.bin"));
    EXPECT_ACCEPTED(Bank(0, "3"));
    EXPECT_ACCEPTED(Bank(1, "7"));
    EXPECT_ACCEPTED(File(1, "b.bin"));
    const FwBankMap map = Map();
    ASSERT_EQ(map.size(), 2U);
    EXPECT_EQ(map.at(3).strFwPath, Wide(a));
    EXPECT_EQ(map.at(7).strFwPath, Wide(b));
}

TEST_F(BankArguments, Repeated_file_is_rejected_with_entry_number) {
    EXPECT_ACCEPTED(File(0, "a.bin"));
    EXPECT_REFUSED(File(0, "b.bin"), "Parameter has been detected two or more times! --fw0 \n");
    EXPECT_ACCEPTED(File(9, "b.bin"));
    EXPECT_REFUSED(File(9, "b.bin"), "Parameter has been detected two or more times! --fw9 \n");
    EXPECT_ACCEPTED(Bank(9, "1"));
    EXPECT_EQ(Map().at(0).strFwPath, Wide(a));
}

TEST_F(BankArguments, File_after_empty_file_name_is_accepted) {
    EXPECT_ACCEPTED(File(0, ""));
    EXPECT_ACCEPTED(File(0, "a.bin"));
    EXPECT_EQ(Map().at(0).strFwPath, Wide(a));
}

TEST_F(BankArguments, Repeated_bank_keeps_the_last_value) {
    EXPECT_ACCEPTED(File(1, "a.bin"));
    EXPECT_ACCEPTED(Bank(1, "5"));
    EXPECT_ACCEPTED(Bank(1, "7"));
    const FwBankMap map = Map();
    ASSERT_EQ(map.size(), 1U);
    EXPECT_EQ(map.begin()->first, 7U);
}

TEST_F(BankArguments, Start_bank_is_read_with_base_of_prefix) {
    const struct {
        const char *text;
        unsigned bank;
    } rows[] = {{"0", 0},   {"255", 255}, {"0xff", 255}, {"0X10", 16},
                {"010", 8}, {"", 0},      {" 9", 9},     {"4294967296", 0}};
    for (const auto &row : rows) {
        Renew();
        Change([](auto &setting) { setting.enumActionType = ENUM_ACTION_ISP; });
        EXPECT_ACCEPTED(Bank(2, row.text));
        EXPECT_ACCEPTED(File(2, "a.bin"));
        EXPECT_EQ(Map().begin()->first, row.bank) << row.text;
    }
}

TEST_F(BankArguments, Start_bank_that_is_not_number_is_rejected) {
    for (const char *text : {"12abc", "0b11", "09", "x", "1 "}) {
        EXPECT_REFUSED(Bank(2, text), std::string("Parameter illegal! --bank2 ") + text + " \n");
    }
    EXPECT_REFUSED(Bank(0, "z"), "Parameter illegal! --bank0 z \n");
}

TEST_F(BankArguments, Bank_minus_one_has_its_own_message) {
    for (const char *text : {"-1", "0xffffffff", "4294967295", "99999999999999999999"}) {
        EXPECT_REFUSED(Bank(2, text),
                       std::string("Parameter illegal, start bank value is loss! --bank2 ") + text +
                           " \n");
    }
}

TEST_F(BankArguments, Start_bank_outside_0_to_255_is_rejected) {
    for (const char *text : {"256", "-2", "0x100", "2147483647"}) {
        EXPECT_REFUSED(Bank(2, text),
                       std::string("Parameter out of range 0~255! --bank2 ") + text + "\n");
    }
}

TEST_F(BankArguments, Rejected_start_bank_keeps_entry_unchanged) {
    EXPECT_ACCEPTED(File(0, "a.bin"));
    EXPECT_ACCEPTED(Bank(0, "5"));
    EXPECT_REFUSED(Bank(0, "256"), "Parameter out of range 0~255! --bank0 256\n");
    EXPECT_EQ(Map().begin()->first, 5U);
}

TEST_F(BankArguments, Firmware_path_is_decoded_as_UTF8) {
    const std::string path = folder.Write("\xC3\xA4.bin", "x");
    EXPECT_ACCEPTED(File(0, "\xC3\xA4.bin"));
    EXPECT_EQ(Map().at(0).strFwPath, Wide(folder.Path()) + L"\u00E4.bin");
}
