#include "line/CheckLine.h"

#include <algorithm>
#include <limits>
#include <tuple>

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

void CheckAll(LineUnderCheck &line) {
    CheckSpaces(line);
    CheckTypography(line);
    CheckNames(line);
    CheckActions(line);
    CheckValues(line);
    CheckNeeds(line);
    CheckSignatures(line);
    CheckCompanions(line);
    CheckFiles(line);
    CheckAccess(line);
    CheckBanks(line);
    CheckRanges(line);
    CheckDump(line);
    CheckSearch(line);
    ExplainRefusal(line);
    SettleClasses(line);
}

std::vector<Finding> FindAll(const ArgumentList &arguments, const LineContext &context) {
    LineUnderCheck line(arguments, context, !NamesBlockingFile(arguments, context));
    CheckAll(line);
    return std::move(line.Findings());
}

using Probe = LineUnderCheck::Probe;

bool IsOfProbe(const Finding &finding, const Probe &probe) {
    return finding.name == probe.name && finding.argument == probe.argument;
}

/// Whether findings about another line have one that says the same.
bool Has(const std::vector<Finding> &findings, const Finding &finding) {
    return std::any_of(findings.begin(), findings.end(), [&](const Finding &other) {
        return other.name == finding.name && other.option == finding.option &&
               other.value == finding.value;
    });
}

/// What is not found about a line in which another finding is corrected follows from that one.
/// Causes themselves never do.
void FindCauses(LineUnderCheck &line) {
    constexpr std::size_t kMostProbes = 16; // each is a check of its own
    const std::vector<Probe> &probes = line.Probes();
    for (std::size_t i = 0; i < std::min(probes.size(), kMostProbes); ++i) {
        const std::vector<Finding> without = FindAll(probes[i].corrected, line.Context());
        for (Finding &finding : line.Findings()) {
            const bool isCause = std::any_of(probes.begin(), probes.end(), [&](const Probe &probe) {
                return IsOfProbe(finding, probe);
            });
            if (!isCause && finding.followsFrom.empty() && !Has(without, finding)) {
                finding.followsFrom = probes[i].typed;
            }
        }
    }
}

/// 0: nothing else can be judged before it is corrected; 1: all others; 2: consequences.
int RankOf(const LineUnderCheck &line, const Finding &finding) {
    const bool isUnread = finding.argument && SubjectOf(line, finding) == nullptr;
    const bool isCause = std::any_of(line.Probes().begin(), line.Probes().end(),
                                     [&](const Probe &probe) { return IsOfProbe(finding, probe); });
    return !finding.followsFrom.empty() ? 2 : isUnread || isCause ? 0 : 1;
}

void Sort(LineUnderCheck &line) {
    const auto key = [&](const Finding &finding) {
        const int severity = finding.severity == FindingClass::Fatal   ? 0
                             : finding.severity == FindingClass::Error ? 1
                                                                       : 2;
        const int rank = RankOf(line, finding);
        return std::tuple(rank, rank == 0 ? 0 : severity,
                          finding.argument.value_or(std::numeric_limits<std::size_t>::max()));
    };
    std::vector<Finding> &findings = line.Findings();
    std::stable_sort(findings.begin(), findings.end(),
                     [&](const Finding &a, const Finding &b) { return key(a) < key(b); });
}

} // namespace

std::vector<Finding> CheckLine(const std::vector<std::string> &arguments,
                               const LineContext &context) {
    LineUnderCheck line(arguments, context, !NamesBlockingFile(arguments, context));
    CheckAll(line);
    FindCauses(line);
    Sort(line);
    return std::move(line.Findings());
}

} // namespace ispctl
