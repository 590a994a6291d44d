#ifndef ISPCTL_CHECK_CALL_REPORTER_H
#define ISPCTL_CHECK_CALL_REPORTER_H

#include <mutex>
#include <set>
#include <string>

#include "doctor/Finding.h"
#include "doctor/Probe.h"

namespace ispctl::check {

/// The word of a notice that a call begins; its words follow.
inline constexpr const char *kCallBegins = "begin";
/// The word of a finding: its name and its two details follow.
inline constexpr const char *kCallFinding = "finding";

/// In the process that calls a plug-in: reports to ispctl at once what is seen, because the process
/// may end at any time. Each finding is reported once.
class CallReporter {
  public:
    explicit CallReporter(ParentLink &link) : m_link(link) {}

    /// Everything from here on belongs to this call.
    void Begin(const std::string &words);
    /// May be called on a thread of the plug-in.
    void Add(doctor::FindingId id, const std::string &detail = {});
    /// The words of the call that has begun. REQUIRES: on the thread that begins the calls.
    const std::string &Words() const {
        return m_words;
    }

  private:
    ParentLink &m_link;
    std::mutex m_mutex;
    std::string m_words;
    std::set<doctor::FindingId> m_reported;
};

} // namespace ispctl::check

#endif
