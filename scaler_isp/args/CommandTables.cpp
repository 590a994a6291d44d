#include "scaler_isp/args/CommandTables.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

using Args = STRUCT_CP_ISP_CMD_ARGS;
using enum OptionGroup;

// The column ARGUMENT of options.def.
constexpr bool VALUE = true;
constexpr bool NO_VALUE = false;

// The column EFFECT of options.def: each makes a row with the members of its effect; MakeRow adds
// the rest.

constexpr OptionRow Flag(OptionGroup group, int bit) {
    return {.enumGroup = group, .nVal = bit, .enumEffect = OptionEffect::Flag};
}

constexpr OptionRow Text(int id, std::string Args::*text) {
    return {.nVal = id, .enumEffect = OptionEffect::Text, .pText = text};
}

constexpr OptionRow Number(int id, std::uint32_t Args::*number, std::uint32_t value) {
    return {.nVal = id, .enumEffect = OptionEffect::Number, .pNumber = number, .ulNumber = value};
}

constexpr OptionRow Keyword(int id, std::uint32_t Args::*number, const char *keywords,
                            const char *error) {
    return {.nVal = id,
            .enumEffect = OptionEffect::Keyword,
            .pNumber = number,
            .pszKeywords = keywords,
            .pszKeywordError = error};
}

constexpr OptionRow Firmware(int id, unsigned int entry) {
    return {.nVal = id, .enumEffect = OptionEffect::Firmware, .nEntry = entry};
}

constexpr OptionRow Bank(int id, unsigned int entry) {
    return {.nVal = id, .enumEffect = OptionEffect::Bank, .nEntry = entry};
}

constexpr OptionRow Search(int id) {
    return {.nVal = id, .enumEffect = OptionEffect::Search};
}

constexpr OptionRow MakeRow(const char *name, bool takesValue, OptionRow effect) {
    effect.pszName = name;
    effect.bTakesValue = takesValue;
    return effect;
}

constexpr std::array<OptionRow, kOptionCount> kOptions = {{
#define SCALER_ISP_OPTION(NAME, ARGUMENT, EFFECT, ...) MakeRow(NAME, ARGUMENT, EFFECT),
#include "scaler_isp/args/options.def"
}};

// Ids share the scan's return value with 0 (a flag option) and '?' (63, an error): an id of 63
// would be read as an error, so 62 is the largest.
constexpr int kIdLimit = '?';

constexpr bool IdsAreValid() {
    return std::all_of(kOptions.begin(), kOptions.end(), [](const OptionRow &row) {
        return row.enumGroup != None || (row.nVal > 0 && row.nVal < kIdLimit);
    });
}
static_assert(IdsAreValid(), "the id of an option is 1 to 62: 63 would be read as an error");

/// The rows by id; two rows with the same id do not compile.
constexpr std::array<const OptionRow *, kIdLimit> kRowById = [] {
    std::array<const OptionRow *, kIdLimit> rows{};
    for (const OptionRow &row : kOptions) {
        if (row.enumGroup == None) {
            const OptionRow *&slot = rows.at(static_cast<std::size_t>(row.nVal));
            slot = slot == nullptr ? &row : throw "two options share an id";
        }
    }
    return rows;
}();

constexpr ActionRow kActions[] = {
#define SCALER_ISP_ACTION(NAME, BIT, ENUMERATOR, FILES, READS, ...)                                \
    {BIT, ENUMERATOR, ActionFiles::FILES, ActionReads::READS},
#include "scaler_isp/args/actions.def"
};

constexpr ActionRow kNoAction;

} // namespace

std::span<const OptionRow, kOptionCount> OptionTable() {
    return kOptions;
}

const OptionRow *FindOptionById(int id) {
    return id >= 0 && id < kIdLimit ? kRowById[static_cast<std::size_t>(id)] : nullptr;
}

const ActionRow &RowOfAction(ENUM_CP_ISPTOOL_ACTION_TYPE action) {
    const auto *row = std::find_if(std::begin(kActions), std::end(kActions),
                                   [=](const ActionRow &r) { return r.enumAction == action; });
    return row != std::end(kActions) ? *row : kNoAction;
}

// QUIRK Factoryisp_option_has_no_action_value: the bit of --factoryisp (0x10000) converts to no
// action, although the action itself is known everywhere else.
ENUM_CP_ISPTOOL_ACTION_TYPE ActionOfBit(std::uint32_t bit) {
    const auto *row = std::find_if(std::begin(kActions), std::end(kActions),
                                   [=](const ActionRow &r) { return r.ulBit == bit; });
    return row != std::end(kActions) && row->enumAction != ENUM_ACTION_FACTORYISP
               ? row->enumAction
               : ENUM_ACTION_NONE;
}
