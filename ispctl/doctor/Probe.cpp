#include "doctor/Probe.h"

#include <algorithm>
#include <chrono>
#include <fmt/format.h>
#include <sys/wait.h>

#include "ChildProcess.h"
#include "ResultInfo.h"

namespace ispctl::doctor {
namespace {

using Clock = std::chrono::steady_clock;

// Enough for every function and candidate; a plug-in may have found the pipe and flood it.
constexpr std::size_t kMostNotices = 10000;
// UNITS: bytes.
constexpr std::size_t kMostPrinted = 65536;

Notice NoticeOf(const std::string &payload) {
    Notice notice;
    for (std::size_t begin = 0; begin <= payload.size();) {
        const std::size_t end = std::min(payload.find('\0', begin), payload.size());
        notice.push_back(payload.substr(begin, end - begin));
        begin = end + 1;
    }
    return notice;
}

// RETURNS whether there was a notice that begins with this word.
bool TakeNotices(ChildProcess &child, ProbeOutcome &outcome, const std::string &word) {
    bool found = false;
    try {
        while (const auto frame = child.NextFrame()) {
            const Notice notice = NoticeOf(frame->payload);
            found = found || notice.front() == word;
            if (outcome.notices.size() < kMostNotices) {
                outcome.notices.push_back(notice);
            }
            child.Answer();
        }
        child.DrainAvailable([&](Stream, std::string_view text) {
            outcome.printed += text.substr(0, kMostPrinted - outcome.printed.size());
        });
    } catch (const std::exception &) {
        child.StopListening();
    }
    return found;
}

std::string WordsOfEnd(const ProbeOutcome &outcome, const ProbeLimit &limit) {
    if (outcome.timedOut) {
        return fmt::format("blocks the process for more than {} seconds", limit.time.count());
    }
    int status = outcome.status; // the macros of macOS do not accept a const object
    return WIFSIGNALED(status)
               ? fmt::format("ends the process ({})", NameOfSignal(WTERMSIG(status)))
               : fmt::format("ends the process (exit status {})", WEXITSTATUS(status));
}

} // namespace

void Send(ParentLink &link, const Notice &notice) {
    std::string payload;
    for (std::size_t i = 0; i < notice.size(); ++i) {
        // A string from elsewhere may hold a NUL, which separates the strings here.
        payload += (i == 0 ? "" : std::string(1, '\0')) + notice[i].substr(0, notice[i].find('\0'));
    }
    link.Send(FrameKind::Message, payload.substr(0, kMaxFrame));
}

const Notice *ProbeOutcome::Find(const std::string &word) const {
    const auto found = std::find_if(notices.begin(), notices.end(),
                                    [&](const Notice &n) { return n.front() == word; });
    return found != notices.end() ? &*found : nullptr;
}

ProbeOutcome RunProbe(const std::vector<std::string> &arguments, const ProbeLimit &limit) {
    ProbeOutcome outcome;
    ChildProcess child(arguments, ChildProcess::Ordering::OnePipe, RunSignals::Stop::AtFirst);
    auto deadline = Clock::now() + limit.time;
    while (!child.Status()) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0) {
            outcome.timedOut = true;
            child.Kill();
        }
        child.Wait(static_cast<int>(std::max<long long>(left, 10)));
        child.DrainSignals();
        if (TakeNotices(child, outcome, limit.restart)) {
            deadline = Clock::now() + limit.time;
        }
    }
    TakeNotices(child, outcome, limit.restart);
    outcome.interrupted = RunSignals::HasStopped();
    outcome.status = child.Status().value_or(0);
    if (outcome.Find(kProbeEnd) == nullptr) {
        outcome.end = WordsOfEnd(outcome, limit);
    }
    return outcome;
}

} // namespace ispctl::doctor
