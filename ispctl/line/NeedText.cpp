#include "line/NeedText.h"

#include <fmt/format.h>

#include "line/MissingParts.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;
using ScalerIspFacts::GivenLine;
using ScalerIspFacts::GivenOption;

std::string TextOf(const std::vector<Alternative> &alternatives, std::string MissingPart::*text) {
    std::vector<std::string> choices;
    for (const Alternative &alternative : alternatives) {
        std::string parts;
        for (const MissingPart &part : alternative) {
            parts += (parts.empty() ? "" : " and ") + part.*text;
        }
        choices.push_back(std::move(parts));
    }
    return JoinWithOr(choices);
}

/// The actions with which the expression can hold.
std::vector<std::string> FittingActions(const LineUnderCheck &line, std::size_t index,
                                        std::string_view expression) {
    std::vector<std::string> names;
    for (const ActionFacts &action : ScalerIspFacts::kActions) {
        std::vector<GivenOption> options(line.Facts());
        for (GivenOption &option : options) {
            if (ScalerIspFacts::FindAction(option.name) != nullptr) {
                option = {action.name, {}};
            }
        }
        const bool isRefused = ScalerIspFacts::FindOption(action.name)->needs == "NEVER";
        const GivenLine other{options, index};
        if (!isRefused && !MissingParts(expression, other, Advice::Anything).empty()) {
            names.push_back("--" + std::string(action.name));
        }
    }
    return names;
}

} // namespace

NeedText DescribeNeed(const LineUnderCheck &line, std::size_t index, std::string_view expression) {
    NeedText text;
    std::vector<Alternative> found = MissingParts(expression, line.LineFor(index), Advice::Sound);
    text.example = TextOf(found, &MissingPart::example);
    if (found.empty()) {
        found = MissingParts(expression, line.LineFor(index), Advice::Anything);
    }
    text.words = TextOf(found, &MissingPart::words);
    if (!found.empty()) {
        text.detail = "without " + text.words;
        return text;
    }
    const ActionFacts *action = line.Action();
    const std::vector<std::string> actions =
        action != nullptr ? FittingActions(line, index, expression) : std::vector<std::string>();
    if (actions.empty()) {
        text.detail = "with the other options of this line";
        return text;
    }
    text.isForOtherAction = true;
    text.detail = fmt::format("with --{}; it is for {}", action->name, JoinWithOr(actions));
    return text;
}

} // namespace ispctl
