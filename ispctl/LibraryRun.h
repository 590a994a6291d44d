#ifndef ISPCTL_LIBRARY_RUN_H
#define ISPCTL_LIBRARY_RUN_H

#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "ConsoleStreams.h"
#include "RunObserver.h"

namespace ispctl {

/// Follows the library's process and tells the observers what happens, in the order in which it
/// happens: text that was written before a callback is told before it.
class LibraryRun {
  public:
    LibraryRun(ChildProcess &child, ConsoleStreams &streams) : m_child(child), m_streams(streams) {}

    /// Waits for the process to say whether the library can be called.
    /// RETURNS nothing where it ended before it could.
    std::optional<Frame> WaitForFirst();
    /// What was written meanwhile, at most 64 KiB.
    const std::string &EarlyText() const {
        return m_earlyText;
    }
    /// Follows the call to the end of the process.
    RunOutcome Run(std::vector<RunObserver *> observers);
    /// RETURNS why not everything that happened was told; empty if it was.
    const std::string &Problem() const {
        return m_problem;
    }

  private:
    template <class Action> bool Attempt(const Action &action);
    template <class Event> void Notify(const Event &event);
    void ReportSignals();
    bool DrainText();
    void TakeFrames();
    void TellFrame(const Frame &frame);
    void Follow();
    RunOutcome Outcome() const;

    ChildProcess &m_child;
    ConsoleStreams &m_streams;
    std::vector<RunObserver *> m_observers;
    std::string m_earlyText;
    std::optional<RunResult> m_result;
    std::optional<int> m_percent;
    bool m_calledBack = false;
    std::string m_problem;
    bool m_heard = true;
};

} // namespace ispctl

#endif
