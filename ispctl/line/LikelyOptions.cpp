#include "line/LikelyOptions.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "line/NearestName.h"

namespace ispctl {
namespace {

using Kind = GivenArgument::Kind;
using ScalerIspFacts::GivenOption;
using ScalerIspFacts::OptionFacts;

bool HasJoinedValue(const LineUnderCheck &line, const GivenArgument &given) {
    return line.Arguments()[given.position].size() > given.typed.size();
}

bool IsAction(std::string_view name) {
    return ScalerIspFacts::FindAction(name) != nullptr;
}

/// How badly the option suits the rest of the line; 0: it could stand there. A value too many or
/// missing counts twice.
std::size_t MisfitOf(const LineUnderCheck &line, const OptionFacts &option, bool hasValue) {
    std::vector<GivenOption> options(line.Facts());
    options.push_back({option.name, {}});
    const ScalerIspFacts::GivenLine with{options, options.size() - 1};
    const bool hasAction =
        std::any_of(line.Facts().begin(), line.Facts().end(),
                    [](const GivenOption &given) { return IsAction(given.name); });
    const bool hasUse = HasNeeds(option, with) && !IsExcluded(option, with);
    std::size_t misfit = 0;
    for (const bool isWrong :
         {option.takesValue != hasValue, option.takesValue != hasValue,
          line.Find(option.name) != nullptr, IsAction(option.name) && hasAction, !hasUse}) {
        misfit += isWrong ? 1U : 0U;
    }
    return misfit;
}

/// Nothing if the option is no candidate. Two misfits weigh as much as one wrong letter.
std::optional<std::size_t> CostOf(const LineUnderCheck &line, std::size_t index,
                                  const OptionFacts &option) {
    const GivenArgument &given = line.Given()[index];
    std::string_view name = given.typed;
    name.remove_prefix(std::min(name.find_first_not_of('-'), name.size()));
    const bool hasValue = HasJoinedValue(line, given) || MeantValue(line, index) != nullptr;
    const bool isBeginning = option.name.starts_with(name) || name.starts_with(option.name);
    std::size_t distance = 0;
    if (given.kind == Kind::Ambiguous) {
        if (!option.name.starts_with(name)) {
            return std::nullopt;
        }
    } else if (const auto found = NameDistance(name, option.name)) {
        distance = *found;
    } else {
        return std::nullopt;
    }
    return 4 * distance + 2 * MisfitOf(line, option, hasValue) + (isBeginning ? 0U : 1U);
}

} // namespace

const GivenArgument *MeantValue(const LineUnderCheck &line, std::size_t index) {
    const auto &all = line.Given();
    const bool follows = index + 1 < all.size() && all[index + 1].kind == Kind::NonOption &&
                         all[index + 1].position == all[index].position + 1;
    return follows && !HasJoinedValue(line, all[index]) ? &all[index + 1] : nullptr;
}

std::vector<std::string> LikelyOptions(const LineUnderCheck &line, std::size_t index) {
    std::vector<std::string> names;
    std::size_t smallest = std::numeric_limits<std::size_t>::max();
    for (const OptionFacts &option : ScalerIspFacts::kOptions) {
        const auto cost = CostOf(line, index, option);
        if (!cost || *cost > smallest) {
            continue;
        }
        if (*cost < smallest) {
            names.clear();
            smallest = *cost;
        }
        names.push_back("--" + std::string(option.name));
    }
    return names;
}

} // namespace ispctl
