#include "scaler_isp/args/CommandFlow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <string_view>

#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"

namespace {

constexpr int kEndOfOptions = -1;
constexpr int kFlagOption = 0;
constexpr int kEngineError = '?';

constexpr int kUserDefinedBit = 0x80;
constexpr int kWriteBit = 2;

/// The position of a keyword, 1 first, in a list separated by single spaces; 0 if it is not in the
/// list.
std::uint32_t PositionOfKeyword(std::string_view keywords, std::string_view keyword) {
    for (std::uint32_t position = 1;; ++position) {
        const std::size_t end = keywords.find(' ');
        if (keywords.substr(0, end) == keyword) {
            return position;
        }
        if (end == std::string_view::npos) {
            return 0;
        }
        keywords.remove_prefix(end + 1);
    }
}

/// Scans one command line. Each handler returns whether the line is still accepted.
class ArgumentScanner {
  public:
    ArgumentScanner(const ArgsDirectories &directories, RawArgs &args, FwBankMap &files,
                    PathField &settingFile)
        : m_directories(directories), m_args(args), m_files(files), m_settingFile(settingFile) {}

    bool Run(int argc, char **argv) {
        RegisterOptions();
        for (;;) {
            const int result = m_engine.ParseCmdLineEx(argc, argv, nullptr);
            if (result == kEndOfOptions) {
                PrintNonOptions(argc, argv);
                return true;
            }
            if (!Handle(result)) {
                return false;
            }
        }
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

    bool Handle(int result) {
        if (result == kFlagOption) {
            StoreFlags();
            return true;
        }
        if (result == kEngineError) {
            // An unknown option is reported and ignored.
            std::printf("illegal option ' %c '!\n", m_engine.GetUnknownChar());
            return true;
        }
        const OptionRow *row = FindOptionById(result);
        return row == nullptr || Apply(*row, Argument());
    }

    int Flag(OptionGroup group) const {
        return m_flags[static_cast<std::size_t>(group)];
    }

    /// The argument of the option just scanned; empty if it has none.
    std::string Argument() {
        const char *argument = m_engine.GetCmdArg();
        return argument != nullptr ? argument : "";
    }

    // QUIRK Flag_values_repeat_on_every_later_flag_option: a flag word keeps its last value, so a
    // later flag option with an argument overwrites the mode of --userdefined and the data of
    // --write.
    void StoreFlags() {
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
        if (ActionOfBit(m_args.ulActionMask) == ENUM_ACTION_MERGEFWINFO &&
            Flag(OptionGroup::MergeInfoRw) == kWriteBit) {
            m_args.strMergeWriteData = Argument();
        }
    }

    bool Apply(const OptionRow &row, const std::string &argument) {
        switch (row.enumEffect) {
        case OptionEffect::Text:
            m_args.*row.pText = argument;
            return true;
        case OptionEffect::Number:
            m_args.*row.pNumber = row.ulNumber;
            return true;
        case OptionEffect::Keyword:
            return StoreKeyword(row, argument);
        case OptionEffect::Firmware:
            return ApplyFirmware(row.nEntry, argument);
        case OptionEffect::Bank:
            return SetStartBank(m_files, row.nEntry, argument);
        case OptionEffect::Search:
            return ApplySearch(argument);
        case OptionEffect::Flag:
            break;
        }
        return true;
    }

    bool StoreKeyword(const OptionRow &row, const std::string &argument) {
        const std::uint32_t position = PositionOfKeyword(row.pszKeywords, argument);
        if (position == 0) {
            std::fputs(row.pszKeywordError, stdout);
            return false;
        }
        m_args.*row.pNumber = position;
        return true;
    }

    // QUIRK Search_and_file_exclude_each_other_silently: the second of --fw and --searchfw rejects
    // the command line without a message.
    bool ApplyFirmware(unsigned int entry, const std::string &path) {
        if (entry == 0) {
            m_args.strFwPath = path;
            m_args.bFwGiven = 1;
            if (m_args.bSearchFw != 0) {
                return false;
            }
        }
        return AddFirmwareFile(m_files, entry, path);
    }

    bool ApplySearch(const std::string &rule) {
        m_args.strSearchFwMode = rule;
        m_args.bSearchFw = 1;
        return m_args.bFwGiven == 0 && SearchFirmware() &&
               AddFirmwareFile(m_files, 0, m_args.strFwPath);
    }

    bool SearchFirmware() {
        const std::string &rule = m_args.strSearchFwMode;
        if (rule == "userdefined") {
            return FindFirmwareByInfo(m_directories, m_args.strFwPath);
        }
        if (rule == "auto") {
            return FindOnlyFirmware(m_directories, m_args.strFwPath);
        }
        if (rule == "prefix") {
            return FindFirmwareByPrefix(m_directories, m_args.strSettingFile, m_settingFile,
                                        m_args.strFwPath);
        }
        std::printf("auto search fw parameter illegal!\n");
        return false;
    }

    void PrintNonOptions(int argc, char **argv) {
        if (m_engine.GetCmdIndex() >= argc) {
            return;
        }
        std::printf("non-option ARGV-elements: ");
        for (int i = m_engine.GetCmdIndex(); i < argc; ++i) {
            std::printf("%s ", argv[i] != nullptr ? argv[i] : "");
        }
        std::printf("\n");
    }

    const ArgsDirectories &m_directories;
    RawArgs &m_args;
    FwBankMap &m_files;
    PathField &m_settingFile;
    CpNxCmdLindParse m_engine;
    std::array<int, kOptionGroups> m_flags{};
};

} // namespace

// QUIRK First_argument_is_program_name: argv[0] is never scanned as an option.
// QUIRK Unknown_options_are_not_fatal: unknown options, missing arguments and non-option arguments
// are reported and ignored.
bool ScanArguments(int argc, char **argv, const ArgsDirectories &directories, RawArgs &args,
                   FwBankMap &files, PathField &settingFile) {
    return ArgumentScanner(directories, args, files, settingFile).Run(argc, argv);
}
