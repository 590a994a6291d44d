#ifndef ISPCTL_DOCTOR_FINDING_H
#define ISPCTL_DOCTOR_FINDING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl::doctor {

/// From good to bad.
enum class FindingClass { Ok, Remark, Warning, Error };

enum class FindingId {
#define ISPCTL_DOCTOR_FINDING(ID, NAME, CLASS, MESSAGE, REMEDY) ID,
#include "doctor/findings.def"
};

/// Everything that is fixed about a finding.
struct FindingRow {
    std::string_view name;
    FindingClass severity;
    std::string_view message;
    std::string_view remedy;
};
const FindingRow &RowOf(FindingId id);
/// Nothing if no finding has this name.
std::optional<FindingId> FindFinding(std::string_view name);

/// "ok", "remark", "warning" or "error".
std::string_view NameOf(FindingClass severity);

/// One thing that was seen. All strings are bytes as the system has them: a file name may hold any.
struct Finding {
    FindingId id;
    std::string_view section; ///< what was examined; a string literal
    std::string file;
    std::string first;  ///< {1} of the message
    std::string second; ///< {2} of the message
};
std::string MessageOf(const Finding &finding);
std::string RemedyOf(const Finding &finding);

/// Collects findings in the order in which they are seen.
class Report {
  public:
    void BeginSection(std::string_view section) {
        m_section = section;
    }
    void Add(FindingId id, std::string file, std::string first = {}, std::string second = {});
    const std::vector<Finding> &Findings() const {
        return m_findings;
    }
    std::size_t Count(FindingClass severity) const;
    /// Whether there is an error in a section.
    bool HasError(std::string_view section) const;

  private:
    std::string_view m_section;
    std::vector<Finding> m_findings;
};

} // namespace ispctl::doctor

#endif
