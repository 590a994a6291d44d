#ifndef SCALER_ISP_ARGS_COMMAND_TABLES_H
#define SCALER_ISP_ARGS_COMMAND_TABLES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/args/RawArgs.h"

/// \file
/// The columns of options.def and actions.def that the library uses. The documentation columns are
/// in CommandFacts.h, which the library must not include.

/// The flag word that a flag option sets; the scan ORs it into a mask of the raw record. A mask,
/// because an enumerator would be overwritten by a second option of the group, which must be seen
/// to be rejected.
enum class OptionGroup : std::uint8_t { None, Action, SignType, VersionLocation, MergeInfoRw };
constexpr std::size_t kOptionGroups = 5;

/// What the scan does when it finds an option.
enum class OptionEffect : std::uint8_t {
    Flag,     ///< sets nVal in the flag word of its group
    Text,     ///< stores its argument in pText
    Number,   ///< stores ulNumber in pNumber
    Keyword,  ///< stores the position of its argument among the keywords in pNumber, 1 first
    Firmware, ///< the argument is the firmware file of entry nEntry
    Bank,     ///< the argument is the start bank of entry nEntry
    Search    ///< the argument is the rule of the firmware search
};

struct OptionRow {
    const char *pszName = nullptr;
    bool bTakesValue = false;
    OptionGroup enumGroup = OptionGroup::None; ///< None: the scan returns nVal as the option's id
    int nVal = 0;                              ///< the bit of a flag option, else the id
    OptionEffect enumEffect = OptionEffect::Flag;
    std::string STRUCT_CP_ISP_CMD_ARGS::*pText = nullptr;
    std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*pNumber = nullptr;
    std::uint32_t ulNumber = 0;
    const char *pszKeywords = nullptr;     ///< separated by single spaces, compared exactly
    const char *pszKeywordError = nullptr; ///< printed, without a newline, for any other argument
    unsigned int nEntry = 0;
};

constexpr std::size_t kOptionCount = 0
#define SCALER_ISP_OPTION(NAME, ...) +1
#include "scaler_isp/args/options.def"
    ;

/// All rows in the order of registration, which decides how abbreviations are resolved.
std::span<const OptionRow, kOptionCount> OptionTable();

/// The row for which the scan returns this id, or null.
const OptionRow *FindOptionById(int id);

/// Which files an action uses; the column FILES of actions.def.
enum class ActionFiles : std::uint8_t { NONE, PROGRAM, READ_VERSION, SIGNATURE };

/// Which arguments are converted only for one action; the column READS of actions.def.
enum class ActionReads : std::uint8_t { NOTHING, USER_FLAG, DUMP_RANGE, I2C_BYTES };

struct ActionRow {
    std::uint32_t ulBit = 0;
    ENUM_CP_ISPTOOL_ACTION_TYPE enumAction = ENUM_ACTION_NONE;
    ActionFiles enumFiles = ActionFiles::NONE;
    ActionReads enumReads = ActionReads::NOTHING;

    /// Whether the action writes firmware files into the flash.
    bool ProgramsFirmware() const {
        return enumFiles == ActionFiles::PROGRAM;
    }
    /// Whether the action only signs or verifies, without programming.
    bool OnlySigns() const {
        return enumFiles == ActionFiles::SIGNATURE;
    }
    /// Whether a digital signature may be given with the action.
    bool MayBeSigned() const {
        return ProgramsFirmware() || OnlySigns();
    }
};

/// The row of an action. Hosts may store any number in a record; one without a row gets that of
/// ENUM_ACTION_NONE, which uses no files and reads nothing.
const ActionRow &RowOfAction(ENUM_CP_ISPTOOL_ACTION_TYPE action);

/// The action of one bit of the mask; ENUM_ACTION_NONE for any other mask and for --factoryisp.
ENUM_CP_ISPTOOL_ACTION_TYPE ActionOfBit(std::uint32_t bit);

#endif
