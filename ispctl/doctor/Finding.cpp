#include "doctor/Finding.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace ispctl::doctor {
namespace {

constexpr FindingRow kRows[] = {
#define ISPCTL_DOCTOR_FINDING(ID, NAME, CLASS, MESSAGE, REMEDY)                                    \
    {NAME, FindingClass::CLASS, MESSAGE, REMEDY},
#include "doctor/findings.def"
};

std::string Filled(std::string_view text, const Finding &finding) {
    return fmt::format(fmt::runtime(text), finding.file, finding.first, finding.second);
}

} // namespace

const FindingRow &RowOf(FindingId id) {
    return kRows[static_cast<std::size_t>(id)];
}

std::optional<FindingId> FindFinding(std::string_view name) {
    const auto *row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [&](const FindingRow &r) { return r.name == name; });
    return row != std::end(kRows) ? std::optional(static_cast<FindingId>(row - kRows))
                                  : std::nullopt;
}

std::string_view NameOf(FindingClass severity) {
    constexpr std::string_view kNames[] = {"ok", "remark", "warning", "error"};
    return kNames[static_cast<std::size_t>(severity)];
}

std::string MessageOf(const Finding &finding) {
    return Filled(RowOf(finding.id).message, finding);
}

std::string RemedyOf(const Finding &finding) {
    return Filled(RowOf(finding.id).remedy, finding);
}

void Report::Add(FindingId id, std::string file, std::string first, std::string second) {
    m_findings.push_back({id, m_section, std::move(file), std::move(first), std::move(second)});
}

std::size_t Report::Count(FindingClass severity) const {
    return static_cast<std::size_t>(
        std::count_if(m_findings.begin(), m_findings.end(),
                      [&](const Finding &f) { return RowOf(f.id).severity == severity; }));
}

bool Report::HasError(std::string_view section) const {
    return std::any_of(m_findings.begin(), m_findings.end(), [&](const Finding &f) {
        return f.section == section && RowOf(f.id).severity == FindingClass::Error;
    });
}

} // namespace ispctl::doctor
