#ifndef ISPCTL_DOCTOR_WRITE_ACCESS_H
#define ISPCTL_DOCTOR_WRITE_ACCESS_H

#include <filesystem>
#include <set>
#include <string>

#include "doctor/Finding.h"

namespace ispctl::doctor {

/// Finds out who besides root and this user may replace a file: by its own mode and owner, and by
/// those of every directory on the way to it, through symbolic links. It looks at mode bits, not at
/// access control lists. Each file and directory is reported once.
class WriteAccess {
  public:
    explicit WriteAccess(Report &report) : m_report(report) {}

    /// \param file  absolute
    void Check(const std::filesystem::path &file);

  private:
    enum class Way { Direct, ThroughLink };
    void CheckOne(const std::filesystem::path &path, const std::filesystem::path &target, Way way);

    Report &m_report;
    std::set<std::filesystem::path> m_seen;
};

} // namespace ispctl::doctor

#endif
