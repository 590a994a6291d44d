#ifndef ISPCTL_LIBRARY_RUN_H
#define ISPCTL_LIBRARY_RUN_H

#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "ConsoleStreams.h"
#include "RunObserver.h"

namespace ispctl {

/// Follows the library's process and notifies the observers in order: text that was written before
/// a callback is reported before it.
class LibraryRun {
  public:
    LibraryRun(ChildProcess &child, ConsoleStreams &streams) : m_child(child), m_streams(streams) {}

    /// Waits for a frame before the call: each but the last one is answered by the caller.
    /// RETURNS nothing if the process ended without one.
    std::optional<Frame> WaitForFrame();
    /// Whether a signal ended the process before the call.
    bool WasStoppedBeforeCall() const {
        return m_stoppedBeforeCall;
    }
    /// The text written before the call, at most 64 KiB.
    const std::string &EarlyText() const {
        return m_earlyText;
    }
    /// Starts the call and follows it to the end of the process.
    RunOutcome Run(std::vector<RunObserver *> observers);
    /// Tells one of them the end; an observer that throws has missed it.
    void NotifyEnd(RunObserver &observer, const RunOutcome &outcome, ExitStatus status);
    /// RETURNS why an event could not be reported; empty if all were.
    const std::string &Problem() const {
        return m_problem;
    }

  private:
    template <class Action> bool Attempt(const Action &action);
    template <class Event> void Notify(const Event &event);
    void ReportSignals();
    bool DrainText();
    void HandleFrames();
    void HandleFrame(const Frame &frame);
    bool EndsBeforeProgramming(const Frame &frame);
    void BeginStage(RunStage stage);
    void ShowNotice(const std::string &text);
    void Follow();
    RunOutcome Outcome() const;

    ChildProcess &m_child;
    ConsoleStreams &m_streams;
    std::vector<RunObserver *> m_observers;
    std::string m_earlyText;
    std::optional<RunResult> m_result;
    std::string m_detail;
    std::optional<int> m_percent;
    std::optional<Refusal> m_refusal;
    std::vector<std::string> m_backups;
    bool m_inBackup = false;
    bool m_calledBack = false;
    bool m_isSignalled = false;
    bool m_stoppedInBackup = false; ///< by a signal, between the calls
    bool m_stoppedBeforeCall = false;
    std::string m_problem;
    bool m_readable = true; ///< false: reading frames has failed
};

} // namespace ispctl

#endif
