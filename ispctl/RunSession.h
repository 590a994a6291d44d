#ifndef ISPCTL_RUN_SESSION_H
#define ISPCTL_RUN_SESSION_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "RunCommand.h"
#include "line/LineReport.h"
#include "station/RunRecord.h"

namespace ispctl {

class RunLog;

/// What distinguishes a run from others, and what is kept of it.
struct RecordedRun {
    std::string id;
    RunRecord record;
    std::filesystem::path copies; ///< directory for private copies; empty: none are made
    bool isKept;                  ///< in a log or a station file
    bool isCalled = false;        ///< the library, by now

    /// For results; empty if nobody could look the run up.
    std::string ShownId() const {
        return isKept ? id : "";
    }
};

/// One `ispctl run`, from the checks to the exit status.
class RunSession {
  public:
    /// All must outlive it.
    RunSession(const RunOptions &options, const std::vector<std::string> &arguments,
               ConsoleStreams &streams, ChildProcess &child, RecordedRun &recorded);

    /// RETURNS the exit status of the run, which is shown and recorded.
    ExitStatus Execute();

  private:
    ExitStatus NotCalled(ExitStatus status, std::string_view stage, const std::string &reason);
    /// Waits for a frame that is more than news about the preparation.
    std::optional<Frame> WaitForDecision();
    /// Shows the findings. RETURNS whether none of them stops the run.
    bool IsAccepted(LineReport report);
    ExitStatus Refused();
    /// What stands before ARGS in a corrected line: "ispctl run --virtual".
    std::string OwnPart() const;
    ExitStatus Call(const ReadyCall &call);
    void PrintNotices(const std::filesystem::path &directory);
    void LogRecord(RunLog &log) const;
    /// The log first, so that what is missing there is part of the status that the view shows.
    ExitStatus Report(const RunOutcome &outcome, RunObserver &view, RunLog *log);

    const RunOptions &m_options;
    const std::vector<std::string> &m_arguments; ///< of this program
    ConsoleStreams &m_streams;
    ChildProcess &m_child;
    RecordedRun &m_recorded;
    LibraryRun m_run;
    std::vector<Finding> m_findings;
};

} // namespace ispctl

#endif
