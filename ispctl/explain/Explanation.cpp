#include "explain/Explanation.h"

#include <algorithm>

namespace ispctl {

ExitStatus StatusOf(const Explanation &explanation) {
    const auto &findings = explanation.findings;
    const bool fatal = std::any_of(findings.begin(), findings.end(), [](const Finding &finding) {
        return finding.severity == FindingClass::Fatal;
    });
    const bool ofLine = !explanation.library.empty();
    if (fatal || (ofLine && !explanation.accepted)) {
        return kExitRefused;
    }
    return findings.empty() ? kExitSuccess : kExitFindings;
}

std::vector<std::pair<RecordKind, std::string_view>> RecordsOf(const Explanation &explanation) {
    std::vector<std::pair<RecordKind, std::string_view>> records;
    if (!explanation.command.empty()) {
        records.emplace_back(RecordKind::Command, explanation.command);
    }
    if (!explanation.sign.empty()) {
        records.emplace_back(RecordKind::Sign, explanation.sign);
    }
    return records;
}

} // namespace ispctl
