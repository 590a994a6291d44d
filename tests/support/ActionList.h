#ifndef SCALER_ISP_TESTS_SUPPORT_ACTION_LIST_H
#define SCALER_ISP_TESTS_SUPPORT_ACTION_LIST_H

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

/// One row of abi/action_rows.def.
struct ListedAction {
    std::string_view name;
    unsigned bit;
    unsigned number;
    std::string_view arguments;
    bool maySign;
    std::string_view function;
    int result;

    /// The line is always rejected, although the action exists.
    constexpr bool HasNoLine() const {
        return name == "factoryisp";
    }
    constexpr bool UsesSignPluginOnly() const {
        return name == "verify" || name == "sign";
    }
    /// A line with this action that is accepted. REQUIRES: f.bin is in the parser's directory.
    std::vector<std::string> Line() const {
        std::vector<std::string> words{"--" + std::string(name)};
        std::istringstream rest{std::string(arguments)};
        for (std::string word; rest >> word;) {
            words.push_back(word);
        }
        return words;
    }
};

inline constexpr bool MAY_BE_SIGNED = true;
inline constexpr bool UNSIGNED = false;

inline constexpr ListedAction kListedActions[] = {
#define LISTED_ACTION(NAME, BIT, ENUMERATOR, NUMBER, ARGUMENTS, SIGNATURE, FUNCTION, RESULT)       \
    {NAME, BIT, NUMBER, ARGUMENTS, SIGNATURE, FUNCTION, RESULT},
#include "abi/action_rows.def"
};

/// The largest value of a column.
constexpr unsigned LargestOf(unsigned ListedAction::*column) {
    unsigned largest = 0;
    for (const ListedAction &action : kListedActions) {
        largest = std::max(largest, action.*column);
    }
    return largest;
}

/// The first number and the first bit that mean no action.
inline constexpr unsigned kNumberWithoutAction = LargestOf(&ListedAction::number) + 1;
inline constexpr unsigned kBitWithoutAction = LargestOf(&ListedAction::bit) * 2;

#endif
