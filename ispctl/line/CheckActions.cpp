#include "line/Checks.h"

#include "line/ValueForm.h"

namespace ispctl {
namespace {

using ScalerIspFacts::ActionFacts;

constexpr std::string_view kExampleAction = "isp";

/// Whether the library never does anything for it but to fail or to report success.
bool IsUseless(const GivenArgument &given, const ActionFacts &action) {
    return given.option->needs == "NEVER" || action.call == "NO_CALL" ||
           action.call == "MERGE_INFO" || action.call.starts_with("NEVER_RESOLVED");
}

void CheckEffect(LineUnderCheck &line, const GivenArgument &given, const ActionFacts &action) {
    if (given.option->needs == "NEVER") {
        line.Report("refused-action", given, Underline::Name, {});
    } else if (action.call == "NO_CALL") {
        line.Report("action-without-effect", given, Underline::Name,
                    {.example = "--" + std::string(kExampleAction)});
    } else if (action.call.starts_with("NEVER_RESOLVED") || action.call == "MERGE_INFO") {
        line.Report("action-always-fails", given, Underline::Name, {});
    }
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
            CheckEffect(line, *given, *action);
        } else if (first->option != given->option) {
            FindingWords words{.other = first->typed};
            const bool isFirstUseless = IsUseless(*first, *firstAction);
            if (isFirstUseless != IsUseless(*given, *action)) {
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
