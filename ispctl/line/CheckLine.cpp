#include "line/CheckLine.h"

#include <algorithm>
#include <limits>

#include "line/Checks.h"

namespace ispctl {
namespace {

/// The option that a finding is about, or null.
const GivenArgument *SubjectOf(const LineUnderCheck &line, const Finding &finding) {
    for (const GivenArgument *given : line.Options()) {
        if (finding.argument && *finding.argument >= given->position &&
            *finding.argument <= given->valuePosition) {
            return given;
        }
    }
    return nullptr;
}

/// A row may be the reason of a refusal; only the parser knows whether it is. If the line without
/// one of the options is accepted, findings about the others are not the reason.
void SettleClasses(LineUnderCheck &line) {
    if (!line.HasParser()) {
        return;
    }
    std::vector<const Finding *> reasons;
    for (const Finding &finding : line.Findings()) {
        const GivenArgument *subject = SubjectOf(line, finding);
        const bool isReason = line.IsRefused() && finding.severity == FindingClass::Fatal &&
                              subject != nullptr &&
                              line.Parse(Without(line.Arguments(), *subject)).accepted;
        if (isReason) {
            reasons.push_back(&finding);
        }
    }
    for (Finding &finding : line.Findings()) {
        const bool isReason = reasons.empty() || SubjectOf(line, finding) == nullptr ||
                              std::find(reasons.begin(), reasons.end(), &finding) != reasons.end();
        if (finding.severity == FindingClass::Fatal && (!line.IsRefused() || !isReason)) {
            finding.severity = FindingClass::Error;
        }
    }
}

void Sort(std::vector<Finding> &findings) {
    const auto position = [](const Finding &finding) {
        return finding.argument.value_or(std::numeric_limits<std::size_t>::max());
    };
    std::stable_sort(findings.begin(), findings.end(), [&](const Finding &a, const Finding &b) {
        return a.severity != b.severity ? a.severity > b.severity : position(a) < position(b);
    });
}

} // namespace

std::vector<Finding> CheckLine(const std::vector<std::string> &arguments,
                               const LineContext &context) {
    LineUnderCheck line(arguments, context, !NamesBlockingFile(arguments, context));
    CheckNames(line);
    CheckActions(line);
    CheckValues(line);
    CheckNeeds(line);
    CheckSignatures(line);
    CheckFiles(line);
    CheckBanks(line);
    CheckRanges(line);
    CheckDump(line);
    CheckSearch(line);
    ExplainRefusal(line);
    SettleClasses(line);
    Sort(line.Findings());
    return std::move(line.Findings());
}

} // namespace ispctl
