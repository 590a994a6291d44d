#include "line/CorrectLine.h"

#include <algorithm>
#include <set>

namespace ispctl {

CorrectedLine CorrectLine(const std::vector<std::string> &arguments,
                          const std::vector<Finding> &findings,
                          const std::vector<std::string> &allowed, const LineContext &context) {
    // A correction can reveal a finding with the next one, and two corrections could undo each
    // other.
    constexpr int kMostCorrections = 20;
    CorrectedLine corrected{{}, findings};
    std::set<std::vector<std::string>> seen{arguments};
    for (int i = 0; i < kMostCorrections; ++i) {
        const auto next = std::find_if(
            corrected.remaining.begin(), corrected.remaining.end(), [&](const Finding &finding) {
                const bool isAllowed =
                    std::find(allowed.begin(), allowed.end(), finding.name) != allowed.end();
                return !isAllowed && !finding.corrected.empty() &&
                       !seen.contains(finding.corrected);
            });
        if (next == corrected.remaining.end()) {
            break;
        }
        corrected.arguments = next->corrected;
        seen.insert(corrected.arguments);
        corrected.remaining = CheckLine(corrected.arguments, context);
    }
    std::erase_if(corrected.remaining, [&](const Finding &finding) {
        return finding.severity == FindingClass::Warning ||
               std::find(allowed.begin(), allowed.end(), finding.name) != allowed.end();
    });
    return corrected;
}

} // namespace ispctl
