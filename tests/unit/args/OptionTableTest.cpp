#include <map>

#include "OptionList.h"
#include "ParserFixture.h"
#include "scaler_isp/args/CommandTables.h"
#include "support/ActionList.h"

namespace {

/// The engine's second line shows the low byte of an option's number.
std::string IllegalOption(unsigned number) {
    return std::string("illegal option ' ") + static_cast<char>(number & 0xFFU) + " '!\n";
}

/// What the engine says about an abbreviation that fits these options.
std::string AmbiguousCommand(const std::string &word, const std::vector<std::string> &fitting) {
    std::string text = "tool: command '" + word + "' is ambiguous; possibilities:";
    text += " '--" + fitting[0] + "'";
    for (std::size_t i = 1; i < fitting.size(); ++i) {
        text += " '--" + fitting[i] + "'\n";
    }
    return text;
}

} // namespace

using OptionTableRows = ParserTest;

TEST_F(OptionTableRows, Test_list_has_as_many_rows_as_option_table) {
    EXPECT_EQ(std::size(kListedOptions), kOptionCount);
}

TEST_F(OptionTableRows, FindOptionById_finds_registered_ids_only) {
    std::map<int, std::string> names;
    for (const ListedOption &option : kListedOptions) {
        if (option.word == '-') {
            names[static_cast<int>(option.number)] = option.name;
        }
    }
    for (int id = -2; id <= 300; ++id) {
        const OptionRow *row = FindOptionById(id);
        EXPECT_EQ(row != nullptr ? row->pszName : "", names[id]) << id;
    }
}

TEST_F(OptionTableRows, Option_with_value_reports_missing_value) {
    for (const ListedOption &option : kListedOptions) {
        if (!option.takesValue) {
            continue;
        }
        const Answer answer = ParseFresh({std::string("--") + option.name});
        EXPECT_EQ(answer.result, 0);
        EXPECT_EQ(answer.err,
                  std::string("tool: option '--") + option.name + "' requires an argument\n");
        EXPECT_EQ(answer.out, IllegalOption(option.number) + "Action type undefined or illegal!\n")
            << option.name;
    }
}

TEST_F(OptionTableRows, Option_without_value_reports_unwanted_value) {
    for (const ListedOption &option : kListedOptions) {
        if (option.takesValue) {
            continue;
        }
        const Answer answer = ParseFresh({std::string("--") + option.name + "=x"});
        EXPECT_EQ(answer.result, 0);
        EXPECT_EQ(answer.err,
                  std::string("tool: option '--") + option.name + "' doesn't allow an argument\n");
        EXPECT_EQ(answer.out, IllegalOption(option.number) + "Action type undefined or illegal!\n")
            << option.name;
    }
}

TEST_F(OptionTableRows, Every_prefix_is_resolved_in_table_order) {
    // Every beginning of every name: found when exact or when it fits one option only; otherwise
    // the listing of the candidates shows their order.
    for (const ListedOption &option : kListedOptions) {
        const std::string name = option.name;
        for (std::size_t length = 1; length <= name.size(); ++length) {
            const std::string prefix = name.substr(0, length);
            std::vector<std::string> fitting;
            bool exact = false;
            for (const ListedOption &other : kListedOptions) {
                if (std::string(other.name).compare(0, length, prefix) == 0) {
                    fitting.emplace_back(other.name);
                }
                exact = exact || prefix == other.name;
            }
            const Answer answer = ParseFresh({"--" + prefix});
            if (exact || fitting.size() == 1) {
                EXPECT_EQ(answer.err.find("ambiguous"), std::string::npos) << prefix;
                EXPECT_EQ(answer.err.find("unrecognized"), std::string::npos) << prefix;
                continue;
            }
            EXPECT_EQ(answer.err, AmbiguousCommand("--" + prefix, fitting));
            EXPECT_EQ(answer.out, IllegalOption(0) + "Action type undefined or illegal!\n");
        }
    }
}

