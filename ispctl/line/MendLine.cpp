#include "line/MendLine.h"

#include <algorithm>
#include <set>

namespace ispctl {

MendedLine MendLine(const std::vector<std::string> &arguments, const std::vector<Finding> &findings,
                    const std::vector<std::string> &allowed, const LineContext &context) {
    // A correction can reveal a finding with the next one, and two corrections could undo each
    // other.
    constexpr int kMostCorrections = 20;
    MendedLine mended{{}, findings};
    std::set<std::vector<std::string>> seen{arguments};
    for (int i = 0; i < kMostCorrections; ++i) {
        const auto next = std::find_if(
            mended.remaining.begin(), mended.remaining.end(), [&](const Finding &finding) {
                const bool isAllowed =
                    std::find(allowed.begin(), allowed.end(), finding.name) != allowed.end();
                return !isAllowed && !finding.corrected.empty() &&
                       !seen.contains(finding.corrected);
            });
        if (next == mended.remaining.end()) {
            break;
        }
        mended.arguments = next->corrected;
        seen.insert(mended.arguments);
        mended.remaining = CheckLine(mended.arguments, context);
    }
    std::erase_if(mended.remaining, [&](const Finding &finding) {
        return finding.severity == FindingClass::Warning ||
               std::find(allowed.begin(), allowed.end(), finding.name) != allowed.end();
    });
    return mended;
}

} // namespace ispctl
