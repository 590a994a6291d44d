#include "check/CallReporter.h"

namespace ispctl::check {

void CallReporter::Begin(const std::string &words) {
    const std::lock_guard lock(m_mutex); // a thread of the plug-in may report at this moment
    m_words = words;
    doctor::Send(m_link, {kCallBegins, words});
}

void CallReporter::Add(doctor::FindingId id, const std::string &detail) {
    const std::lock_guard lock(m_mutex);
    if (m_reported.insert(id).second) {
        doctor::Send(m_link, {kCallFinding, std::string(RowOf(id).name), m_words, detail});
    }
}

} // namespace ispctl::check
