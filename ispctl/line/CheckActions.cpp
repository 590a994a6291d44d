#include "line/Checks.h"

#include <optional>

#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;

constexpr std::string_view kExampleAction = "isp";

/// Why the library never does anything for the action but to fail or to report success.
std::optional<FindingName> WhyUseless(const GivenArgument &given, const ActionFacts &action) {
    if (given.option->needs == "NEVER") {
        return FindingName("refused-action");
    }
    if (action.call == "NO_CALL") {
        return FindingName("action-without-effect");
    }
    if (action.call.starts_with("NEVER_RESOLVED") || action.call == "MERGE_INFO") {
        return FindingName("action-always-fails");
    }
    return std::nullopt;
}

} // namespace

void CheckActions(LineUnderCheck &line) {
    const GivenArgument *first = nullptr;
    const ActionFacts *firstAction = nullptr;
    for (const GivenArgument *given : line.Options()) {
        const ActionFacts *action = ScalerIspFacts::FindAction(given->option->name);
        if (action == nullptr) {
            continue;
        }
        if (first == nullptr) {
            first = given;
            firstAction = action;
            if (const auto why = WhyUseless(*given, *action)) {
                line.Report(*why, *given, Underline::Name,
                            {.example = "--" + std::string(kExampleAction)});
            }
        } else if (first->option != given->option) {
            FindingWords words{.other = first->typed};
            const bool isFirstUseless = WhyUseless(*first, *firstAction).has_value();
            if (isFirstUseless != WhyUseless(*given, *action).has_value()) {
                words.example = isFirstUseless ? given->typed : first->typed;
                words.allowed = isFirstUseless ? first->typed : given->typed;
            }
            line.Report("several-actions", *given, Underline::Name, words);
        }
    }
    if (first == nullptr) {
        const auto &isp = *ScalerIspFacts::FindOption(kExampleAction);
        line.Report("no-action",
                    {.example = ExampleOf(isp) + ", which " + std::string(isp.meaning)});
    }
}

} // namespace ispctl