TEST_F(OptionTableRows, Empty_name_is_ambiguous_between_all_options) {
    std::vector<std::string> names;
    for (const ListedOption &option : kListedOptions) {
        names.emplace_back(option.name);
    }
    const Answer answer = Parse({"--=x", "--resetmcu"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.err, AmbiguousCommand("--=x", names));
    EXPECT_EQ(answer.out, IllegalOption(0));
}

TEST_F(OptionTableRows, No_short_option_is_registered) {
    const Answer answer = Parse({"-v", "--resetmcu"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.err, "tool: invalid option -- 'v'\n");
    EXPECT_EQ(answer.out, "illegal option ' v '!\n");
}

TEST_F(OptionTableRows, Every_action_option_stores_its_action) {
    folder.Write("f.bin", "x");
    for (const ListedAction &action : kListedActions) {
        if (action.HasNoLine()) {
            continue;
        }
        EXPECT_ACCEPTED(ParseFresh(action.Line()));
        EXPECT_EQ(static_cast<unsigned>(Setting()->enumActionType), action.number) << action.name;
    }
}

TEST_F(OptionTableRows, Every_switch_sets_its_field) {
    EXPECT_ACCEPTED(Parse({"--resetmcu"}));
    EXPECT_EQ(Setting()->enumBootCodeType, 0U);
    EXPECT_EQ(Setting()->enumIspMode, 1U);
    EXPECT_EQ(Setting()->bIspChannel, 0U);
    EXPECT_EQ(Setting()->bCompareVersion, 0U);
    EXPECT_EQ(Setting()->enumMergeFWGeneration, 2U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--newboot"}));
    EXPECT_EQ(Setting()->enumBootCodeType, 1U);
    EXPECT_EQ(Setting()->enumIspMode, 1U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--factory"}));
    EXPECT_EQ(Setting()->enumIspMode, 2U);
    EXPECT_EQ(Setting()->enumBootCodeType, 0U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--ispchannel"}));
    EXPECT_EQ(Setting()->bIspChannel, 1U);
    EXPECT_EQ(Setting()->bCompareVersion, 0U);
    EXPECT_ACCEPTED(ParseFresh({"--resetmcu", "--comparever"}));
    EXPECT_EQ(Setting()->bCompareVersion, 1U);
    EXPECT_EQ(Setting()->bIspChannel, 0U);
    EXPECT_ACCEPTED(ParseFresh({"--i2cwrite", "--ddccicmd", "--writedata", "1,2,0x81,5"}));
    EXPECT_EQ(Setting()->stI2CWrite.bDdcciCmd, 1U);
}

TEST_F(OptionTableRows, Every_keyword_stores_its_number) {
    using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
    const struct {
        const char *option;
        const char *word;
        std::uint32_t Record::*field;
        unsigned value;
    } rows[] = {{"--edpmode", "isp", &Record::enumEdpIspMode, 1},
                {"--edpmode", "readver", &Record::enumEdpIspMode, 2},
                {"--infotype", "hpscaler", &Record::enumUserDefinedInfoType, 1},
                {"--infotype", "hpfwname", &Record::enumUserDefinedInfoType, 2},
                {"--infotype", "hpmodelname", &Record::enumUserDefinedInfoType, 3},
                {"--infotype", "hphwcid", &Record::enumUserDefinedInfoType, 4},
                {"--mergefwgen", "gen1", &Record::enumMergeFWGeneration, 1},
                {"--mergefwgen", "gen2", &Record::enumMergeFWGeneration, 2},
                {"--mergeinfotype", "hpfriends", &Record::enumMergeFWInfoType, 1},
                {"--sendextracmd", "before", &Record::enumSendExtraCmdMode, 1},
                {"--sendextracmd", "after", &Record::enumSendExtraCmdMode, 2},
                {"--sendextracmd", "both", &Record::enumSendExtraCmdMode, 3}};
    for (const auto &row : rows) {
        EXPECT_ACCEPTED(ParseFresh({"--resetmcu", row.option, row.word}));
        const auto setting = Setting();
        const struct {
            std::uint32_t Record::*field;
            unsigned normal;
        } fields[] = {{&Record::enumEdpIspMode, 0},
                      {&Record::enumUserDefinedInfoType, 0},
                      {&Record::enumMergeFWGeneration, 2},
                      {&Record::enumMergeFWInfoType, 0},
                      {&Record::enumSendExtraCmdMode, 0}};
        for (const auto &field : fields) {
            EXPECT_EQ((*setting).*field.field, field.field == row.field ? row.value : field.normal)
                << row.option << " " << row.word;
        }
    }
}

TEST_F(OptionTableRows, Unknown_keyword_is_rejected_with_message_without_newline) {
    const struct {
        const char *option;
        const char *message;
        std::vector<const char *> words;
    } rows[] = {
        {"--edpmode", "wrong edp isp mode!", {"ISP", "", "ispx", "is", "gen1"}},
        {"--infotype", "wrong user defined info type!", {"HPSCALER", "", "hp", "hpscaler "}},
        {"--mergefwgen", "wrong merge info generation!", {"Gen1", "", "gen", "gen3", "1"}},
        {"--mergeinfotype", "wrong user defined merge info type!", {"HPfriends", "", "hpfriend"}},
        {"--sendextracmd", "wrong send extra command mode!", {"Both", "", "none", "beforeafter"}}};
    for (const auto &row : rows) {
        for (const char *word : row.words) {
            EXPECT_REFUSED(ParseFresh({"--resetmcu", row.option, word}), row.message);
        }
    }
}

TEST_F(OptionTableRows, Bank_and_file_options_fill_their_own_entry) {
    for (unsigned entry = 0; entry <= 9; ++entry) {
        const std::string number = entry == 0 ? "" : std::to_string(entry);
        const std::string fw = "--fw" + number;
        const std::string bank = "--bank" + number;
        folder.Write("f.bin", "x");
        EXPECT_ACCEPTED(ParseFresh({"--isp", fw, "f.bin", bank, std::to_string(100 + entry)}));
        EXPECT_EQ(Setting()->stMapFw.ulFwCount, 1U);
        EXPECT_EQ(Setting()->stMapFw.ulTargetBank[0], 100 + entry);
        EXPECT_REFUSED(ParseFresh({"--isp", fw, "f.bin", fw, "f.bin"}),
                       "Parameter has been detected two or more times! --fw" +
                           std::to_string(entry) + " \n");
        EXPECT_REFUSED(ParseFresh({"--isp", bank, "256"}),
                       "Parameter out of range 0~255! --bank" + std::to_string(entry) + " 256\n");
    }
}
