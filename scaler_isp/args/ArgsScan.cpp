#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "scaler_isp/args/OptionTable.h"
#include "scaler_isp/common/Boundary.h"

namespace {

constexpr int kEndOfOptions = -1;
constexpr int kFlagOption = 0;
constexpr int kEngineError = '?';

constexpr int kUserDefinedBit = 0x80;
constexpr int kWriteBit = 2;
constexpr std::uint32_t kMergeFwInfoBit = 0x200000;

} // namespace

/// One scan of one command line into a raw record. Each handler returns 1, or 0 to end ParseArgs.
class ArgumentScan {
  public:
    explicit ArgumentScan(CCpIspArgsParse &parser) : m_parser(parser) {}

    int Run(int argc, char **argv) {
        RegisterOptions();
        for (;;) {
            const int result = m_engine.ParseCmdLineEx(argc, argv, nullptr);
            if (result == kEndOfOptions) {
                PrintLeftovers(argc, argv);
                return 1;
            }
            if (Handle(result) == 0) {
                return 0;
            }
        }
    }

    STRUCT_CP_ISP_CMD_ARGS &Args() {
        return m_args;
    }

  private:
    void RegisterOptions() {
        std::array<STRUCT_CP_LONG_CMD_UNIT, kOptionCount + 1> units{};
        std::transform(OptionTable().begin(), OptionTable().end(), units.begin(),
                       [this](const OptionRow &row) {
                           const auto group = static_cast<std::size_t>(row.enumGroup);
                           int *flag =
                               row.enumGroup == OptionGroup::None ? nullptr : &m_flags[group];
                           return STRUCT_CP_LONG_CMD_UNIT{row.pszName, row.bTakesValue ? 1 : 0,
                                                          flag, row.nVal};
                       });
        m_engine.AddLongCmds(units.data());
    }

    int Handle(int result) {
        if (result == kFlagOption) {
            TakeFlags();
            return 1;
        }
        if (result == kEngineError) {
            // An option that nobody knows is reported and passed over.
            std::printf("illegal option ' %c '!\n", m_engine.GetUnknownChar());
            return 1;
        }
        const OptionRow *row = FindOptionById(result);
        return row != nullptr ? Take(*row, Argument()) : 1;
    }

    int Flag(OptionGroup group) const {
        return m_flags[static_cast<std::size_t>(group)];
    }

    /// The argument of the option just scanned, empty for one without.
    std::string Argument() {
        const char *argument = m_engine.GetCmdArg();
        return argument != nullptr ? argument : "";
    }

    // KEPT Flag_words_repeat_on_every_later_flag_option: the flag words keep their last value, so
    // the mode of --userdefined and the data of --write are taken again from a later flag option
    // that has an argument.
    void TakeFlags() {
        m_args.ulActionMask |= static_cast<std::uint32_t>(Flag(OptionGroup::Action));
        m_args.ulSignTypeMask |= static_cast<std::uint32_t>(Flag(OptionGroup::SignType));
        m_args.ulVerLocMask |= static_cast<std::uint32_t>(Flag(OptionGroup::VersionLocation));
        m_args.ulMergeInfoRwMask |= static_cast<std::uint32_t>(Flag(OptionGroup::MergeInfoRw));
        if (m_engine.GetCmdArg() == nullptr) {
            return;
        }
        if (Flag(OptionGroup::VersionLocation) == kUserDefinedBit) {
            m_args.strUserDefinedVerMode = Argument();
        }
        if (m_args.ulActionMask == kMergeFwInfoBit && Flag(OptionGroup::MergeInfoRw) == kWriteBit) {
            m_args.strMergeWriteData = Argument();
        }
    }

