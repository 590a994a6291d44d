#ifndef SCALER_ISP_ARGS_OPTION_TABLE_H
#define SCALER_ISP_ARGS_OPTION_TABLE_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "scaler_isp/args/RawArgs.h"

/// The options of the tool: one row each, and everything about an option follows from its row.

/// The flag word that a flag option sets; the scan ORs the word into a mask of the raw record.
enum class OptionGroup : std::uint8_t { None, Action, SignType, VersionLocation, MergeInfoRw };
constexpr std::size_t kOptionGroups = 5;

/// What the scan does with an option that it has found.
enum class OptionEffect : std::uint8_t {
    Flag,     ///< sets nVal in the flag word of its group
    Text,     ///< stores its argument in pText
    Number,   ///< stores ulNumber in pNumber
    Keyword,  ///< stores the number of its argument's keyword in pNumber
    Firmware, ///< the argument is the firmware file of entry nEntry
    Bank,     ///< the argument is the start bank of entry nEntry
    Search    ///< the argument is the rule of the firmware search
};

/// One word that an option takes, compared exactly.
struct OptionKeyword {
    std::string_view strWord;
    std::uint32_t ulValue;
};

struct OptionRow {
    const char *pszName;
    bool bTakesValue;
    OptionGroup enumGroup; ///< None: the scan returns nVal as the option's id
    int nVal;              ///< the bit of a flag option, else the id
    OptionEffect enumEffect;
    std::string STRUCT_CP_ISP_CMD_ARGS::*pText = nullptr;
    std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*pNumber = nullptr;
    std::uint32_t ulNumber = 0;
    std::span<const OptionKeyword> keywords = {};
    const char *pszKeywordError = nullptr; ///< printed, without a line end, for any other word
    unsigned int nEntry = 0;
};

constexpr std::size_t kOptionCount = 90;

/// All rows in the order of registration, which decides about abbreviations.
std::span<const OptionRow, kOptionCount> OptionTable();

/// The row that returns this id from the scan, or null.
const OptionRow *FindOptionById(int id);

#endif
