#ifndef SCALER_ISP_ARGS_COMMAND_FACTS_H
#define SCALER_ISP_ARGS_COMMAND_FACTS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/args/RawArgs.h"

/// \file
/// All columns of options.def and actions.def as constant arrays, for programs that explain or
/// check a command line; OptionNeeds.h evaluates the columns NEEDS, EXCLUDES and GOES_WITH. Header
/// only. The library itself must not include it, so that these strings do not become part of it.

namespace ScalerIspFacts {

enum class Group : std::uint8_t { None, Action, SignType, VersionLocation, MergeInfoRw };
enum class Kind : std::uint8_t { Flag, Text, Number, Keyword, Firmware, Bank, Search };

/// The column EFFECT.
struct Effect {
    Kind kind = Kind::Flag;
    Group group = Group::None;
    int number = 0; ///< the bit of a flag option, else the id
    unsigned int entry = 0;
    std::string_view keywords; ///< separated by single spaces
};

/// One row of options.def. A row made by SCALER_ISP_OPTION_LIKE has the texts of the row that it
/// names.
struct OptionFacts {
    std::string_view name; ///< without the dashes
    bool takesValue = false;
    Effect effect;
    std::string_view section;
    std::string_view form; ///< "file": a path that the library resolves against its own directory
    std::string_view meaning;
    std::string_view needs;
    std::string_view excludes;
    std::string_view goesWith;
    std::string_view like; ///< the option whose texts these are; empty: this one
};

/// One row of actions.def, without the columns that options.def repeats.
struct ActionFacts {
    std::string_view name;
    std::uint32_t bit = 0;
    ENUM_CP_ISPTOOL_ACTION_TYPE action = ENUM_ACTION_NONE;
    std::string_view files; ///< the column FILES, verbatim
    std::string_view reads; ///< the column READS, verbatim
    std::string_view call;  ///< the column CALL, verbatim
};

struct ConditionFacts {
    std::string_view name;
    std::string_view expression; ///< empty: built in
    std::string_view words;
};

namespace Detail {

using Args = STRUCT_CP_ISP_CMD_ARGS;
using enum Group;

constexpr bool VALUE = true;
constexpr bool NO_VALUE = false;

constexpr Effect Flag(Group group, int bit) {
    return {Kind::Flag, group, bit, 0, {}};
}
constexpr Effect Text(int id, std::string Args::* /*text*/) {
    return {Kind::Text, None, id, 0, {}};
}
constexpr Effect Number(int id, std::uint32_t Args::* /*number*/, std::uint32_t /*value*/) {
    return {Kind::Number, None, id, 0, {}};
}
constexpr Effect Keyword(int id, std::uint32_t Args::* /*number*/, std::string_view keywords,
                         std::string_view /*error*/) {
    return {Kind::Keyword, None, id, 0, keywords};
}
constexpr Effect Firmware(int id, unsigned int entry) {
    return {Kind::Firmware, None, id, entry, {}};
}
constexpr Effect Bank(int id, unsigned int entry) {
    return {Kind::Bank, None, id, entry, {}};
}
constexpr Effect Search(int id) {
    return {Kind::Search, None, id, 0, {}};
}

inline constexpr OptionFacts kWrittenOptions[] = {
#define SCALER_ISP_OPTION(NAME, ARGUMENT, EFFECT, SECTION, FORM, MEANING, NEEDS, EXCLUDES,         \
                          GOES_WITH)                                                               \
    {NAME, ARGUMENT, EFFECT, SECTION, FORM, MEANING, NEEDS, EXCLUDES, GOES_WITH, ""},
#define SCALER_ISP_OPTION_LIKE(NAME, ARGUMENT, EFFECT, TEXTS_OF)                                   \
    {NAME, ARGUMENT, EFFECT, "", "", "", "", "", "", TEXTS_OF},
#include "scaler_isp/args/options.def"
};

/// Fills in the texts of the row that `row.like` names.
constexpr OptionFacts WithTexts(OptionFacts row) {
    for (const OptionFacts &model : kWrittenOptions) {
        if (!row.like.empty() && model.name == row.like) {
            row.section = model.section;
            row.form = model.form;
            row.meaning = model.meaning;
            row.needs = model.needs;
            row.excludes = model.excludes;
            row.goesWith = model.goesWith;
        }
    }
    return row;
}

constexpr auto AllOptions() {
    std::array<OptionFacts, std::size(kWrittenOptions)> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = WithTexts(kWrittenOptions[i]);
    }
    return rows;
}

} // namespace Detail

/// All options in the order of registration.
inline constexpr auto kOptions = Detail::AllOptions();

inline constexpr ActionFacts kActions[] = {
#define SCALER_ISP_ACTION(NAME, BIT, ENUMERATOR, FILES, READS, CALL, ...)                          \
    {NAME, BIT, ENUMERATOR, #FILES, #READS, #CALL},
#include "scaler_isp/args/actions.def"
};

inline constexpr ConditionFacts kConditions[] = {
#define SCALER_ISP_OPTION(...)
#define SCALER_ISP_CONDITION(NAME, EXPRESSION, WORDS) {NAME, EXPRESSION, WORDS},
#include "scaler_isp/args/options.def"
};

namespace Detail {

template <class Rows>
constexpr auto FindByName(const Rows &rows, std::string_view name) -> decltype(std::data(rows)) {
    for (const auto &row : rows) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace Detail

/// The row with this name, or null.
constexpr const OptionFacts *FindOption(std::string_view name) {
    return Detail::FindByName(kOptions, name);
}
constexpr const ActionFacts *FindAction(std::string_view name) {
    return Detail::FindByName(kActions, name);
}
constexpr const ConditionFacts *FindCondition(std::string_view name) {
    return Detail::FindByName(kConditions, name);
}

} // namespace ScalerIspFacts

#endif