    int Take(const OptionRow &row, const std::string &argument) {
        switch (row.enumEffect) {
        case OptionEffect::Text:
            m_args.*row.pText = argument;
            return 1;
        case OptionEffect::Number:
            m_args.*row.pNumber = row.ulNumber;
            return 1;
        case OptionEffect::Keyword:
            return TakeKeyword(row, argument);
        case OptionEffect::Firmware:
            return TakeFirmware(row.nEntry, argument);
        case OptionEffect::Bank:
            return m_parser.InsertCommandStartBank(row.nEntry, argument);
        case OptionEffect::Search:
            return TakeSearch(argument);
        case OptionEffect::Flag:
            break;
        }
        return 1;
    }

    int TakeKeyword(const OptionRow &row, const std::string &argument) {
        const auto keyword =
            std::find_if(row.keywords.begin(), row.keywords.end(),
                         [&](const OptionKeyword &known) { return known.strWord == argument; });
        if (keyword == row.keywords.end()) {
            std::fputs(row.pszKeywordError, stdout);
            return 0;
        }
        m_args.*row.pNumber = keyword->ulValue;
        return 1;
    }

    // KEPT Search_and_file_exclude_each_other_silently: whichever of --fw and --searchfw comes
    // second ends the command without a message.
    int TakeFirmware(unsigned int entry, const std::string &path) {
        if (entry == 0) {
            m_args.strFwPath = path;
            m_args.bFwGiven = 1;
            if (m_args.bSearchFw != 0) {
                return 0;
            }
        }
        return m_parser.InsertCommandFwFile(entry, path.c_str());
    }

    int TakeSearch(const std::string &rule) {
        m_args.strSearchFwMode = rule;
        m_args.bSearchFw = 1;
        if (m_args.bFwGiven != 0) {
            return 0;
        }
        if (SearchFirmware(rule) == 0) {
            return 0;
        }
        return m_parser.InsertCommandFwFile(0, m_args.strFwPath.c_str());
    }

    int SearchFirmware(const std::string &rule) {
        if (rule == "userdefined") {
            return m_parser.GetUserDefinedBinNameFromTxt(m_args.strFwPath);
        }
        if (rule == "auto") {
            return FindOnlyBin();
        }
        if (rule == "prefix") {
            return m_parser.GetBinNameFromPrefixSetting(m_args.strFwPath, m_args.strSettingFile);
        }
        std::printf("auto search fw parameter illegal!\n");
        return 0;
    }

    int FindOnlyBin() {
        std::vector<std::string> names;
        FindFile(m_parser.GetCurrentDir(), names, ".bin");
        if (names.empty()) {
            std::printf("cann't find bin file!\n");
            return 0;
        }
        if (names.size() > 1) {
            std::printf("find more than one bin file!\n");
            return 0;
        }
        m_args.strFwPath = names.front();
        return 1;
    }

    void PrintLeftovers(int argc, char **argv) {
        if (m_engine.GetCmdIndex() >= argc) {
            return;
        }
        std::printf("non-option ARGV-elements: ");
        for (int i = m_engine.GetCmdIndex(); i < argc; ++i) {
            std::printf("%s ", argv[i] != nullptr ? argv[i] : "");
        }
        std::printf("\n");
    }

    CCpIspArgsParse &m_parser;
    CpNxCmdLindParse m_engine;
    STRUCT_CP_ISP_CMD_ARGS m_args;
    std::array<int, kOptionGroups> m_flags{};
};

// KEPT First_word_is_the_program_name: argv[0] is never scanned as an option.
// KEPT Unknown_options_are_not_fatal: unknown options, missing arguments and stray words are
// reported and passed over.
int CCpIspArgsParse::ParseArgs(int argc, const char *const *argv) {
    return ResultOrOnThrow(0, [&] {
        // The scan reorders its vector, and the caller's may be constant: it gets a copy of the
        // pointers. The words are never written to.
        std::vector<char *> words;
        if (argv != nullptr && argc > 0) {
            std::transform(argv, argv + argc, std::back_inserter(words),
                           [](const char *word) { return const_cast<char *>(word); });
        }
        const int count = static_cast<int>(words.size());
        words.push_back(nullptr);
        ArgumentScan scan(*this);
        return scan.Run(count, words.data()) != 0 ? JudgeArgument(scan.Args()) : 0;
    });
}
